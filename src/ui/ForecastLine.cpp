#include "ui/ForecastLine.h"

#include "ui/Conversions.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"

#include <QPainter>

#include <cmath>

namespace vellmark {

namespace {

constexpr double markSide = 11;
constexpr double markGap = 5;

bool hasMark(UsageHealth tone) {
    return tone == UsageHealth::attention || tone == UsageHealth::critical;
}

kit::ColorRole wordsColor(UsageHealth tone) {
    switch (tone) {
    case UsageHealth::attention:
        return kit::ColorRole::attentionText;
    case UsageHealth::critical:
        return kit::ColorRole::criticalText;
    default:
        return kit::ColorRole::ink2;
    }
}

const kit::TextStyle& wordsStyle(UsageHealth tone) {
    return hasMark(tone) ? kit::style::smallMedium : kit::style::small;
}

} // namespace

ForecastLine::ForecastLine(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
}

void ForecastLine::setContent(const std::optional<ForecastLineContent>& content) {
    if (content && *content != content_) {
        content_ = *content;
        chooseForm();
        update();
    }
    setVisible(content.has_value());
}

void ForecastLine::setContent(const UsageRowContent& row) {
    if (row.isUsedUp) {
        setContent(ForecastLineContent{row.reset, row.reset, UsageHealth::critical});
    } else {
        setContent(row.forecast);
    }
}

double ForecastLine::wordsLeft() const {
    return hasMark(content_.tone) ? markSide + markGap : 0;
}

QSize ForecastLine::sizeHint() const {
    const kit::TextStyle& style = wordsStyle(content_.tone);
    const double words = kit::textWidth(qString(content_.text), style);
    return {static_cast<int>(std::ceil(wordsLeft() + words)), style.lineHeight};
}

void ForecastLine::resizeEvent(QResizeEvent* /*event*/) {
    chooseForm();
}

void ForecastLine::chooseForm() {
    const QString whole = qString(content_.text);
    const bool fits = wordsLeft() + kit::textWidth(whole, wordsStyle(content_.tone)) <= width();
    setText(fits ? whole : qString(content_.briefText));
    setToolTip(fits ? QString() : whole);
    // What is spoken needs no room.
    setAccessibleName(whole);
}

void ForecastLine::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (hasMark(content_.tone)) {
        kit::drawIcon(painter, QRectF(0, (height() - markSide) / 2, markSide, markSide),
                      "exclamationmark.triangle.fill", kit::color(markColor(content_.tone)));
    }
    const QRectF words(wordsLeft(), 0, width() - wordsLeft(), height());
    const kit::TextStyle& style = wordsStyle(content_.tone);
    painter.setPen(kit::color(wordsColor(content_.tone)));
    kit::drawText(painter, words, Qt::AlignLeft, kit::elidedText(text(), style, words.width()),
                  style);
}

} // namespace vellmark
