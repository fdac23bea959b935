#include "ui/popover/CompactUsageRow.h"

#include "ui/Conversions.h"
#include "ui/ForecastLine.h"
#include "ui/UsageProgressBar.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Track.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vellmark {

namespace {
constexpr int columnGap = 12;
constexpr int lineGap = 2;
constexpr int barHeight = 6;
constexpr int wideLabel = 136;
constexpr int firstLine = kit::style::row.lineHeight;
constexpr int smallLine = kit::style::small.lineHeight;

constexpr int boneHeight = 8;
constexpr int labelBone = 64;
constexpr int valueBone = 56;
constexpr int resetBone = 150;

/// The bar with room for its mark, in the middle of the first line.
QRect barPlace(int width, const RowColumns& columns) {
    const int left = columns.label + columnGap;
    const int height = barHeight + 2 * kit::barMarkReach;
    return {left, (firstLine - height) / 2, width - left - columnGap - columns.value, height};
}
} // namespace

void RowColumns::include(const UsageRowContent& row) {
    if (kit::textWidth(qString(row.label), kit::style::row) > label) {
        label = wideLabel;
    }
    const double width = kit::textWidth(qString(row.value), kit::style::value);
    value = std::max(value, static_cast<int>(std::ceil(width)));
}

CompactUsageRow::CompactUsageRow(QWidget* parent)
    : QWidget(parent), label_(new kit::Label(kit::style::row, kit::ColorRole::ink, this)),
      bar_(new UsageProgressBar(barHeight, this)),
      value_(new kit::Label(kit::style::value, kit::ColorRole::ink, this)),
      reset_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      forecast_(new ForecastLine(this)) {
    value_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void CompactUsageRow::setContent(const UsageRowContent& content) {
    label_->setWords(qString(content.label));
    label_->setToolTip(content.fullLabel != content.label ? qString(content.fullLabel) : QString());
    bar_->setContent(content);
    value_->setTextStyle(content.isMuted ? kit::style::row : kit::style::value);
    value_->setColor(content.isMuted ? kit::ColorRole::ink2 : kit::ColorRole::ink);
    value_->setChangingWords(qString(content.value));
    isUsedUp_ = content.isUsedUp;
    reset_->setWords(qString(content.reset));
    reset_->setVisible(!isUsedUp_);
    forecast_->setContent(content);
    arrange();
}

void CompactUsageRow::setColumns(const RowColumns& columns) {
    if (columns != columns_) {
        columns_ = columns;
        arrange();
    }
}

int CompactUsageRow::wantedHeight() const {
    const int withoutForecast = firstLine + lineGap + smallLine;
    const bool hasThirdLine = forecast_->isVisibleTo(this) && !isUsedUp_;
    return hasThirdLine ? withoutForecast + lineGap + smallLine : withoutForecast;
}

void CompactUsageRow::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void CompactUsageRow::arrange() {
    const QRect bar = barPlace(width(), columns_);
    label_->setGeometry(0, 0, columns_.label, firstLine);
    bar_->setGeometry(bar);
    value_->setGeometry(width() - columns_.value, 0, columns_.value, firstLine);
    const int below = firstLine + lineGap;
    reset_->setGeometry(bar.left(), below, width() - bar.left(), smallLine);
    forecast_->setGeometry(bar.left(), isUsedUp_ ? below : below + smallLine + lineGap,
                           width() - bar.left(), smallLine);
}

void drawRowBones(QPainter& painter, const QWidget& on, QPoint topLeft, int width,
                  const RowColumns& columns) {
    const auto bone = [&](double left, double top, double boneWidth, double height) {
        kit::drawBone(painter, on,
                      QRectF(topLeft.x() + left, topLeft.y() + top, boneWidth, height));
    };
    const double middle = firstLine / 2.0;
    const QRect bar = barPlace(width, columns);
    bone(0, middle - boneHeight / 2.0, labelBone, boneHeight);
    bone(bar.left(), middle - barHeight / 2.0, bar.width(), barHeight);
    bone(width - valueBone, middle - boneHeight / 2.0, valueBone, boneHeight);
    bone(bar.left(), firstLine + lineGap + 3, resetBone, boneHeight);
}

} // namespace vellmark
