#include "ui/kit/Chart.h"

#include "ui/kit/ChartPainting.h"
#include "ui/kit/Metrics.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace vellmark::kit {

namespace {

constexpr int pageSteps = 12;

class ChartInterface : public QAccessibleWidget {
public:
    explicit ChartInterface(Chart* chart) : QAccessibleWidget(chart, QAccessible::Chart) {}

    QString text(QAccessible::Text kind) const override {
        const auto* chart = static_cast<const Chart*>(widget());
        if (kind == QAccessible::Value || kind == QAccessible::Description) {
            return chart->readout() ? chart->readout()->spoken : QString();
        }
        return QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* chartInterface(const QString& /*className*/, QObject* object) {
    auto* chart = dynamic_cast<Chart*>(object);
    return chart != nullptr ? new ChartInterface(chart) : nullptr;
}

/// Tells assistive software of charts as what they are.
void tellOfCharts() {
    static const bool isTold = (QAccessible::installFactory(chartInterface), true);
    static_cast<void>(isTold);
}

} // namespace

Chart::Chart(ColorRole ground, QWidget* parent)
    : QWidget(parent), ground_(ground), interaction_(this, FocusShape{radius::control, focusGap}) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    tellOfCharts();
}

void Chart::setLook(const ChartLook& look) {
    if (look == look_) {
        return;
    }
    look_ = look;
    keepsPicture_ = false;
    if (readout_) {
        readAt(readout_->x);
        keepsPicture_ = false;
    }
    update();
}

void Chart::readAt(std::optional<double> x) {
    showReadout(x && readoutAt ? readoutAt(*x) : std::nullopt);
}

void Chart::showReadout(std::optional<ChartReadoutLook> readout) {
    if (!readout && !readout_) {
        return;
    }
    const bool isNews =
        (readout ? readout->spoken : QString()) != (readout_ ? readout_->spoken : QString());
    readout_ = std::move(readout);
    keepsPicture_ = true;
    update();
    if (isNews && hasFocus()) {
        QAccessibleEvent event(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&event);
    }
}

bool Chart::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::Hide:
        readout_.reset();
        picture_ = {};
        break;
    case QEvent::HoverEnter:
    case QEvent::HoverLeave:
    case QEvent::HoverMove:
        // Nothing of it is drawn but what the pointer reads.
        return true;
    default:
        break;
    }
    return QWidget::event(event);
}

void Chart::keyPressEvent(QKeyEvent* event) {
    const double from = readout_ ? readout_->x : lastPlace_;
    const auto go = [&](int steps) {
        // The first key reads where the line ends.
        readAt(readout_ && placeBeside ? placeBeside(from, steps) : from);
    };
    switch (event->key()) {
    case Qt::Key_Left:
        go(-1);
        break;
    case Qt::Key_Right:
        go(1);
        break;
    case Qt::Key_PageUp:
        go(-pageSteps);
        break;
    case Qt::Key_PageDown:
        go(pageSteps);
        break;
    case Qt::Key_Home:
        readAt(0);
        break;
    case Qt::Key_End:
        readAt(lastPlace_);
        break;
    case Qt::Key_Escape:
        if (readout_) {
            readAt(std::nullopt);
            break;
        }
        [[fallthrough]];
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

void Chart::mouseMoveEvent(QMouseEvent* event) {
    const ChartLayout layout = chartLayout(look_, size());
    const double x = event->position().x();
    const bool isOnPlot = x >= layout.plot.left() - 4 && x <= layout.gridRight;
    readAt(isOnPlot ? std::optional(layout.share(x)) : std::nullopt);
}

void Chart::leaveEvent(QEvent* /*event*/) {
    readAt(std::nullopt);
}

void Chart::focusOutEvent(QFocusEvent* event) {
    readAt(std::nullopt);
    QWidget::focusOutEvent(event);
}

void Chart::paintEvent(QPaintEvent* /*event*/) {
    const ChartLayout layout = chartLayout(look_, size());
    QPainter painter(this);
    const bool keeps = std::exchange(keepsPicture_, false);
    if (!readout_) {
        picture_ = {};
        drawChart(painter, look_, layout, ground_);
        return;
    }
    const double ratio = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * ratio).toSize();
    if (!keeps || picture_.size() != pixels) {
        picture_ = QPixmap(pixels);
        picture_.setDevicePixelRatio(ratio);
        picture_.fill(color(ground_));
        QPainter inPicture(&picture_);
        drawChart(inPicture, look_, layout, ground_);
    }
    painter.drawPixmap(0, 0, picture_);
    drawChartReadout(painter, look_, layout, *readout_, ground_);
}

} // namespace vellmark::kit
