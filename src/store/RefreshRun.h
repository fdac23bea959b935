#pragma once

#include "store/UsageFetcher.h"
#include "store/UsageState.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace vellmark {

/// One refresh: reads a set of agents at the same time, each once, or twice when the first attempt
/// timed out and the agent's descriptor asks for a second one.
///
/// Main thread only. Destroying the run drops its readings. Callbacks run from the executor, never
/// from inside a call.
class RefreshRun {
public:
    struct Agent {
        AgentProviderID id;
        /// What to call a fetch that never ends.
        std::string name;
        std::shared_ptr<AgentUsageProvider> provider;
        std::optional<Seconds> timeoutRetryDelay;
    };
    struct Callbacks {
        /// An agent's reading has ended. The run no longer counts it as under way.
        std::function<void(const AgentProviderID&, const FetchOutcome&, Seconds elapsed)> ended;
        std::function<void(const AgentProviderID&, Seconds delay)> willRetry;
    };

    RefreshRun(RefreshTrigger trigger, Instant startedAt, UsageFetcher& fetcher,
               MainExecutor& executor, Callbacks callbacks);
    ~RefreshRun();
    RefreshRun(const RefreshRun&) = delete;
    RefreshRun& operator=(const RefreshRun&) = delete;

    RefreshTrigger trigger() const { return trigger_; }
    Instant startedAt() const { return startedAt_; }

    /// Counts as under way from now on; the agent itself is started after `delay`.
    void start(const Agent& agent, UsageFetcher::Occasion occasion, Seconds delay);
    void drop(const AgentProviderID& id);

    bool isReading(const AgentProviderID& id) const { return readings_.contains(id); }
    bool isDone() const { return readings_.empty(); }
    double progress() const;
    std::size_t endedCount() const { return ended_.size(); }

private:
    struct Reading {
        Agent agent;
        UsageFetcher::Occasion occasion{};
        UsageFetcher::Ticket ticket = 0;
        std::optional<MainExecutor::Timer> timer; ///< until the agent is started
        bool isRetry = false;
        std::chrono::steady_clock::time_point startedAt; ///< for the first time
    };

    void fetch(Reading& reading);
    void fetchAfter(Reading& reading, Seconds delay, Seconds tolerance);
    void land(const AgentProviderID& id, const FetchOutcome& outcome);
    void scheduleRetry(Reading& reading);
    void stop(Reading& reading);

    RefreshTrigger trigger_;
    Instant startedAt_;
    UsageFetcher& fetcher_;
    MainExecutor& executor_;
    Callbacks callbacks_;
    std::map<AgentProviderID, Reading> readings_;
    std::set<AgentProviderID> ended_;
};

} // namespace vellmark
