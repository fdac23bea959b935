#include "ui/popover/OverviewList.h"

#include "ui/UpdateInPlace.h"
#include "ui/popover/AgentBlock.h"

namespace vellmark {

OverviewList::OverviewList(const AgentUIActions& actions, int room, QWidget* parent)
    : QWidget(parent), actions_(actions), room_(room) {}

void OverviewList::setContent(const std::vector<AgentBlockContent>& agents) {
    RowColumns columns;
    for (const AgentBlockContent& agent : agents) {
        for (const UsageRowContent& row : agent.rows) {
            columns.include(row);
        }
    }
    updateAgents(blocks_, agents, actions_, this);
    for (std::size_t index = 0; index < agents.size(); ++index) {
        blocks_[index]->setContent(agents[index], columns, index == 0);
    }
    arrange();
}

void OverviewList::setDense(bool isDense) {
    for (AgentBlock* block : blocks_) {
        block->setDense(isDense);
    }
}

int OverviewList::wantedHeight() const {
    int height = 0;
    for (AgentBlock* block : blocks_) {
        height += block->wantedHeight();
    }
    return height;
}

std::vector<QWidget*> OverviewList::controls() const {
    std::vector<QWidget*> result;
    for (AgentBlock* block : blocks_) {
        result.push_back(block);
        if (QWidget* button = block->wayOutButton()) {
            result.push_back(button);
        }
    }
    return result;
}

void OverviewList::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void OverviewList::arrange() {
    for (AgentBlock* block : blocks_) {
        block->resize(width(), block->height());
    }
    // What a row too many would make scroll stands closer together instead.
    setDense(false);
    if (wantedHeight() > room_) {
        setDense(true);
        if (wantedHeight() > room_) {
            setDense(false);
        }
    }
    int top = 0;
    for (AgentBlock* block : blocks_) {
        const int height = block->wantedHeight();
        block->setGeometry(0, top, width(), height);
        top += height;
    }
}

} // namespace vellmark
