#include "ui/popover/UsageFigureRow.h"

#include "ui/Conversions.h"
#include "ui/ForecastLine.h"
#include "ui/UsageBar.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Track.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int topPadding = 12;
constexpr int bottomPadding = 14;
constexpr int figureLine = kit::style::figureSmall.lineHeight;
constexpr int smallLine = kit::style::small.lineHeight;
constexpr int barTop = topPadding + figureLine + 7;
constexpr int barHeight = 8;
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

UsageFigureRow::UsageFigureRow(QWidget* parent)
    : QWidget(parent), label_(new kit::Label(kit::style::row, kit::ColorRole::ink, this)),
      figure_(new kit::Label(kit::style::figureSmall, kit::ColorRole::ink, this)),
      figureWord_(new kit::Label(kit::style::row, kit::ColorRole::ink2, this)),
      bar_(new UsageBar(barHeight, this)),
      reset_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      planning_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      forecast_(new ForecastLine(this)) {
    figure_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    planning_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void UsageFigureRow::setContent(const UsageRowContent& content) {
    label_->setWords(qString(content.label));
    label_->setToolTip(content.fullLabel != content.label ? qString(content.fullLabel) : QString());
    figure_->setColor(content.isStale ? kit::ColorRole::ink2 : kit::ColorRole::ink);
    figure_->setChangingWords(qString(content.figure));
    figureWord_->setWords(qString(content.figureWord));
    bar_->setContent(content);
    reset_->setWords(qString(content.reset));
    planning_->setWords(qString(content.planning));
    forecast_->setContent(content.forecast);
    arrange();
}

int UsageFigureRow::wantedHeight() const {
    const int last = forecast_->isVisibleTo(this) ? forecastTop : smallTop;
    return last + smallLine + bottomPadding;
}

void UsageFigureRow::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void UsageFigureRow::arrange() {
    const int wordsTop = smallWordsTop();
    const int rowLine = kit::style::row.lineHeight;
    const int word = figureWord_->wantedWidth();
    const int figure = figure_->wantedWidth();
    figureWord_->setGeometry(width() - word, wordsTop, word, rowLine);
    figure_->setGeometry(width() - word - wordGap - figure, topPadding, figure, figureLine);
    label_->setGeometry(0, wordsTop, std::max(figure_->x() - textGap, 0), rowLine);
    bar_->setGeometry(0, barTop - kit::barMarkReach, width(), barHeight + 2 * kit::barMarkReach);
    const int planning = std::min(planning_->wantedWidth(), width() / 2);
    planning_->setGeometry(width() - planning, smallTop, planning, smallLine);
    reset_->setGeometry(0, smallTop, width() - planning - textGap, smallLine);
    forecast_->setGeometry(0, forecastTop, width(), smallLine);
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
