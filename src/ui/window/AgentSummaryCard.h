#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/MainWindowContent.h"
#include "ui/kit/Card.h"

#include <vector>

namespace vellmark {

namespace kit {
class HealthDot;
class Label;
class LogoTile;
class Notice;
} // namespace kit
class BalanceRow;
class SummaryCell;

/// One agent on the overview page: head, its windows in cells of equal width, three a row, and why
/// it could not be read. The whole card is a button that leads to the agent.
class AgentSummaryCard : public kit::Card {
public:
    AgentSummaryCard(const AgentUIActions& actions, QWidget* parent);

    /// `loadingText` stands at the end of the head while the first values are read.
    void setContent(const AgentBlockContent& content, const std::string& loadingText);
    int heightForWidth(int width) const override;
    /// The button of a failure, when there is one.
    QWidget* wayOutButton() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setCells(const std::vector<UsageRowContent>& rows);
    void setBalances(const std::vector<BalanceRowContent>& balances);
    void arrange();
    void arrangeHead();
    QRect cellPlace(int index, int width) const;
    int cellCount() const;

    const AgentUIActions& actions_;
    int boneCells_ = 0;
    bool hasFailure_ = false;
    WayOut wayOut_ = WayOut::none;
    kit::LogoTile* logo_;
    kit::Label* name_;
    kit::Label* account_;
    kit::HealthDot* health_;
    std::vector<SummaryCell*> cells_;
    std::vector<BalanceRow*> balances_;
    kit::Notice* failure_;
};

} // namespace vellmark
