#include "ui/kit/Form.h"

#include "ui/kit/Button.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QGraphicsDropShadowEffect>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace vellmark::kit {

namespace {
constexpr int gap = 12;
/// Above and below the words of the highest rows.
constexpr int verticalPadding = 7;
/// Between words and controls that stand below them.
constexpr int stackGap = 8;
/// With less room than this the words break too often to be read beside the controls.
constexpr int leastWordsWidth = 220;
/// An explanation of this width is easily read.
constexpr int easyWordsWidth = 400;
constexpr int hairline = 1;

constexpr int headingAbove = 12;
constexpr int headingHeight = 28;
constexpr int headingBelow = 4;
constexpr int hintAbove = 8;
constexpr int below = 4;

constexpr double liftedBlur = 18;
constexpr double liftedOffset = 6;
constexpr int lightShadow = 38;
constexpr int darkShadow = 102;
} // namespace

FormRow::FormRow(QWidget* parent)
    : QWidget(parent), label_(new Label(style::body, ColorRole::ink, this)),
      explanation_(new Label(style::small, ColorRole::ink2, this)) {
    label_->setMostLines(anyNumberOfLines);
    explanation_->setMostLines(anyNumberOfLines);
}

void FormRow::setWords(const QString& label, const QString& explanation) {
    label_->setWords(label);
    explanation_->setWords(explanation);
    explanation_->setVisible(!explanation.isEmpty());
    arrange();
}

void FormRow::setLabelStyle(const TextStyle& style) {
    label_->setTextStyle(style);
}

void FormRow::setLeastHeight(int height) {
    leastHeight_ = height;
}

void FormRow::addLeading(QWidget* mark, const QMargins& reach) {
    mark->setParent(this);
    leading_.push_back({mark, reach});
}

void FormRow::addControl(QWidget* control, int reach) {
    control->setParent(this);
    controls_.push_back({control, reach});
}

void FormRow::setLifted(bool isLifted) {
    if (isLifted == isLifted_) {
        return;
    }
    isLifted_ = isLifted;
    if (isLifted) {
        auto* shadow = new QGraphicsDropShadowEffect;
        shadow->setBlurRadius(liftedBlur);
        shadow->setOffset(0, liftedOffset);
        shadow->setColor(QColor(0, 0, 0, Theme::current().isDark() ? darkShadow : lightShadow));
        setGraphicsEffect(shadow);
        raise();
    } else {
        setGraphicsEffect(nullptr);
    }
    update();
}

std::vector<FormRow::Control> FormRow::shownControls() const {
    std::vector<Control> shown;
    std::ranges::copy_if(controls_, std::back_inserter(shown),
                         [](const Control& control) { return !control.widget->isHidden(); });
    return shown;
}

FormRow::Plan FormRow::plan(int width) const {
    Plan plan;
    plan.wordsLeft = padding;
    for (const Mark& mark : leading_) {
        plan.wordsLeft += mark.width() + gap;
    }
    const int room = std::max(width - plan.wordsLeft - padding, 0);
    int leastControls = 0;
    for (const Control& control : shownControls()) {
        const int between = plan.controlsWidth == 0 ? 0 : gap;
        plan.controlsWidth += between + control.wanted().width();
        leastControls += between + control.least().width();
        plan.controlsHeight = std::max(plan.controlsHeight, control.wanted().height());
    }
    const int wanted =
        std::max(label_->wantedWidth(), std::min(explanation_->wantedWidth(), leastWordsWidth));
    const int leastWords = std::min(wanted, leastWordsWidth);
    const int between = plan.controlsWidth == 0 ? 0 : gap;
    plan.isBeside = room - between - leastControls >= leastWords;
    // A control that can give way does so for the sake of fewer lines.
    const int easyWords =
        std::max(leastWords, std::min(explanation_->wantedWidth(), easyWordsWidth));
    plan.controlsWidth =
        plan.isBeside ? std::clamp(room - between - easyWords, leastControls, plan.controlsWidth)
                      : std::min(plan.controlsWidth, room);
    plan.wordsWidth = plan.isBeside ? room - between - plan.controlsWidth : room;
    plan.labelHeight = label_->heightForWidth(plan.wordsWidth);
    plan.explanationHeight =
        explanation_->text().isEmpty() ? 0 : explanation_->heightForWidth(plan.wordsWidth);
    const int words = plan.labelHeight + plan.explanationHeight;
    const int content = plan.isBeside ? std::max(words, plan.controlsHeight)
                                      : words + stackGap + plan.controlsHeight;
    plan.height = std::max(content + 2 * verticalPadding, leastHeight_);
    return plan;
}

int FormRow::heightForWidth(int width) const {
    return plan(width).height;
}

QSize FormRow::sizeHint() const {
    return {width(), heightForWidth(width())};
}

