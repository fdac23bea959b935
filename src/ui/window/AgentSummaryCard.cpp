#include "ui/window/AgentSummaryCard.h"

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
#include "ui/window/SummaryCell.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int topPadding = 14;
constexpr int padding = 16;
constexpr int headHeight = 24;
constexpr int bodyGap = 12;
constexpr int gap = 8;
constexpr int logoSide = 24;
constexpr int chevronSide = 14;
constexpr int chevronGap = 12;
constexpr int cellsInRow = 3;
constexpr int cellGap = 20;
constexpr int cellRowGap = 16;
constexpr int balanceHeight = 16;
constexpr int bodyTop = topPadding + headHeight;
} // namespace

AgentSummaryCard::AgentSummaryCard(const AgentUIActions& actions, QWidget* parent)
    : kit::Card(parent), actions_(actions), logo_(new kit::LogoTile(logoSide, this)),
      name_(new kit::Label(kit::style::heading, kit::ColorRole::ink, this)),
      account_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      health_(new kit::HealthDot(this)), failure_(new kit::Notice(this)) {
    failure_->onPress = [this] { takeWayOut(wayOut_, actions_); };
}

void AgentSummaryCard::setContent(const AgentBlockContent& content,
                                  const std::string& loadingText) {
    setText(qString(content.name));
    setAccessibleName(qString(content.accessibilityText));
    logo_->setLook(providerLogo(content.id));
    name_->setWords(qString(content.name));
    account_->setWords(accountLine(content));
    kit::HealthLook health = healthLook(content);
    if (content.state == AgentBlockContent::State::loading) {
        health.words = qString(loadingText);
    }
    health_->setLook(health);
    boneCells_ = content.boneRows;
    setCells(content.rows);
    setBalances(content.balances);
    hasFailure_ = content.failure.has_value();
    if (content.failure) {
        wayOut_ = content.failure->wayOut;
        failure_->setLook(failureLook(*content.failure));
    }
    failure_->setVisible(hasFailure_);
    arrange();
    update();
}

void AgentSummaryCard::setCells(const std::vector<UsageRowContent>& rows) {
    while (cells_.size() > rows.size()) {
        delete cells_.back();
        cells_.pop_back();
    }
    while (cells_.size() < rows.size()) {
        cells_.push_back(new SummaryCell(this));
        cells_.back()->show();
    }
    for (std::size_t index = 0; index < rows.size(); ++index) {
        cells_[index]->setContent(rows[index]);
    }
}

void AgentSummaryCard::setBalances(const std::vector<BalanceRowContent>& balances) {
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

QWidget* AgentSummaryCard::wayOutButton() const {
    return hasFailure_ && wayOut_ != WayOut::none ? failure_->button() : nullptr;
}

int AgentSummaryCard::cellCount() const {
    return std::max(static_cast<int>(cells_.size()), boneCells_);
}

QRect AgentSummaryCard::cellPlace(int index, int width) const {
    const int wide = (width - 2 * padding - (cellsInRow - 1) * cellGap) / cellsInRow;
    return {padding + index % cellsInRow * (wide + cellGap),
            bodyTop + bodyGap + index / cellsInRow * (SummaryCell::cellHeight + cellRowGap), wide,
            SummaryCell::cellHeight};
}

int AgentSummaryCard::heightForWidth(int width) const {
    int height = bodyTop;
    if (cellCount() > 0) {
        height = cellPlace(cellCount() - 1, width).bottom() + 1;
    }
    const int balances = static_cast<int>(balances_.size());
    if (balances > 0) {
        height += bodyGap + balances * (balanceHeight + gap) - gap;
    }
    if (hasFailure_) {
        height += bodyGap + failure_->heightForWidth(width - 2 * padding);
    }
    return height + padding;
}

void AgentSummaryCard::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void AgentSummaryCard::arrangeHead() {
    logo_->setGeometry(padding, topPadding, logoSide, logoSide);
    const QSize health = health_->sizeHint();
    const int healthLeft = width() - padding - chevronSide - chevronGap - health.width();
    health_->setGeometry(healthLeft, topPadding + (headHeight - health.height()) / 2,
                         health.width(), health.height());
    int left = padding + logoSide + gap;
    const int name = std::min(name_->wantedWidth(), std::max(healthLeft - gap - left, 0));
    name_->setGeometry(left, topPadding + (headHeight - kit::style::heading.lineHeight) / 2, name,
                       kit::style::heading.lineHeight);
    left += name + gap;
    // One lower: on the baseline of the name, as near as points allow.
    account_->setGeometry(left, topPadding + (headHeight - kit::style::small.lineHeight) / 2 + 1,
                          std::max(healthLeft - gap - left, 0), kit::style::small.lineHeight);
}

void AgentSummaryCard::arrange() {
    arrangeHead();
    int top = bodyTop;
    for (std::size_t index = 0; index < cells_.size(); ++index) {
        cells_[index]->setGeometry(cellPlace(static_cast<int>(index), width()));
        top = cells_[index]->geometry().bottom() + 1;
    }
    const int wide = std::max(width() - 2 * padding, 0);
    int above = bodyGap;
    for (BalanceRow* balance : balances_) {
        balance->setGeometry(padding, top + above, wide, balanceHeight);
        top += above + balanceHeight;
        above = gap;
    }
    if (hasFailure_) {
        failure_->setGeometry(padding, top + bodyGap, wide, failure_->heightForWidth(wide));
    }
}

void AgentSummaryCard::paintEvent(QPaintEvent* event) {
    kit::Card::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF chevron(width() - padding - chevronSide,
                         topPadding + (headHeight - chevronSide) / 2.0, chevronSide, chevronSide);
    kit::drawIcon(painter, chevron, "chevron.right", kit::color(kit::ColorRole::ink3));
    for (int index = 0; index < boneCells_; ++index) {
        const QRect place = cellPlace(index, width());
        drawCellBones(painter, place.topLeft(), place.width());
    }
}

} // namespace vellmark
