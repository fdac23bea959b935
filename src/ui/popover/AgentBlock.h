#pragma once

#include "presentation/AgentBlockContent.h"
#include "presentation/AgentUIActions.h"
#include "ui/kit/Interaction.h"
#include "ui/kit/Spoken.h"
#include "ui/kit/Track.h"
#include "ui/popover/CompactUsageRow.h"

#include <QAbstractButton>

#include <vector>

namespace vellmark {

class AgentHead;
class BalanceRow;
class FailureNotice;

/// One agent in the popover's overview: head, windows, balances, and why it could not be read. The
/// whole block is a button that leads to the agent.
class AgentBlock : public QAbstractButton, public kit::ChangingGround, public kit::Spoken {
public:
    AgentBlock(AgentProviderID agent, const AgentUIActions& actions, QWidget* parent);

    const AgentProviderID& agent() const { return agent_; }
    /// The first block has no line above it.
    void setContent(const AgentBlockContent& content, const RowColumns& columns, bool isFirst);
    /// Closer together, to gain a little height.
    void setDense(bool isDense);
    int wantedHeight() const;
    /// The button of a failure, when there is one.
    QWidget* wayOutButton() const;
    kit::SpokenAs spokenAs() const override { return {QAccessible::Button, true}; }
    double groundChange() const override { return isDown() ? 1 : interaction_.hover(); }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();
    int headTop() const;
    int bodyTop() const;

    AgentProviderID agent_;
    RowColumns columns_;
    bool isFirst_ = true;
    bool isDense_ = false;
    int boneRows_ = 0;
    kit::Interaction interaction_;
    AgentHead* head_;
    std::vector<CompactUsageRow*> rows_;
    std::vector<BalanceRow*> balances_;
    FailureNotice* failure_;
};

} // namespace vellmark