void FormRow::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void FormRow::arrange() {
    const Plan plan = this->plan(width());
    const int words = plan.labelHeight + plan.explanationHeight;
    const int content = plan.isBeside ? words : words + stackGap + plan.controlsHeight;
    const int top = (height() - content) / 2;
    int left = padding;
    const int marksMiddle = plan.isBeside ? height() / 2 : top + words / 2;
    for (const Mark& mark : leading_) {
        const QSize size = mark.widget->sizeHint();
        mark.widget->setGeometry(left - mark.reach.left(), marksMiddle - size.height() / 2,
                                 size.width(), size.height());
        left += mark.width() + gap;
    }
    label_->setGeometry(plan.wordsLeft, top, plan.wordsWidth, plan.labelHeight);
    explanation_->setGeometry(plan.wordsLeft, top + plan.labelHeight, plan.wordsWidth,
                              plan.explanationHeight);
    const std::vector<Control> controls = shownControls();
    int tooWide = -plan.controlsWidth - gap;
    for (const Control& control : controls) {
        tooWide += control.wanted().width() + gap;
    }
    left = plan.isBeside ? width() - padding - plan.controlsWidth : plan.wordsLeft;
    const int middle =
        plan.isBeside ? height() / 2 : top + words + stackGap + plan.controlsHeight / 2;
    for (const Control& control : controls) {
        const QSize size = control.wanted();
        const int mayLose = size.width() - control.least().width();
        const int loses = std::clamp(tooWide, 0, std::max(mayLose, 0));
        tooWide -= loses;
        const QRect place(left, middle - size.height() / 2, size.width() - loses, size.height());
        const int reach = control.reach;
        control.widget->setGeometry(place.adjusted(-reach, -reach, reach, reach));
        left += place.width() + gap;
    }
}

void FormRow::paintEvent(QPaintEvent* /*event*/) {
    if (!isLifted_) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color(ColorRole::line), hairline));
    painter.setBrush(color(ColorRole::card));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius::card - 0.5,
                            radius::card - 0.5);
}

FormCard::FormCard(QWidget* parent) : QWidget(parent) {}

void FormCard::setRows(const std::vector<FormRow*>& rows) {
    for (FormRow* row : rows_) {
        if (row != nullptr && std::ranges::find(rows, row) == rows.end()) {
            row->hide();
        }
    }
    rows_.assign(rows.begin(), rows.end());
    for (FormRow* row : rows) {
        if (row->parentWidget() != this) {
            row->setParent(this);
            row->show();
        }
    }
    arrange();
    update();
}

std::vector<FormRow*> FormCard::shownRows() const {
    std::vector<FormRow*> shown;
    for (FormRow* row : rows_) {
        if (row != nullptr && !row->isHidden()) {
            shown.push_back(row);
        }
    }
    return shown;
}

int FormCard::heightForWidth(int width) const {
    int height = 0;
    for (const FormRow* row : shownRows()) {
        height += (height == 0 ? 0 : hairline) + row->heightForWidth(width);
    }
    return height;
}

void FormCard::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void FormCard::arrange() {
    int top = 0;
    for (FormRow* row : shownRows()) {
        const int height = row->heightForWidth(width());
        row->setGeometry(0, top, width(), height);
        row->arrange();
        top += height + hairline;
    }
}

void FormCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(color(ColorRole::card));
    painter.setPen(QPen(color(ColorRole::line), hairline));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius::card - 0.5,
                            radius::card - 0.5);
    painter.setRenderHint(QPainter::Antialiasing, false);
    int top = 0;
    for (const FormRow* row : shownRows()) {
        if (top > 0) {
            painter.fillRect(QRect(0, top - hairline, width(), hairline), color(ColorRole::line));
        }
        top += row->heightForWidth(width()) + hairline;
    }
}

FormSection::FormSection(FormCard* card, QWidget* parent)
    : QWidget(parent), heading_(new Label(style::smallStrong, ColorRole::ink2, this)),
      button_(new Button(Button::Kind::plain, this)), card_(card),
      hint_(new Label(style::small, ColorRole::ink2, this)) {
    card_->setParent(this);
    button_->setSmallText(true);
    button_->setContentColor(ColorRole::ink2);
    button_->hide();
    hint_->setMostLines(anyNumberOfLines);
    hint_->hide();
}

void FormSection::setHeading(const QString& words) {
    heading_->setWords(words);
    card_->setAccessibleName(words);
}

void FormSection::setHint(const QString& words) {
    hint_->setWords(words);
    hint_->setVisible(!words.isEmpty());
}

int FormSection::heightForWidth(int width) const {
    const int inner = width - 2 * sideRoom;
    int height = headingAbove + headingHeight + headingBelow + card_->heightForWidth(inner) + below;
    if (!hint_->isHidden()) {
        height += hintAbove + hint_->heightForWidth(inner - 2 * FormRow::padding);
    }
    return height;
}

void FormSection::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void FormSection::arrange() {
    const int inner = width() - 2 * sideRoom;
    int headingWidth = inner;
    button_->setVisible(!button_->text().isEmpty());
    if (!button_->isHidden()) {
        const QSize size = button_->sizeHint();
        // The words, not the ground behind them, end where the card ends.
        button_->setGeometry(sideRoom + inner - size.width() + Button::plainPadding, headingAbove,
                             size.width(), size.height());
        headingWidth = button_->x() - sideRoom - gap;
    }
    heading_->setGeometry(sideRoom, headingAbove, headingWidth, headingHeight);
    const int cardTop = headingAbove + headingHeight + headingBelow;
    const int cardHeight = card_->heightForWidth(inner);
    card_->setGeometry(sideRoom, cardTop, inner, cardHeight);
    card_->arrange();
    const int hintWidth = inner - 2 * FormRow::padding;
    hint_->setGeometry(sideRoom + FormRow::padding, cardTop + cardHeight + hintAbove, hintWidth,
                       hint_->heightForWidth(hintWidth));
}

} // namespace vellmark::kit
