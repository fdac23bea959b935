#pragma once

#include <QRect>

#include <string>
#include <vector>

namespace vellmark {

/// A screen without its panels.
struct ScreenArea {
    /// As the system names it ("HDMI-1").
    std::string name;
    QRect available;
};

/// Where the user has put the strip: at an edge of a screen, whatever its size is at the moment.
struct EdgeStripPlace {
    /// A screen that is not there now gives way to the first one.
    std::string screen;
    bool isAtRight = true;
    /// The strip's middle as a share of the screen's height.
    double height = 0.12;

    bool operator==(const EdgeStripPlace&) const = default;
};

/// Where a strip of `size` stands, wholly on its screen. `screens` are all that there are, the
/// primary one first, and at least one.
QRect edgeStripGeometry(const EdgeStripPlace& place, QSize size,
                        const std::vector<ScreenArea>& screens);

/// The place that is meant by a strip dropped at `dropped`: the nearest edge of the screen it is
/// on, or of the nearest one.
EdgeStripPlace edgeStripPlace(const QRect& dropped, const std::vector<ScreenArea>& screens);

} // namespace vellmark
