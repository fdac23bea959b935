#include "ui/window/ReadingCard.h"

#include "ui/BalanceRow.h"
#include "ui/Conversions.h"
#include "ui/UpdateInPlace.h"
#include "ui/kit/Button.h"
#include "ui/kit/CardGround.h"
#include "ui/kit/Label.h"
#include "ui/kit/Theme.h"
#include "ui/window/ReadingFactRow.h"

#include <QPainter>

#include <algorithm>
#include <array>

namespace vellmark {

namespace {
constexpr int padding = 16;
constexpr int topPadding = 14;
constexpr int gap = 8;
constexpr int titleLine = kit::style::strong.lineHeight;
constexpr int titleBelow = 6;
constexpr int balanceHeight = 26;
/// Around a hairline between two parts.
constexpr int lineAbove = 8;
constexpr int lineBelow = 13;
constexpr int phasesAbove = 8;
constexpr int phasesHeight = 6;
constexpr int phaseGap = 2;
constexpr double phaseRadius = 2;
constexpr int phasesTextAbove = 8;
constexpr int footAbove = 10;
constexpr int footHeight = 41;
constexpr int button = 28;

/// Neighbours can be told apart, and none means health.
constexpr std::array phaseColors{kit::ColorRole::ink3, kit::ColorRole::lineStrong,
                                 kit::ColorRole::ink2};
} // namespace

ReadingCard::ReadingCard(const AgentPageActions& actions, QWidget* parent)
    : QWidget(parent), actions_(actions),
      balancesTitle_(new kit::Label(kit::style::strong, kit::ColorRole::ink, this)),
      title_(new kit::Label(kit::style::strong, kit::ColorRole::ink, this)),
      recheck_(new kit::Button(kit::Button::Kind::plain, this)),
      phasesText_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      orderTitle_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      position_(new kit::Label(kit::style::text, kit::ColorRole::ink, this)),
      earlier_(new kit::Button(kit::Button::Kind::plain, this)),
      later_(new kit::Button(kit::Button::Kind::plain, this)),
      switchOff_(new kit::Button(kit::Button::Kind::normal, this)) {
    phasesText_->setMostLines(2);
    connect(recheck_, &QAbstractButton::clicked, this, [this] { actions_.recheck(agent_); });
    connect(earlier_, &QAbstractButton::clicked, this,
            [this] { actions_.setOrder(content_.orderIfEarlier); });
    connect(later_, &QAbstractButton::clicked, this,
            [this] { actions_.setOrder(content_.orderIfLater); });
    connect(switchOff_, &QAbstractButton::clicked, this, [this] { actions_.switchOff(agent_); });
}

void ReadingCard::setContent(const AgentProviderID& agent, const ReadingCardContent& content) {
    agent_ = agent;
    content_ = content;
    setAccessibleName(qString(content.title));
    balancesTitle_->setWords(qString(content.balancesTitle));
    balancesTitle_->setVisible(!content.balances.empty());
    updateRows(balances_, content.balances, this);
    title_->setWords(qString(content.title));
    recheck_->setText(qString(content.recheck.title));
    recheck_->setIconName(content.recheck.icon, 12);
    recheck_->setToolTip(qString(content.recheck.help));
    recheck_->setTurning(content.isRechecking);
    updateRows(facts_, content.facts, this);
    phasesText_->setWords(qString(content.phasesText));
    phasesText_->setVisible(!content.phases.empty());
    orderTitle_->setWords(qString(content.orderTitle));
    position_->setWords(qString(content.position));
    for (const auto& [control, look] :
         {std::pair(earlier_, &content.earlier), std::pair(later_, &content.later)}) {
        control->setVisible(!content.orderTitle.empty());
        control->setIconName(look->icon, 12);
        control->setAccessibleName(qString(look->title));
        control->setToolTip(qString(look->title));
    }
    enableMoves();
    switchOff_->setText(qString(content.switchOff.title));
    switchOff_->setToolTip(qString(content.switchOff.help));
    arrange();
    update();
}

/// At an end of the order the keyboard goes to the other button, not on to the next control, which
/// a key that is pressed once more would switch the agent off with.
void ReadingCard::enableMoves() {
    const bool canGoEarlier = !content_.orderIfEarlier.empty();
    const bool canGoLater = !content_.orderIfLater.empty();
    earlier_->setEnabled(canGoEarlier || earlier_->hasFocus());
    later_->setEnabled(canGoLater || later_->hasFocus());
    if (earlier_->hasFocus() && !canGoEarlier && canGoLater) {
        later_->setFocus(Qt::TabFocusReason);
    } else if (later_->hasFocus() && !canGoLater && canGoEarlier) {
        earlier_->setFocus(Qt::TabFocusReason);
    }
    earlier_->setEnabled(canGoEarlier);
    later_->setEnabled(canGoLater);
}

std::vector<QWidget*> ReadingCard::controls() const {
    std::vector<QWidget*> result{recheck_};
    for (const ReadingFactRow* fact : facts_) {
        result.push_back(fact->copyButton());
    }
    result.insert(result.end(), {earlier_, later_, switchOff_});
    return result;
}

int ReadingCard::readingTop() const {
    if (balances_.empty()) {
        return topPadding;
    }
    return topPadding + titleLine + titleBelow +
           static_cast<int>(balances_.size()) * balanceHeight + lineAbove + lineBelow;
}

int ReadingCard::factsBottom() const {
    return readingTop() + titleLine + titleBelow +
           static_cast<int>(facts_.size()) * ReadingFactRow::rowHeight;
}

int ReadingCard::phasesTextHeight(int width) const {
    return phasesText_->heightForWidth(std::max(width - 2 * padding, 1));
}

int ReadingCard::heightForWidth(int width) const {
    int height = factsBottom();
    if (!content_.phases.empty()) {
        height += phasesAbove + phasesHeight + phasesTextAbove + phasesTextHeight(width);
    }
    return height + footAbove + footHeight;
}

int ReadingCard::labelWidth() const {
    int widest = 0;
    for (const ReadingFactRow* fact : facts_) {
        widest = std::max(widest, fact->wantedLabelWidth());
    }
    return widest;
}

void ReadingCard::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void ReadingCard::arrange() {
    const int wide = std::max(width() - 2 * padding, 0);
    balancesTitle_->setGeometry(padding, topPadding, wide, titleLine);
    int top = topPadding + titleLine + titleBelow;
    for (BalanceRow* balance : balances_) {
        balance->setGeometry(padding, top, wide, balanceHeight);
        top += balanceHeight;
    }

    top = readingTop();
    const QSize recheck = recheck_->sizeHint();
    recheck_->setGeometry(padding + wide - recheck.width() + kit::Button::plainPadding,
                          top + (titleLine - button) / 2, recheck.width(), button);
    title_->setGeometry(padding, top, std::max(recheck_->x() - padding, 0), titleLine);
    top += titleLine + titleBelow;
    const int labels = labelWidth();
    for (ReadingFactRow* fact : facts_) {
        fact->setLabelWidth(labels);
        fact->setGeometry(padding, top, wide, ReadingFactRow::rowHeight);
        top += ReadingFactRow::rowHeight;
    }
    phasesText_->setGeometry(padding, top + phasesAbove + phasesHeight + phasesTextAbove, wide,
                             phasesTextHeight(width()));
    arrangeFoot();
}

void ReadingCard::arrangeFoot() {
    const int top = height() - footHeight + 1 + (footHeight - 1 - button) / 2;
    int left = padding;
    for (kit::Label* label : {orderTitle_, position_}) {
        label->setGeometry(left, top, label->wantedWidth(), button);
        left += label->width() + gap;
    }
    for (kit::Button* control : {earlier_, later_}) {
        control->setGeometry(left, top, button, button);
        left += button;
    }
    const QSize size = switchOff_->sizeHint();
    switchOff_->setGeometry(width() - padding - size.width(), top, size.width(), button);
}

void ReadingCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    kit::drawCardGround(painter, rect());
    const auto hairline = [&](int top) {
        painter.fillRect(QRect(1, top, width() - 2, 1), kit::color(kit::ColorRole::line));
    };
    if (!balances_.empty()) {
        hairline(readingTop() - lineBelow);
    }
    hairline(height() - footHeight);
    paintPhases(painter);
}

void ReadingCard::paintPhases(QPainter& painter) const {
    const auto count = static_cast<int>(content_.phases.size());
    const double wide = width() - 2 * padding - phaseGap * (count - 1);
    double left = padding;
    painter.setPen(Qt::NoPen);
    for (std::size_t index = 0; index < content_.phases.size(); ++index) {
        const double part = std::max(wide * content_.phases[index].share, 1.0);
        painter.setBrush(kit::color(phaseColors[index % phaseColors.size()]));
        painter.drawRoundedRect(QRectF(left, factsBottom() + phasesAbove, part, phasesHeight),
                                phaseRadius, phaseRadius);
        left += part + phaseGap;
    }
}

} // namespace vellmark
