#include "store/ReadingSchedule.h"

#include <algorithm>
#include <array>

namespace vellmark {

namespace {

constexpr std::array pauses{Seconds(300), Seconds(600), Seconds(1200), Seconds(2400)};

/// A refresh may come this much before its time, since timers are joined with others.
constexpr Seconds slack{30};

Seconds pauseAfter(int failures) {
    const auto step = static_cast<std::size_t>(std::max(failures - 1, 0));
    return pauses[std::min(step, pauses.size() - 1)];
}

} // namespace

void ReadingSchedule::attempted(const AgentProviderID& id, Instant now) {
    Rest& rest = rests_[id];
    rest.since = now;
    rest.span = Seconds(0);
}

void ReadingSchedule::succeeded(const AgentProviderID& id, const ReadingPace& pace) {
    Rest& rest = rests_[id];
    rest.failures = 0;
    rest.span = pace.interval;
}

void ReadingSchedule::failed(const AgentProviderID& id, const ReadingPace& pace, bool backsOff) {
    Rest& rest = rests_[id];
    rest.failures = backsOff ? rest.failures + 1 : 0;
    rest.span = std::max(pace.interval, backsOff ? pauseAfter(rest.failures) : Seconds(0));
}

bool ReadingSchedule::isDue(const AgentProviderID& id, Instant now) const {
    return !restsUntil(id, now + slack);
}

std::optional<Instant> ReadingSchedule::restsUntil(const AgentProviderID& id, Instant now) const {
    const auto found = rests_.find(id);
    if (found == rests_.end() || now < found->second.since) {
        return std::nullopt;
    }
    const Instant end = found->second.since + found->second.span;
    return end > now ? std::optional(end) : std::nullopt;
}

} // namespace vellmark
