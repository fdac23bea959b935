#include "ui/window/AgentSummaryCard.h"

#include "ui/AgentHead.h"
#include "ui/BalanceRow.h"
#include "ui/Conversions.h"
#include "ui/FailureNotice.h"
#include "ui/UpdateInPlace.h"
#include "ui/window/SummaryCell.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int topPadding = 14;
constexpr int padding = 16;
constexpr AgentHead::Form headForm{
    .height = 24,
    .nameStyle = kit::style::heading,
    // On the baseline of the name, as near as points allow.
    .detailDrop = 1,
    .chevronSide = 14,
    .chevronGap = 12,
};
constexpr int bodyGap = 12;
/// What the words of a cell need.
constexpr int leastCellWidth = 216;
constexpr int cellGap = 20;
constexpr int cellRowGap = 16;
constexpr int balanceHeight = 16;
constexpr int balanceGap = 8;
constexpr int bodyTop = topPadding + headForm.height;
} // namespace

AgentSummaryCard::AgentSummaryCard(AgentProviderID agent, const AgentUIActions& actions,
                                   QWidget* parent)
    : kit::Card(parent), agent_(std::move(agent)), head_(new AgentHead(headForm, this)),
      failure_(new FailureNotice(actions, this)) {
    connect(this, &QAbstractButton::clicked, this,
            [&actions, id = agent_] { actions.openProvider(id); });
}

void AgentSummaryCard::setContent(const AgentBlockContent& content) {
    setText(qString(content.name));
    setAccessibleName(qString(content.accessibilityText));
    setAccessibleDescription(qString(content.accessibilityDetail));
    head_->setContent(content, accountLine(content));
    boneCells_ = content.boneRows;
    updateRows(cells_, content.rows, this);
    updateRows(balances_, content.balances, this);
    failure_->setContent(content.failure);
    arrange();
    update();
}

QWidget* AgentSummaryCard::wayOutButton() const {
    return failure_->wayOutButton();
}

int AgentSummaryCard::cellCount() const {
    return std::max(static_cast<int>(cells_.size()), boneCells_);
}

int AgentSummaryCard::cellsInRow(int width) {
    constexpr int most = 3;
    return width - 2 * padding >= most * leastCellWidth + (most - 1) * cellGap ? most : most - 1;
}

QRect AgentSummaryCard::cellPlace(int index, int width) const {
    const int columns = cellsInRow(width);
    const int wide = (width - 2 * padding - (columns - 1) * cellGap) / columns;
    return {padding + index % columns * (wide + cellGap),
            bodyTop + bodyGap + index / columns * (SummaryCell::cellHeight + cellRowGap), wide,
            SummaryCell::cellHeight};
}

int AgentSummaryCard::heightForWidth(int width) const {
    int height = bodyTop;
    if (cellCount() > 0) {
        height = cellPlace(cellCount() - 1, width).bottom() + 1;
    }
    const int balances = static_cast<int>(balances_.size());
    if (balances > 0) {
        height += bodyGap + balances * (balanceHeight + balanceGap) - balanceGap;
    }
    if (failure_->isVisibleTo(this)) {
        height += bodyGap + failure_->heightForWidth(width - 2 * padding);
    }
    return height + padding;
}

void AgentSummaryCard::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void AgentSummaryCard::arrange() {
    const int wide = std::max(width() - 2 * padding, 0);
    head_->setGeometry(padding, topPadding, wide, headForm.height);
    int top = bodyTop;
    for (std::size_t index = 0; index < cells_.size(); ++index) {
        cells_[index]->setGeometry(cellPlace(static_cast<int>(index), width()));
        top = cells_[index]->geometry().bottom() + 1;
    }
    int above = bodyGap;
    for (BalanceRow* balance : balances_) {
        balance->setGeometry(padding, top + above, wide, balanceHeight);
        top += above + balanceHeight;
        above = balanceGap;
    }
    if (failure_->isVisibleTo(this)) {
        failure_->setGeometry(padding, top + bodyGap, wide, failure_->heightForWidth(wide));
    }
}

void AgentSummaryCard::paintEvent(QPaintEvent* event) {
    kit::Card::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int index = 0; index < boneCells_; ++index) {
        const QRect place = cellPlace(index, width());
        drawCellBones(painter, *this, place.topLeft(), place.width());
    }
}

} // namespace vellmark
