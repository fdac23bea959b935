#include "ui/window/AgentWindowCard.h"

#include "ui/ChartView.h"
#include "ui/Conversions.h"
#include "ui/ForecastLine.h"
#include "ui/UsageProgressBar.h"
#include "ui/kit/CardGround.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/Label.h"
#include "ui/kit/Track.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int padding = 16;
constexpr int topPadding = 14;
constexpr int bottomPadding = 12;
constexpr int gap = 12;
constexpr int wordGap = 6;
constexpr int barHeight = 8;
constexpr UsageFigures::Form figuresForm{
    .labelColor = kit::ColorRole::ink,
    .figureStyle = kit::style::figureLarge,
    .wordStyle = kit::style::bodyMedium,
    .barHeight = barHeight,
};
constexpr int labelLine = kit::style::strong.lineHeight;
constexpr int smallLine = kit::style::small.lineHeight;
constexpr int figureTop = topPadding + labelLine + 6;
constexpr int figureLine = kit::style::figureLarge.lineHeight;
constexpr int barTop = figureTop + figureLine + 8;
constexpr int resetTop = barTop + barHeight + 10;
constexpr int outlookTop = resetTop + smallLine + 4;
constexpr int chartTitleTop = outlookTop + smallLine + 14;
constexpr int chartTop = chartTitleTop + kit::style::text.lineHeight + 6;

/// Where words of a smaller style stand on the figure's baseline.
int besideFigure(const kit::TextStyle& style) {
    return figureTop +
           static_cast<int>(kit::baseline(kit::style::figureLarge) - kit::baseline(style));
}
} // namespace

AgentWindowCard::AgentWindowCard(QWidget* parent)
    : QWidget(parent), figures_(figuresForm, this), health_(new kit::HealthDot(this)),
      elapsed_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      outlook_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      chartTitle_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      chart_(new ChartView(ChartView::Size::small, this)),
      chartNote_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)) {
    figures_.label->setTextStyle(kit::style::strong);
    figures_.planning->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    elapsed_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    chartNote_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    for (QWidget* part : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        part->hide();
    }
}

void AgentWindowCard::setContent(const AgentWindowContent& content) {
    if (!hasContent_) {
        for (QWidget* part : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            part->show();
        }
    }
    hasContent_ = true;
    isUsedUp_ = content.row.isUsedUp;
    setAccessibleName(qString(content.row.fullLabel));
    figures_.setContent(content.row);
    health_->setLook({qString(content.statusText), dotColor(content.dot), {}});
    elapsed_->setWords(qString(content.row.elapsed));
    outlook_->setWords(qString(content.outlook));
    outlook_->setVisible(!content.row.forecast && !content.outlook.empty());
    chartTitle_->setWords(qString(content.chartTitle));
    chart_->setContent(content.chart);
    chartNote_->setWords(qString(content.chartNote));
    arrange();
    update();
}

QWidget* AgentWindowCard::chart() const {
    return chart_;
}

void AgentWindowCard::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void AgentWindowCard::arrange() {
    const int wide = std::max(width() - 2 * padding, 0);
    const int right = padding + wide;
    const QSize health = health_->sizeHint();
    health_->setGeometry(right - health.width(), topPadding + (labelLine - health.height()) / 2,
                         health.width(), health.height());
    figures_.label->setGeometry(padding, topPadding, std::max(health_->x() - gap - padding, 0),
                                labelLine);

    const int figure = figures_.figure->wantedWidth();
    figures_.figure->setGeometry(padding, figureTop, figure, figureLine);
    figures_.word->setGeometry(padding + figure + wordGap, besideFigure(kit::style::bodyMedium),
                               figures_.word->wantedWidth(), kit::style::bodyMedium.lineHeight);
    const int elapsedLeft = figures_.word->geometry().right() + 1 + gap;
    elapsed_->setGeometry(elapsedLeft, besideFigure(kit::style::small),
                          std::max(right - elapsedLeft, 0), smallLine);
    figures_.bar->setGeometry(padding, barTop - kit::barMarkReach, wide,
                              barHeight + 2 * kit::barMarkReach);

    const int planning = std::min(figures_.planning->wantedWidth(), wide / 2);
    figures_.planning->setGeometry(right - planning, resetTop, planning, smallLine);
    const int resetWidth = std::max(wide - planning - (planning > 0 ? gap : 0), 0);
    figures_.reset->setGeometry(padding, resetTop, resetWidth, smallLine);
    figures_.forecast->setGeometry(padding, isUsedUp_ ? resetTop : outlookTop,
                                   isUsedUp_ ? resetWidth : wide, smallLine);
    outlook_->setGeometry(padding, outlookTop, wide, smallLine);

    const int note = chartNote_->wantedWidth();
    chartNote_->setGeometry(right - note, chartTitleTop, note, kit::style::text.lineHeight);
    chartTitle_->setGeometry(padding, chartTitleTop, std::max(wide - note - gap, 0),
                             kit::style::text.lineHeight);
    chart_->setGeometry(padding, chartTop, wide, std::max(height() - chartTop - bottomPadding, 0));
}

void AgentWindowCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    kit::drawCardGround(painter, rect());
    if (!hasContent_) {
        paintBones(painter);
    }
}

void AgentWindowCard::paintBones(QPainter& painter) const {
    const double wide = width() - 2 * padding;
    const auto bone = [&](double top, double boneWidth, double height) {
        kit::drawBone(painter, *this, QRectF(padding, top, boneWidth, height));
    };
    bone(topPadding + 4, 64, 8);
    bone(figureTop + 7, 104, 18);
    bone(barTop, wide, barHeight);
    bone(resetTop + 3, 150, 8);
    bone(chartTitleTop + 4, 96, 8);
    // The course's ground line, where the line will stand.
    bone(height() - bottomPadding - 24, wide, 2);
}

} // namespace vellmark
