#pragma once

#include "model/UsageRules.h"
#include "store/UsageState.h"
#include "text/Localization.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// What can be said of a window now. Everything that is shown of a window judges it by this: old
/// figures are judged as of the moment at which they were read, so that none gets better by
/// waiting.
struct WindowStanding {
    enum class Kind {
        counts, ///< what is left can be used
        usedUp, ///< nothing is left until the reset
        held,   ///< `holder` is used up, and nothing can be done without it
        due,    ///< past its reset and not read again since: nobody knows
    };
    Kind kind = Kind::counts;
    /// `unavailable` for `held` and `due`.
    UsageHealth health = UsageHealth::healthy;
    /// A window of the same snapshot, valid as long as that; null unless `held`.
    const UsageWindow* holder = nullptr;
    Instant readAt{};
    /// The figures are from an earlier time than now, for which they are no longer true.
    bool isOld = false;
    /// The moment as of which health, planning and forecast are meant.
    Instant judgedAt{};
};

/// The same for an agent as a whole.
struct AgentStanding {
    /// The worst of the windows that count; `unavailable` where nothing is known.
    UsageHealth health = UsageHealth::unavailable;
    /// In the order of the snapshot's windows.
    std::vector<WindowStanding> windows;
    Instant readAt{};
    bool isOld = false;

    /// A reset that is due is all that is wrong.
    bool isDue() const;
};

AgentStanding standingOf(const AgentUsageSnapshot& snapshot, const UsageState& state, Instant now);

/// The window that presses most of all that are shown: one that is used up for longest, else one
/// that is worst. Windows that are held or due press nobody. Valid until the state changes.
struct PressingWindow {
    const AgentUsageSnapshot* snapshot = nullptr;
    const UsageWindow* window = nullptr;
    WindowStanding standing;
};
/// The same of those windows alone that are accepted; of all without a function.
using WindowChoice = std::function<bool(const AgentUsageSnapshot&, const UsageWindow&)>;
std::optional<PressingWindow> mostPressingWindow(const UsageState& state, Instant now,
                                                 const WindowChoice& accepts = {});

/// "34 min old", or "At most 60 min old" for figures that the agent's CLI had kept.
std::string ageText(const AgentUsageSnapshot& snapshot, Instant readAt, Instant now,
                    const Localization& words);
/// The same of an agent or a window whose figures are old and not of this minute; empty else.
std::string ageText(const AgentUsageSnapshot& snapshot, const AgentStanding& standing, Instant now,
                    const Localization& words);
std::string ageText(const AgentUsageSnapshot& snapshot, const WindowStanding& standing, Instant now,
                    const Localization& words);
/// The same in few words, for places beside other words.
std::string briefAgeText(const AgentUsageSnapshot& snapshot, const AgentStanding& standing,
                         Instant now, const Localization& words);

} // namespace vellmark
