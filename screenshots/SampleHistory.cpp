#include "screenshots/SampleHistory.h"

#include "model/UsageRules.h"
#include "screenshots/SampleStates.h"
#include "text/TimeZone.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace vellmark::samples {

namespace {

constexpr double hour = 3600;
constexpr double day = 24 * hour;
constexpr double wholeDays = 35;
constexpr double allDays = 400;

/// How much is used in an hour of the week, relative to others.
double activity(const CalendarDate& date, bool isWeekend) {
    const double time = date.hour + date.minute / 60.0;
    const auto hill = [time](double middle, double width) {
        return std::exp(-(time - middle) * (time - middle) / width);
    };
    const double base = hill(10.5, 8) + 0.9 * hill(15.5, 7) + 0.5 * hill(21.5, 4);
    return (isWeekend ? 0.35 : 1) * (base < 0.06 ? 0 : base);
}

struct Pause {
    double begin; ///< in days before now
    double end;
    bool isOfClaudeAlone;
};
constexpr Pause pauses[] = {{16.8, 15.75, false}, {9.0, 7.95, true}};

class Course {
public:
    Course(const AgentUsageSnapshot& snapshot, const UsageWindow& window, UsageHistory& history)
        : snapshot_(snapshot), window_(window), history_(history),
          random_(static_cast<std::uint32_t>(std::hash<std::string>()(window.id) + 7)) {}

    void add(double days) {
        const Seconds period(window_.windowDurationMinutes.value_or(0) * 60);
        if (!window_.resetsAt || period.count() <= 0) {
            return;
        }
        Instant reset = *window_.resetsAt;
        addPeriod(reset - period, reset, now(), window_.usedPercent);
        for (reset -= period; reset > now() - Seconds(days * day); reset -= period) {
            const double most = std::uniform_real_distribution(0.0, 1.0)(random_);
            addPeriod(reset - period, reset, reset, std::min(35 + 70 * std::sqrt(most), 100.0));
        }
    }

private:
    bool isPaused(Instant at) const {
        const double ago = (now() - at).count() / day;
        return std::ranges::any_of(pauses, [&](const Pause& pause) {
            const bool isMeant =
                !pause.isOfClaudeAlone || snapshot_.id == AgentProviderID::claude();
            return isMeant && ago < pause.begin && ago > pause.end;
        });
    }

    /// Samples up to `end`, where `used` percent are used.
    void addPeriod(Instant begin, Instant reset, Instant end, double used) {
        const bool isWhole = now() - begin < Seconds(wholeDays * day);
        const Seconds step(isWhole ? hour / 4 : hour);
        std::vector<std::pair<Instant, double>> course;
        double sum = 0;
        for (Instant at = begin + step; at < end; at += step) {
            const CalendarDate date = zone_.calendarDate(at);
            const auto days = std::floor((unixSeconds(at) + 3 * day) / day);
            const bool isWeekend = std::fmod(days, 7) >= 5;
            const double burst = std::uniform_real_distribution(0.0, 1.0)(random_);
            sum += activity(date, isWeekend) * (burst < 0.55 ? 0 : burst);
            course.emplace_back(at, sum);
        }
        for (const auto& [at, part] : course) {
            if (!isPaused(at)) {
                add(at, sum > 0 ? std::round(used * part / sum) : 0, reset);
            }
        }
    }

    void add(Instant at, double used, Instant reset) {
        UsageHistorySample sample;
        sample.provider = snapshot_.id;
        sample.windowID = window_.id;
        sample.capturedAt = at;
        sample.usedPercent = used;
        sample.resetsAt = reset;
        history_.add(sample);
    }

    const AgentUsageSnapshot& snapshot_;
    const UsageWindow& window_;
    UsageHistory& history_;
    TimeZone zone_ = words("en").timeZone();
    std::mt19937 random_;
};

void addDays(UsageHistory& history, const UsageState& state, double days) {
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        for (const UsageWindow& window : snapshot.windows) {
            Course(snapshot, window, history).add(days);
        }
    }
}

} // namespace

void addHistory(UsageHistory& history, const UsageState& state) {
    addDays(history, state, allDays);
}

void addFirstDay(UsageHistory& history, const UsageState& state) {
    constexpr Seconds recorded(5 * hour);
    UsageHistory all;
    addDays(all, state, 1);
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        for (const UsageWindow& window : snapshot.windows) {
            all.read({snapshot.id, window.id}, now() - recorded, now(),
                     [&](std::span<const HistoryPoint> points) {
                         for (const HistoryPoint& point : points) {
                             UsageHistorySample sample;
                             sample.provider = snapshot.id;
                             sample.windowID = window.id;
                             sample.capturedAt = point.capturedAt;
                             sample.usedPercent = point.usedPercent;
                             sample.resetsAt = point.resetsAt();
                             history.add(sample);
                         }
                     });
        }
    }
}

} // namespace vellmark::samples
