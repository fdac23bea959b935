#include "ui/kit/Label.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ToolTip.h"

#include <QHelpEvent>
#include <QPainter>

#include <cmath>

namespace vellmark::kit {

Label::Label(const TextStyle& style, ColorRole color, QWidget* parent)
    : QLabel(parent), style_(style), color_(color) {
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void Label::setWords(const QString& words) {
    if (words != text()) {
        formerWords_.clear();
        setText(words);
    }
}

void Label::setChangingWords(const QString& words) {
    if (words == text()) {
        return;
    }
    const QString former = text();
    setWords(words);
    if (former.isEmpty() || !isVisible()) {
        return;
    }
    if (!change_) {
        change_ = std::make_unique<Transition>(this);
    }
    formerWords_ = former;
    change_->jumpTo(0);
    change_->moveTo(1, duration::valueChange);
}

void Label::setTextStyle(const TextStyle& style) {
    if (style_ != style) {
        style_ = style;
        forgetLines();
        updateGeometry();
        update();
    }
}

void Label::setColor(ColorRole color) {
    if (color_ != color) {
        color_ = color;
        update();
    }
}

void Label::setMostLines(int lines) {
    mostLines_ = lines;
    forgetLines();
    updateGeometry();
    update();
}

int Label::wantedWidth() const {
    return static_cast<int>(std::ceil(textWidth(text(), style_)));
}

bool Label::isShortened() const {
    return linesOf(text(), width()) != wrappedText(text(), style_, width());
}

QSize Label::sizeHint() const {
    return {wantedWidth(), style_.lineHeight};
}

QSize Label::minimumSizeHint() const {
    return {0, style_.lineHeight};
}

QStringList Label::linesOf(const QString& words, int width) const {
    if (broken_.width != width || broken_.words != words) {
        broken_ = {words, width, wrappedText(words, style_, width, mostLines_)};
    }
    return broken_.lines;
}

int Label::heightForWidth(int width) const {
    const auto count = static_cast<int>(linesOf(text(), width).size());
    return std::max(count, 1) * style_.lineHeight;
}

SpokenAs Label::spokenAs() const {
    const bool looksLikeOne = style_ == style::title || style_ == style::heading;
    return {isHeading_ || looksLikeOne ? QAccessible::Heading : QAccessible::StaticText};
}

bool Label::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && isShortened()) {
        showToolTip(this, static_cast<QHelpEvent*>(event)->globalPos(), text());
        return true;
    }
    if (event->type() == QEvent::FontChange) {
        forgetLines();
    }
    return QLabel::event(event);
}

void Label::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(color(color_));
    const double shown = formerWords_.isEmpty() || !change_ ? 1 : change_->value();
    if (shown < 1) {
        painter.setOpacity(1 - shown);
        drawWords(painter, formerWords_);
    }
    painter.setOpacity(shown);
    drawWords(painter, text());
}

void Label::drawWords(QPainter& painter, const QString& words) const {
    const QStringList lines = linesOf(words, width());
    // One line stands where the alignment puts it, several fill the label from its top.
    QRectF line = lines.size() > 1 ? QRectF(0, 0, width(), style_.lineHeight) : QRectF(rect());
    for (const QString& text : lines) {
        drawText(painter, line, alignment(), text, style_);
        line.translate(0, style_.lineHeight);
    }
}

} // namespace vellmark::kit
