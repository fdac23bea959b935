#include "ui/popover/UsageFigureRow.h"

#include "ui/ForecastLine.h"
#include "ui/UsageProgressBar.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Track.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int barHeight = 8;
constexpr UsageFigures::Form figuresForm{
    .labelColor = kit::ColorRole::ink,
    .figureStyle = kit::style::figureSmall,
    .wordStyle = kit::style::row,
    .barHeight = barHeight,
};
constexpr int topPadding = 12;
constexpr int bottomPadding = 14;
constexpr int figureLine = kit::style::figureSmall.lineHeight;
constexpr int smallLine = kit::style::small.lineHeight;
constexpr int barTop = topPadding + figureLine + 7;
constexpr int smallTop = barTop + barHeight + 8;
constexpr int forecastTop = smallTop + smallLine + 4;
constexpr int wordGap = 5;
constexpr int textGap = 12;

/// Small words that stand on the baseline of the large figure.
int smallWordsTop() {
    return topPadding + static_cast<int>(kit::baseline(kit::style::figureSmall) -
                                         kit::baseline(kit::style::row));
}
} // namespace

UsageFigureRow::UsageFigureRow(QWidget* parent) : QWidget(parent), figures_(figuresForm, this) {
    figures_.figure->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    figures_.planning->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void UsageFigureRow::setContent(const UsageRowContent& content) {
    figures_.setContent(content);
    arrange();
}

int UsageFigureRow::lastTop() const {
    const bool standsBelow =
        figures_.forecast->isVisibleTo(this) && figures_.reset->isVisibleTo(this);
    return standsBelow ? forecastTop : smallTop;
}

int UsageFigureRow::wantedHeight() const {
    return lastTop() + smallLine + bottomPadding;
}

void UsageFigureRow::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void UsageFigureRow::arrange() {
    const int wordsTop = smallWordsTop();
    const int rowLine = kit::style::row.lineHeight;
    const int word = figures_.word->wantedWidth();
    const int figure = figures_.figure->wantedWidth();
    figures_.word->setGeometry(width() - word, wordsTop, word, rowLine);
    figures_.figure->setGeometry(width() - word - wordGap - figure, topPadding, figure, figureLine);
    figures_.label->setGeometry(0, wordsTop, std::max(figures_.figure->x() - textGap, 0), rowLine);
    figures_.bar->setGeometry(0, barTop - kit::barMarkReach, width(),
                              barHeight + 2 * kit::barMarkReach);
    const int planning = std::min(figures_.planning->wantedWidth(), width() / 2);
    figures_.planning->setGeometry(width() - planning, smallTop, planning, smallLine);
    figures_.reset->setGeometry(0, smallTop, width() - planning - textGap, smallLine);
    figures_.forecast->setGeometry(0, lastTop(), width(), smallLine);
}

void drawFigureBones(QPainter& painter, const QWidget& on, QPoint topLeft, int width) {
    const auto bone = [&](double left, double top, double boneWidth) {
        kit::drawBone(painter, on,
                      QRectF(topLeft.x() + left, topLeft.y() + top, boneWidth, barHeight));
    };
    const double labelTop = smallWordsTop() + 4;
    bone(0, labelTop, 64);
    bone(width - 72, labelTop, 72);
    bone(0, barTop, width);
    bone(0, smallTop + 3, 150);
}

int figureBonesHeight() {
    return smallTop + smallLine + bottomPadding;
}

} // namespace vellmark
