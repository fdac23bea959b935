#include "ui/window/SummaryCell.h"

#include "ui/Conversions.h"
#include "ui/ForecastLine.h"
#include "ui/UsageBar.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Track.h"

#include <QPainter>

namespace vellmark {

namespace {
constexpr int labelLine = kit::style::row.lineHeight;
constexpr int figureTop = labelLine + 4;
constexpr int figureLine = kit::style::figure.lineHeight;
constexpr int barTop = figureTop + figureLine + 8;
constexpr int barHeight = 6;
constexpr int resetTop = barTop + barHeight + 9;
constexpr int smallLine = kit::style::small.lineHeight;
constexpr int lastTop = resetTop + smallLine + 4;
constexpr int wordGap = 6;
static_assert(lastTop + smallLine == SummaryCell::cellHeight);
} // namespace

SummaryCell::SummaryCell(QWidget* parent)
    : QWidget(parent), label_(new kit::Label(kit::style::row, kit::ColorRole::ink2, this)),
      figure_(new kit::Label(kit::style::figure, kit::ColorRole::ink, this)),
      figureWord_(new kit::Label(kit::style::bodyMedium, kit::ColorRole::ink2, this)),
      bar_(new UsageBar(barHeight, this)),
      reset_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      planning_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      forecast_(new ForecastLine(this)) {}

void SummaryCell::setContent(const UsageRowContent& content) {
    label_->setWords(qString(content.label));
    label_->setToolTip(content.fullLabel != content.label ? qString(content.fullLabel) : QString());
    figure_->setColor(content.isStale ? kit::ColorRole::ink2 : kit::ColorRole::ink);
    figure_->setChangingWords(qString(content.figure));
    figureWord_->setWords(qString(content.figureWord));
    bar_->setContent(content);
    reset_->setWords(qString(content.reset));
    planning_->setWords(qString(content.planning));
    forecast_->setContent(content.forecast);
    planning_->setVisible(!content.forecast);
    arrange();
}

void SummaryCell::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void SummaryCell::arrange() {
    label_->setGeometry(0, 0, width(), labelLine);
    const int figure = figure_->wantedWidth();
    figure_->setGeometry(0, figureTop, figure, figureLine);
    const int wordTop = figureTop + static_cast<int>(kit::baseline(kit::style::figure) -
                                                     kit::baseline(kit::style::bodyMedium));
    figureWord_->setGeometry(figure + wordGap, wordTop, figureWord_->wantedWidth(),
                             kit::style::bodyMedium.lineHeight);
    bar_->setGeometry(0, barTop - kit::barMarkReach, width(), barHeight + 2 * kit::barMarkReach);
    reset_->setGeometry(0, resetTop, width(), smallLine);
    planning_->setGeometry(0, lastTop, width(), smallLine);
    forecast_->setGeometry(0, lastTop, width(), smallLine);
}

void drawCellBones(QPainter& painter, const QWidget& on, QPoint topLeft, int width) {
    const auto bone = [&](double top, double boneWidth, double height) {
        kit::drawBone(painter, on, QRectF(topLeft.x(), topLeft.y() + top, boneWidth, height));
    };
    bone(4, 64, 8);
    bone(figureTop + 6, 96, 16);
    bone(barTop, width, barHeight);
    bone(resetTop + 3, 150, 8);
    bone(lastTop + 3, 96, 8);
}

} // namespace vellmark
