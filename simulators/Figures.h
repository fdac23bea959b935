#pragma once

#include "Scenario.h"

#include <ctime>
#include <string>

namespace simulator {

/// One quota window as it stands now.
struct Figure {
    double usedPercent = 0;
    std::time_t resetsAt = 0;
};

/// The quota windows of a scenario. They are alive: from the first run on ("started" in the
/// scenario directory) usage grows at the pace that led to the first figure, and when a window's
/// time is over it begins anew.
class Figures {
public:
    explicit Figures(const Scenario& scenario);

    /// `name`-used and `name`-resets-in (seconds) in the scenario override the first figure.
    Figure window(const std::string& name, double used, double resetsIn, double length) const;

private:
    const Scenario& scenario_;
    std::time_t now_;
    std::time_t started_;
};

inline constexpr double minutes = 60;
inline constexpr double hours = 60 * minutes;
inline constexpr double days = 24 * hours;

/// "54", "54.5": no more decimals than needed, one at most.
std::string decimal(double value);
/// "2025-06-01T14:00:00Z".
std::string iso8601(std::time_t time);
/// A time in Zurich as Claude writes it: "5pm" or "5:12pm".
std::string zurichTime(std::time_t time);
/// "Nov 24 at 9:30am", with `separator` between day and time.
std::string zurichDateTime(std::time_t time, const std::string& separator = " at ");

} // namespace simulator
