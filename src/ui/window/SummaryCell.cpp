#include "ui/window/SummaryCell.h"

#include "ui/ForecastLine.h"
#include "ui/UsageProgressBar.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Track.h"

#include <QPainter>

namespace vellmark {

namespace {
constexpr int barHeight = 6;
constexpr UsageFigures::Form figuresForm{
    .labelColor = kit::ColorRole::ink2,
    .figureStyle = kit::style::figure,
    .wordStyle = kit::style::bodyMedium,
    .barHeight = barHeight,
};
constexpr int labelLine = kit::style::row.lineHeight;
constexpr int figureTop = labelLine + 4;
constexpr int figureLine = kit::style::figure.lineHeight;
constexpr int barTop = figureTop + figureLine + 8;
constexpr int resetTop = barTop + barHeight + 9;
constexpr int smallLine = kit::style::small.lineHeight;
constexpr int lastTop = resetTop + smallLine + 4;
constexpr int wordGap = 6;
static_assert(lastTop + smallLine == SummaryCell::cellHeight);
} // namespace

SummaryCell::SummaryCell(QWidget* parent) : QWidget(parent), figures_(figuresForm, this) {}

void SummaryCell::setContent(const UsageRowContent& content) {
    figures_.setContent(content);
    figures_.planning->setVisible(!content.forecast);
    isUsedUp_ = content.isUsedUp;
    arrange();
}

void SummaryCell::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void SummaryCell::arrange() {
    figures_.label->setGeometry(0, 0, width(), labelLine);
    const int figure = figures_.figure->wantedWidth();
    figures_.figure->setGeometry(0, figureTop, figure, figureLine);
    const int wordTop = figureTop + static_cast<int>(kit::baseline(kit::style::figure) -
                                                     kit::baseline(kit::style::bodyMedium));
    figures_.word->setGeometry(figure + wordGap, wordTop, figures_.word->wantedWidth(),
                               kit::style::bodyMedium.lineHeight);
    figures_.bar->setGeometry(0, barTop - kit::barMarkReach, width(),
                              barHeight + 2 * kit::barMarkReach);
    figures_.reset->setGeometry(0, resetTop, width(), smallLine);
    figures_.planning->setGeometry(0, lastTop, width(), smallLine);
    figures_.forecast->setGeometry(0, isUsedUp_ ? resetTop : lastTop, width(), smallLine);
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
