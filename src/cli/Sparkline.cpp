#include "cli/Sparkline.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

namespace vellmark {

namespace {

/// A reading holds until the next one, which comes within half an hour while the program runs.
constexpr Seconds longestHold{45 * 60};

std::string_view level(double remaining, const Shapes& shapes) {
    const double share = std::clamp(remaining / 100, 0.0, 1.0);
    const auto top = static_cast<double>(shapes.levels.size() - 1);
    return shapes.levels[static_cast<std::size_t>(std::lround(share * top))];
}

} // namespace

std::string sparkline(const UsageHistory& history, const WindowKey& key, Instant from, Instant to,
                      std::size_t width, const Shapes& shapes) {
    constexpr double none = -1;
    std::vector<double> highestUsed(width, none);
    const Seconds column = (to - from) / static_cast<double>(width);
    const auto columnOf = [&](Instant instant) {
        const double index = column.count() > 0 ? std::floor((instant - from) / column) : 0;
        return static_cast<std::size_t>(std::clamp(index, 0.0, static_cast<double>(width - 1)));
    };
    const auto points = history.recent(key, from, to);
    for (std::size_t index = 0; index < points.size(); ++index) {
        const Instant begin = points[index].capturedAt;
        Instant end = std::min(begin + longestHold, to);
        if (index + 1 < points.size()) {
            end = std::min(end, points[index + 1].capturedAt);
        }
        const std::size_t last = columnOf(std::max(begin, end - Seconds(1)));
        for (std::size_t at = columnOf(begin); at <= last; ++at) {
            highestUsed[at] = std::max(highestUsed[at], points[index].usedPercent);
        }
    }
    std::string line;
    for (const double used : highestUsed) {
        line += used == none ? std::string_view(" ") : level(100 - used, shapes);
    }
    return line;
}

} // namespace vellmark
