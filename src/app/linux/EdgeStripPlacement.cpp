#include "app/linux/EdgeStripPlacement.h"

#include <algorithm>
#include <cmath>

namespace vellmark {
namespace {

/// How far a point lies outside of an area; 0 inside.
int distance(const QRect& area, QPoint point) {
    const int across = std::max({area.left() - point.x(), point.x() - area.right(), 0});
    const int along = std::max({area.top() - point.y(), point.y() - area.bottom(), 0});
    return across + along;
}

} // namespace

QRect edgeStripGeometry(const EdgeStripPlace& place, QSize size,
                        const std::vector<ScreenArea>& screens) {
    const auto named = std::ranges::find(screens, place.screen, &ScreenArea::name);
    const QRect area = (named != screens.end() ? *named : screens.front()).available;
    const double share = std::clamp(place.height, 0.0, 1.0);
    const int top =
        area.top() + static_cast<int>(std::lround(share * area.height())) - size.height() / 2;
    const int lowest = std::max(area.top(), area.bottom() + 1 - size.height());
    return {QPoint(place.isAtRight ? area.right() + 1 - size.width() : area.left(),
                   std::clamp(top, area.top(), lowest)),
            size};
}

EdgeStripPlace edgeStripPlace(const QRect& dropped, const std::vector<ScreenArea>& screens) {
    const QPoint middle = dropped.topLeft() + QPoint(dropped.width() / 2, dropped.height() / 2);
    const ScreenArea& on = *std::ranges::min_element(
        screens, {}, [&](const ScreenArea& screen) { return distance(screen.available, middle); });
    const QRect area = on.available;
    const double share = static_cast<double>(middle.y() - area.top()) / std::max(area.height(), 1);
    return {on.name, middle.x() >= area.center().x(), std::clamp(share, 0.0, 1.0)};
}

} // namespace vellmark
