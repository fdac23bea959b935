#pragma once

#include "presentation/AgentBlockContent.h"
#include "presentation/AgentUIActions.h"
#include "ui/kit/Interaction.h"
#include "ui/popover/CompactUsageRow.h"

#include <QAbstractButton>

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class HealthDot;
class Label;
class LogoTile;
class Notice;
} // namespace kit
class BalanceRow;

/// One agent in the popover's overview: head, windows, balances, and why it could not be read. The
/// whole block is a button that leads to the agent.
class AgentBlock : public QAbstractButton {
public:
    AgentBlock(const AgentUIActions& actions, QWidget* parent);

    void setContent(const AgentBlockContent& content);
    void setColumns(const RowColumns& columns);
    /// The first block has no line above it.
    void setFirst(bool isFirst);
    int wantedHeight() const;
    /// The button of a failure, when there is one.
    QWidget* wayOutButton() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setRows(const std::vector<UsageRowContent>& rows);
    void setBalances(const std::vector<BalanceRowContent>& balances);
    void arrangeHead();
    void arrangeBody();
    int headTop() const;
    int bodyTop() const;

    const AgentUIActions& actions_;
    RowColumns columns_;
    bool isFirst_ = true;
    int boneRows_ = 0;
    WayOut wayOut_ = WayOut::none;
    bool hasFailure_ = false;
    kit::Interaction interaction_;
    kit::LogoTile* logo_;
    kit::Label* name_;
    kit::Label* plan_;
    kit::HealthDot* health_;
    std::vector<CompactUsageRow*> rows_;
    std::vector<BalanceRow*> balances_;
    kit::Notice* failure_;
};

} // namespace vellmark
