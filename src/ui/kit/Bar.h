#pragma once

#include "ui/kit/Motion.h"
#include "ui/kit/Theme.h"

#include <QPainterPath>
#include <QProgressBar>

#include <optional>

namespace vellmark::kit {

/// The parts of a bar, in the coordinates of a box of `width` by `height` plus `barMarkReach`
/// above and below.
struct BarShape {
    /// Track and fill leave a gap where the mark stands, so that any ground shows there.
    QPainterPath track;
    QPainterPath fill;
    std::optional<QRectF> mark;
};
/// How far the pace mark stands out above and below the bar.
inline constexpr int barMarkReach = 3;

/// `share` and `mark` in percent from the left. Anything above 0 fills at least a full round. The
/// mark stands on whole pixels, of which a point has `pixelsPerPoint`.
BarShape barShape(double width, double height, double share, std::optional<double> mark,
                  double pixelsPerPoint = 1);

/// What one bar shows.
struct BarLook {
    /// Filled, in percent from the left.
    double share = 0;
    /// Where the fill would end at an even pace, in percent from the left.
    std::optional<double> mark;
    ColorRole color = ColorRole::healthy;
    /// Figures of an earlier reading are shown fainter.
    bool isStale = false;
    bool operator==(const BarLook&) const = default;
};

/// The bar of one quota window. What assistive software is told is the `value`, whatever is drawn.
class Bar : public QProgressBar {
public:
    explicit Bar(int barHeight, QWidget* parent = nullptr);

    /// A visible bar moves to its new share.
    void setLook(const BarLook& look);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int barHeight_;
    BarLook look_;
    bool hasLook_ = false;
    Transition share_;
};

} // namespace vellmark::kit
