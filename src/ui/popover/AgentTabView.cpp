#include "ui/popover/AgentTabView.h"

#include "ui/BalanceRow.h"
#include "ui/Conversions.h"
#include "ui/FailureNotice.h"
#include "ui/ProviderLogo.h"
#include "ui/UpdateInPlace.h"
#include "ui/kit/Button.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/Label.h"
#include "ui/kit/LogoTile.h"
#include "ui/popover/UsageFigureRow.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int margin = 16;
constexpr int logoSide = 32;
constexpr int headPadding = 12;
constexpr int headGap = 12;
constexpr int headLines = kit::style::heading.lineHeight + kit::style::small.lineHeight;
constexpr int headHeight = headLines + 2 * headPadding;
constexpr int lineHeight = 1;
constexpr int plainRow = 35;
constexpr int noticeGap = 12;
} // namespace

AgentTabView::AgentTabView(const AgentUIActions& actions, QWidget* parent)
    : QWidget(parent), logo_(new kit::LogoTile(logoSide, this)),
      name_(new kit::Label(kit::style::heading, kit::ColorRole::ink, this)),
      account_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      health_(new kit::Pill(this)), failure_(new FailureNotice(actions, this)),
      source_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      openPage_(new kit::Button(kit::Button::Kind::plain, this)) {
    openPage_->setSmallText(true);
    openPage_->setContentColor(kit::ColorRole::ink2);
    connect(openPage_, &QAbstractButton::clicked, this,
            [this, &actions] { actions.openProvider(id_); });
}

void AgentTabView::setContent(const AgentBlockContent& content, const ControlContent& openPage) {
    id_ = content.id;
    logo_->setLook(providerLogo(content.id));
    name_->setWords(qString(content.name));
    account_->setWords(accountLine(content));
    health_->setLook(healthLook(content));
    boneRows_ = content.boneRows;
    updateRows(rows_, content.rows, this);
    failure_->setContent(content.failure);
    updateRows(balances_, content.balances, this);
    source_->setWords(qString(content.sourceText));
    openPage_->setText(qString(openPage.title));
    openPage_->setTrailingIconName(openPage.icon, 11);
    arrange();
    update();
}

std::vector<QWidget*> AgentTabView::controls() const {
    std::vector<QWidget*> result;
    if (QWidget* button = failure_->wayOutButton()) {
        result.push_back(button);
    }
    result.push_back(openPage_);
    return result;
}

int AgentTabView::wantedHeight() const {
    return wantedHeight_;
}

void AgentTabView::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void AgentTabView::arrangeHead() {
    logo_->setGeometry(margin, (headHeight - logoSide) / 2, logoSide, logoSide);
    const QSize health = health_->sizeHint();
    const int healthLeft = width() - margin - health.width();
    health_->setGeometry(healthLeft, (headHeight - health.height()) / 2, health.width(),
                         health.height());
    const int left = margin + logoSide + headGap;
    const int wide = std::max(healthLeft - headGap - left, 0);
    if (account_->text().isEmpty()) {
        name_->setGeometry(left, 0, wide, headHeight);
    } else {
        name_->setGeometry(left, headPadding, wide, kit::style::heading.lineHeight);
    }
    account_->setGeometry(left, headPadding + kit::style::heading.lineHeight, wide,
                          kit::style::small.lineHeight);
}

void AgentTabView::arrange() {
    arrangeHead();
    lines_.clear();
    const int wide = std::max(width() - 2 * margin, 0);
    int top = headHeight;
    const auto beginRow = [&] {
        lines_.push_back(top);
        top += lineHeight;
    };
    for (UsageFigureRow* row : rows_) {
        beginRow();
        row->setGeometry(margin, top, wide, row->wantedHeight());
        top += row->height();
    }
    bonesTop_ = top;
    for (int row = 0; row < boneRows_; ++row) {
        beginRow();
        top += figureBonesHeight();
    }
    if (failure_->isVisibleTo(this)) {
        beginRow();
        failure_->setGeometry(margin, top + noticeGap, wide, failure_->heightForWidth(wide));
        top += failure_->height() + 2 * noticeGap;
    }
    for (BalanceRow* balance : balances_) {
        beginRow();
        balance->setGeometry(margin, top, wide, plainRow);
        top += plainRow;
    }
    beginRow();
    const QSize button = openPage_->sizeHint();
    openPage_->setGeometry(width() - margin - button.width() + kit::Button::plainPadding,
                           top + (plainRow - button.height()) / 2, button.width(), button.height());
    source_->setGeometry(margin, top, std::max(openPage_->x() - margin, 0), plainRow);
    wantedHeight_ = top + plainRow;
}

void AgentTabView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const int line : lines_) {
        painter.fillRect(QRect(0, line, width(), lineHeight), kit::color(kit::ColorRole::line));
    }
    for (int row = 0; row < boneRows_; ++row) {
        const int top = bonesTop_ + row * (figureBonesHeight() + lineHeight) + lineHeight;
        drawFigureBones(painter, *this, QPoint(margin, top), width() - 2 * margin);
    }
}

} // namespace vellmark
