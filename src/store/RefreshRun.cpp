#include "store/RefreshRun.h"

#include <utility>

namespace vellmark {

namespace {

/// A retry may be a little late, so that the system can join wake-ups.
constexpr Seconds retryTolerance{1};

bool isTimeout(const FetchOutcome& outcome) {
    const auto* error = std::get_if<UsageProviderError>(&outcome);
    return error && error->kind() == UsageProviderError::Kind::timeout;
}

} // namespace

RefreshRun::RefreshRun(RefreshTrigger trigger, Instant startedAt, UsageFetcher& fetcher,
                       MainExecutor& executor, Callbacks callbacks)
    : trigger_(trigger), startedAt_(startedAt), fetcher_(fetcher), executor_(executor),
      callbacks_(std::move(callbacks)) {}

RefreshRun::~RefreshRun() {
    for (auto& [id, reading] : readings_) {
        stop(reading);
    }
}

void RefreshRun::start(const Agent& agent, UsageFetcher::Occasion occasion, Seconds delay) {
    ended_.erase(agent.id);
    Reading& reading = readings_[agent.id];
    reading.agent = agent;
    reading.occasion = occasion;
    if (delay > Seconds(0)) {
        fetchAfter(reading, delay, Seconds(0));
    } else {
        fetch(reading);
    }
}

void RefreshRun::drop(const AgentProviderID& id) {
    if (const auto found = readings_.find(id); found != readings_.end()) {
        stop(found->second);
        readings_.erase(found);
    }
    ended_.erase(id);
}

double RefreshRun::progress() const {
    const auto all = readings_.size() + ended_.size();
    return all == 0 ? 1 : static_cast<double>(ended_.size()) / static_cast<double>(all);
}

void RefreshRun::fetch(Reading& reading) {
    if (!reading.isRetry) {
        reading.startedAt = std::chrono::steady_clock::now();
    }
    reading.ticket =
        fetcher_.start(reading.agent.provider, reading.agent.name, reading.occasion,
                       [this, id = reading.agent.id](const FetchOutcome& outcome) {
                           land(id, outcome); // a run that has gone has dropped its tickets
                       });
}

void RefreshRun::land(const AgentProviderID& id, const FetchOutcome& outcome) {
    const auto found = readings_.find(id);
    Reading& reading = found->second;
    if (isTimeout(outcome) && reading.agent.timeoutRetryDelay && !reading.isRetry) {
        scheduleRetry(reading);
        return;
    }
    const Seconds elapsed = std::chrono::steady_clock::now() - reading.startedAt;
    readings_.erase(found);
    ended_.insert(id);
    const auto ended = callbacks_.ended; // the call may end this run
    ended(id, outcome, elapsed);
}

void RefreshRun::scheduleRetry(Reading& reading) {
    const Seconds delay = *reading.agent.timeoutRetryDelay;
    reading.isRetry = true;
    fetchAfter(reading, delay, retryTolerance);
    callbacks_.willRetry(reading.agent.id, delay);
}

void RefreshRun::fetchAfter(Reading& reading, Seconds delay, Seconds tolerance) {
    reading.timer = executor_.postAfter(delay, tolerance, [this, id = reading.agent.id] {
        Reading& waiting = readings_.at(id); // dropping it cancels the timer
        waiting.timer.reset();
        fetch(waiting);
    });
}

void RefreshRun::stop(Reading& reading) {
    if (reading.timer) {
        executor_.cancel(*reading.timer);
    } else {
        fetcher_.drop(reading.ticket);
    }
}

} // namespace vellmark
