#include "ui/popover/OverviewList.h"

#include "ui/popover/AgentBlock.h"

#include <algorithm>

namespace vellmark {

OverviewList::OverviewList(const AgentUIActions& actions, QWidget* parent)
    : QWidget(parent), actions_(actions) {}

AgentBlock* OverviewList::takeBlock(std::vector<Entry>& from, const AgentProviderID& id) {
    const auto found =
        std::find_if(from.begin(), from.end(), [&](const Entry& entry) { return entry.id == id; });
    if (found != from.end()) {
        AgentBlock* block = found->block;
        from.erase(found);
        return block;
    }
    auto* block = new AgentBlock(actions_, this);
    connect(block, &QAbstractButton::clicked, this, [this, id] { actions_.openProvider(id); });
    block->resize(width(), 0);
    block->show();
    return block;
}

void OverviewList::setContent(const std::vector<AgentBlockContent>& agents) {
    RowColumns columns;
    for (const AgentBlockContent& agent : agents) {
        for (const UsageRowContent& row : agent.rows) {
            columns.include(row);
        }
    }
    std::vector<Entry> former = std::move(entries_);
    entries_.clear();
    for (const AgentBlockContent& agent : agents) {
        AgentBlock* block = takeBlock(former, agent.id);
        block->setFirst(entries_.empty());
        block->setColumns(columns);
        block->setContent(agent);
        entries_.push_back({agent.id, block});
    }
    for (const Entry& entry : former) {
        delete entry.block;
    }
    arrange();
}

int OverviewList::wantedHeight() const {
    int height = 0;
    for (const Entry& entry : entries_) {
        height += entry.block->wantedHeight();
    }
    return height;
}

std::vector<QWidget*> OverviewList::controls() const {
    std::vector<QWidget*> result;
    for (const Entry& entry : entries_) {
        result.push_back(entry.block);
        if (QWidget* button = entry.block->wayOutButton()) {
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
    for (const Entry& entry : entries_) {
        entry.block->resize(width(), entry.block->height());
        const int height = entry.block->wantedHeight();
        entry.block->setGeometry(0, top, width(), height);
        top += height;
    }
}

} // namespace vellmark
