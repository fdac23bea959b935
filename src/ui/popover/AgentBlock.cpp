#include "ui/popover/AgentBlock.h"

#include "ui/AgentHead.h"
#include "ui/BalanceRow.h"
#include "ui/Conversions.h"
#include "ui/FailureNotice.h"
#include "ui/UpdateInPlace.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int sidePadding = 16;
/// Between lines that belong together, and around the block.
struct Spacing {
    int top;
    int bottom;
    int row;
};
constexpr Spacing usualSpacing{.top = 12, .bottom = 14, .row = 8};
constexpr Spacing denseSpacing{.top = 9, .bottom = 11, .row = 6};

constexpr const Spacing& spacing(bool isDense) {
    return isDense ? denseSpacing : usualSpacing;
}
constexpr AgentHead::Form headForm{
    .height = 20,
    .nameStyle = kit::style::strong,
    .detailDrop = 0,
    .chevronSide = 12,
    .chevronGap = 8,
};
constexpr int headGap = 10;
constexpr int rowHeight = 32;
constexpr int balanceHeight = 16;
constexpr int firstBalanceGap = 10;
constexpr int noticeGap = 12;
/// The ring's outer edge runs 4 inside the block.
constexpr kit::FocusShape ringInside{11, -6};
} // namespace

AgentBlock::AgentBlock(AgentProviderID agent, const AgentUIActions& actions, QWidget* parent)
    : QAbstractButton(parent), agent_(std::move(agent)), interaction_(this, ringInside),
      head_(new AgentHead(headForm, this)), failure_(new FailureNotice(actions, this)) {
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QAbstractButton::clicked, this,
            [&actions, id = agent_] { actions.openProvider(id); });
}

void AgentBlock::setContent(const AgentBlockContent& content, const RowColumns& columns,
                            bool isFirst) {
    setText(qString(content.name));
    setAccessibleName(qString(content.accessibilityText));
    setAccessibleDescription(qString(content.accessibilityDetail));
    columns_ = columns;
    isFirst_ = isFirst;
    boneRows_ = content.boneRows;
    head_->setContent(content, qString(content.plan));
    updateRows(rows_, content.rows, this);
    for (CompactUsageRow* row : rows_) {
        row->setColumns(columns);
    }
    updateRows(balances_, content.balances, this);
    failure_->setContent(content.failure);
    arrange();
    update();
}

void AgentBlock::setDense(bool isDense) {
    isDense_ = isDense;
    arrange();
    update();
}

QWidget* AgentBlock::wayOutButton() const {
    return failure_->wayOutButton();
}

int AgentBlock::headTop() const {
    return (isFirst_ ? 0 : 1) + spacing(isDense_).top;
}

int AgentBlock::bodyTop() const {
    return headTop() + headForm.height;
}

int AgentBlock::wantedHeight() const {
    const int rowGap = spacing(isDense_).row;
    int height = bodyTop();
    int above = headGap;
    for (const CompactUsageRow* row : rows_) {
        height += above + row->wantedHeight();
        above = rowGap;
    }
    if (boneRows_ > 0) {
        height += headGap + boneRows_ * (rowHeight + rowGap) - rowGap;
    }
    above = firstBalanceGap;
    for (std::size_t index = 0; index < balances_.size(); ++index) {
        height += above + balanceHeight;
        above = rowGap;
    }
    if (failure_->isVisibleTo(this)) {
        height += noticeGap + failure_->heightForWidth(width() - 2 * sidePadding);
    }
    return height + spacing(isDense_).bottom;
}

void AgentBlock::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void AgentBlock::arrange() {
    const int wide = std::max(width() - 2 * sidePadding, 0);
    head_->setGeometry(sidePadding, headTop(), wide, headForm.height);
    const int rowGap = spacing(isDense_).row;
    int top = bodyTop();
    int above = headGap;
    for (CompactUsageRow* row : rows_) {
        top += above;
        row->setGeometry(sidePadding, top, wide, row->wantedHeight());
        top += row->height();
        above = rowGap;
    }
    above = firstBalanceGap;
    for (BalanceRow* balance : balances_) {
        top += above;
        balance->setGeometry(sidePadding, top, wide, balanceHeight);
        top += balanceHeight;
        above = rowGap;
    }
    if (failure_->isVisibleTo(this)) {
        failure_->setGeometry(sidePadding, top + noticeGap, wide, failure_->heightForWidth(wide));
    }
}

void AgentBlock::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ground = isDown() ? kit::color(kit::ColorRole::select)
                                   : kit::mixed(Qt::transparent, kit::color(kit::ColorRole::hover),
                                                interaction_.hover());
    painter.fillRect(rect(), ground);
    if (!isFirst_) {
        painter.fillRect(QRect(0, 0, width(), 1), kit::color(kit::ColorRole::line));
    }
    const int rowGap = spacing(isDense_).row;
    for (int row = 0; row < boneRows_; ++row) {
        const int top = bodyTop() + headGap + row * (rowHeight + rowGap);
        drawRowBones(painter, *this, QPoint(sidePadding, top), width() - 2 * sidePadding, columns_);
    }
}

} // namespace vellmark
