#include "ui/popover/OverviewList.h"

#include "ui/UpdateInPlace.h"
#include "ui/popover/AgentBlock.h"

namespace vellmark {

OverviewList::OverviewList(const AgentUIActions& actions, QWidget* parent)
    : QWidget(parent), actions_(actions) {}

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
    int top = 0;
    for (AgentBlock* block : blocks_) {
        block->resize(width(), block->height());
        const int height = block->wantedHeight();
        block->setGeometry(0, top, width(), height);
        top += height;
    }
}

} // namespace vellmark
