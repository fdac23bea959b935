#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/OverviewPageContent.h"
#include "ui/kit/Card.h"
#include "ui/kit/Spoken.h"

#include <vector>

namespace vellmark {

class AgentHead;
class BalanceRow;
class FailureNotice;
class SummaryCell;

/// One agent on the overview page: head, its windows in cells of equal width, three a row or two
/// where there is little room, and why it could not be read. The whole card is a button that leads
/// to the agent.
class AgentSummaryCard : public kit::Card, public kit::Spoken {
public:
    AgentSummaryCard(AgentProviderID agent, const AgentUIActions& actions, QWidget* parent);

    const AgentProviderID& agent() const { return agent_; }
    void setContent(const AgentBlockContent& content);
    int heightForWidth(int width) const override;
    kit::SpokenAs spokenAs() const override { return {QAccessible::Button, true}; }
    /// The button of a failure, when there is one.
    QWidget* wayOutButton() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();
    QRect cellPlace(int index, int width) const;
    int cellCount() const;
    static int cellsInRow(int width);

    AgentProviderID agent_;
    int boneCells_ = 0;
    AgentHead* head_;
    std::vector<SummaryCell*> cells_;
    std::vector<BalanceRow*> balances_;
    FailureNotice* failure_;
};

} // namespace vellmark
