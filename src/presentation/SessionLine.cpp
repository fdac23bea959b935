#include "presentation/SessionLine.h"

#include "presentation/UsageRowContent.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <algorithm>

namespace vellmark {
namespace {

/// One window, in its words.
struct Words {
    std::string label;
    std::string value;
    std::string figure;
    /// "↻ 2 h 5 min", or why nothing can be used.
    std::string reset;
    UsageHealth health = UsageHealth::healthy;
    Instant readAt{};
};

Words wordsOf(const UsageWindow& window, const WindowStanding& standing, const UsageState& state,
              const AgentUsageSnapshot& snapshot, Instant now, const Localization& words) {
    const UsageRowContent row =
        usageRowContent(window, standing, state.recentPointsOf(snapshot.id, window.id),
                        state.firstFigure, now, words);
    Words told{.label = singleLine(row.label),
               .value = row.value,
               .figure = row.figure,
               .health = standing.health,
               .readAt = standing.readAt};
    const bool isKnown = standing.kind == WindowStanding::Kind::counts ||
                         standing.kind == WindowStanding::Kind::usedUp;
    if (!isKnown) {
        told.reset = singleLine(row.reset);
    } else if (window.resetsAt) {
        told.reset = "↻ " + durationText(*window.resetsAt - now, words, SpanForm::alone);
    }
    return told;
}

std::string joined(std::initializer_list<std::string> texts) {
    std::string text;
    for (const std::string& each : texts) {
        text += (text.empty() || each.empty() ? "" : " ") + each;
    }
    return text;
}

} // namespace

std::vector<SessionLine> sessionLines(const AgentUsageSnapshot& snapshot, const UsageState& state,
                                      Seconds interval, Instant now, const Localization& words) {
    const AgentStanding standing = standingOf(snapshot, state, now);
    std::vector<Words> windows;
    for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
        windows.push_back(
            wordsOf(snapshot.windows[index], standing.windows[index], state, snapshot, now, words));
    }
    if (windows.empty()) {
        return {};
    }
    const Instant newest = std::ranges::max(windows, {}, &Words::readAt).readAt;
    const SessionLinePart age{ageText(snapshot, newest, now, words), UsageHealth::unavailable};
    const auto line = [&](auto text, std::size_t most) {
        SessionLine parts;
        for (const Words& window : windows) {
            if (parts.size() < most) {
                parts.push_back({text(window), window.health});
            }
        }
        if (now - newest > 2 * interval) {
            parts.push_back(age);
        }
        return parts;
    };
    // The session and the week come first.
    constexpr std::size_t both = 2;
    return {
        line(
            [](const Words& each) {
                return joined({each.label, each.value, each.reset});
            },
            windows.size()),
        line(
            [](const Words& each) {
                return joined({each.label, each.figure, each.reset});
            },
            windows.size()),
        line(
            [](const Words& each) {
                return joined({each.label, each.figure, each.reset});
            },
            both),
        line(
            [](const Words& each) {
                return joined({each.label, each.figure});
            },
            both),
        line([](const Words& each) { return each.figure; }, both),
    };
}

} // namespace vellmark
