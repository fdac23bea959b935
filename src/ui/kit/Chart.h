#pragma once

#include "ui/kit/ChartLook.h"
#include "ui/kit/Interaction.h"

#include <QPixmap>
#include <QWidget>

#include <functional>
#include <optional>

namespace vellmark::kit {

/// A drawing of values over time that can be read at every place: by the pointer, and by the arrow
/// keys, Home and End. It knows neither what the values mean nor what is said of them. What
/// assistive software is told is the name, and as value what is read at the moment.
///
/// While it is read, the drawing is kept as a picture, so that following the pointer costs little;
/// else nothing is kept.
class Chart : public QWidget {
public:
    /// `ground` is the colour of what the chart stands on.
    explicit Chart(ColorRole ground, QWidget* parent = nullptr);

    void setLook(const ChartLook& look);
    /// What there is to read at a share of the plot's width; nothing where nothing is.
    std::function<std::optional<ChartReadoutLook>(double x)> readoutAt;
    /// The place so many steps beside another.
    std::function<double(double x, int steps)> placeBeside;

    /// Reads at a share of the plot's width; nowhere when absent.
    void readAt(std::optional<double> x);
    const std::optional<ChartReadoutLook>& readout() const { return readout_; }
    /// Where the chart's past ends, from which the keyboard begins.
    void setLastPlace(double x) { lastPlace_ = x; }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showReadout(std::optional<ChartReadoutLook> readout);

    ColorRole ground_;
    ChartLook look_;
    std::optional<ChartReadoutLook> readout_;
    double lastPlace_ = 1;
    /// What is under the read-out, while there is one.
    QPixmap picture_;
    /// The next painting changes nothing but the read-out.
    bool keepsPicture_ = false;
    Interaction interaction_;
};

} // namespace vellmark::kit
