#include "ui/popover/AgentBlock.h"

#include "ui/BalanceRow.h"
#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/WaysOut.h"
#include "ui/kit/Button.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Label.h"
#include "ui/kit/LogoTile.h"
#include "ui/kit/Notice.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int topPadding = 12;
constexpr int sidePadding = 16;
constexpr int bottomPadding = 14;
constexpr int headHeight = 20;
constexpr int headGap = 10;
constexpr int logoSide = 20;
constexpr int gap = 8;
constexpr int chevronSide = 12;
constexpr int rowHeight = 32;
constexpr int rowGap = 8;
constexpr int balanceHeight = 16;
constexpr int firstBalanceGap = 10;
constexpr int noticeGap = 12;
/// The ring's outer edge runs 4 inside the block.
constexpr kit::FocusShape ringInside{11, -6};
} // namespace

AgentBlock::AgentBlock(const AgentUIActions& actions, QWidget* parent)
    : QAbstractButton(parent), actions_(actions), interaction_(this, ringInside),
      logo_(new kit::LogoTile(logoSide, this)),
      name_(new kit::Label(kit::style::strong, kit::ColorRole::ink, this)),
      plan_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      health_(new kit::HealthDot(this)), failure_(new kit::Notice(this)) {
    setFocusPolicy(Qt::StrongFocus);
    failure_->onPress = [this] { takeWayOut(wayOut_, actions_); };
}

void AgentBlock::setContent(const AgentBlockContent& content) {
    setText(qString(content.name));
    setAccessibleName(qString(content.accessibilityText));
    logo_->setLook(providerLogo(content.id));
    name_->setWords(qString(content.name));
    plan_->setWords(qString(content.plan));
    health_->setLook(healthLook(content));
    boneRows_ = content.boneRows;
    setRows(content.rows);
    setBalances(content.balances);
    hasFailure_ = content.failure.has_value();
    if (content.failure) {
        wayOut_ = content.failure->wayOut;
        failure_->setLook(failureLook(*content.failure));
    }
    failure_->setVisible(hasFailure_);
    arrangeHead();
    arrangeBody();
    update();
}

void AgentBlock::setRows(const std::vector<UsageRowContent>& rows) {
    while (rows_.size() > rows.size()) {
        delete rows_.back();
        rows_.pop_back();
    }
    while (rows_.size() < rows.size()) {
        rows_.push_back(new CompactUsageRow(this));
        rows_.back()->show();
    }
    for (std::size_t index = 0; index < rows.size(); ++index) {
        rows_[index]->setColumns(columns_);
        rows_[index]->setContent(rows[index]);
    }
}

void AgentBlock::setBalances(const std::vector<BalanceRowContent>& balances) {
    while (balances_.size() > balances.size()) {
        delete balances_.back();
        balances_.pop_back();
    }
    while (balances_.size() < balances.size()) {
        balances_.push_back(new BalanceRow(this));
        balances_.back()->show();
    }
    for (std::size_t index = 0; index < balances.size(); ++index) {
        balances_[index]->setContent(balances[index]);
    }
}

void AgentBlock::setColumns(const RowColumns& columns) {
    columns_ = columns;
    for (CompactUsageRow* row : rows_) {
        row->setColumns(columns);
    }
    update();
}

void AgentBlock::setFirst(bool isFirst) {
    if (isFirst_ != isFirst) {
        isFirst_ = isFirst;
        arrangeHead();
        arrangeBody();
        update();
    }
}

QWidget* AgentBlock::wayOutButton() const {
    return hasFailure_ && wayOut_ != WayOut::none ? failure_->button() : nullptr;
}

int AgentBlock::headTop() const {
    return (isFirst_ ? 0 : 1) + topPadding;
}

int AgentBlock::bodyTop() const {
    return headTop() + headHeight;
}

int AgentBlock::wantedHeight() const {
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
    if (hasFailure_) {
        height += noticeGap + failure_->heightForWidth(width() - 2 * sidePadding);
    }
    return height + bottomPadding;
}

void AgentBlock::resizeEvent(QResizeEvent* /*event*/) {
    arrangeHead();
    arrangeBody();
}

void AgentBlock::arrangeHead() {
    const int top = headTop();
    const auto centered = [top](int height) { return top + (headHeight - height) / 2; };
    logo_->setGeometry(sidePadding, top, logoSide, logoSide);
    const QSize health = health_->sizeHint();
    const int healthLeft = width() - sidePadding - chevronSide - gap - health.width();
    health_->setGeometry(healthLeft, centered(health.height()), health.width(), health.height());
    int left = sidePadding + logoSide + gap;
    const int nameWidth = std::min(name_->wantedWidth(), std::max(healthLeft - gap - left, 0));
    name_->setGeometry(left, centered(kit::style::strong.lineHeight), nameWidth,
                       kit::style::strong.lineHeight);
    left += nameWidth + gap;
    plan_->setGeometry(left, centered(kit::style::small.lineHeight),
                       std::max(healthLeft - gap - left, 0), kit::style::small.lineHeight);
}

void AgentBlock::arrangeBody() {
    const int wide = std::max(width() - 2 * sidePadding, 0);
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
    if (hasFailure_) {
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
    const QRectF chevron(width() - sidePadding - chevronSide,
                         headTop() + (headHeight - chevronSide) / 2.0, chevronSide, chevronSide);
    kit::drawIcon(painter, chevron, "chevron.right", kit::color(kit::ColorRole::ink3));
    for (int row = 0; row < boneRows_; ++row) {
        const int top = bodyTop() + headGap + row * (rowHeight + rowGap);
        drawRowBones(painter, QPoint(sidePadding, top), width() - 2 * sidePadding, columns_);
    }
}

} // namespace vellmark
