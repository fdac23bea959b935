#pragma once

#include "probes/ProviderRegistry.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace vellmark::tests {

/// Says how a stub agent answers; shared by the test and the provider that the store makes.
class StubAgent {
public:
    using Answer = std::function<AgentUsageSnapshot()>;

    explicit StubAgent(std::string name) : id_(std::move(name)) {}

    const AgentProviderID& id() const { return id_; }

    void answers(Answer answer) {
        const std::lock_guard hold(lock_);
        answer_ = std::move(answer);
    }
    void answersUsed(double usedPercent, Instant at) {
        answers([this, usedPercent, at] { return reading(usedPercent, at); });
    }
    /// As a CLI that got nothing new from its service and gives what it had kept.
    void answersKept(double usedPercent, Instant at) {
        answers([this, usedPercent, at] {
            AgentUsageSnapshot snapshot = reading(usedPercent, at);
            snapshot.source = SnapshotSource::stale;
            snapshot.mayBeNewer = true;
            snapshot.error = UsageProviderError(UsageProviderError::Kind::claudeServiceUnavailable);
            return snapshot;
        });
    }
    void fails(UsageProviderError error) {
        answers([error = std::move(error)]() -> AgentUsageSnapshot { throw error; });
    }

    /// From now on fetches wait until they are let go.
    void holdFetches() {
        const std::lock_guard hold(lock_);
        held_ = true;
    }
    void letGo() {
        const std::lock_guard hold(lock_);
        held_ = false;
        changed_.notify_all();
    }

    int fetchCount() const {
        const std::lock_guard hold(lock_);
        return fetches_;
    }

    void paces(ReadingPace pace) {
        const std::lock_guard hold(lock_);
        pace_ = pace;
    }
    ReadingPace pace() const {
        const std::lock_guard hold(lock_);
        return pace_;
    }

    /// Windows that a reading leaves out count for this long.
    Seconds remembered{0};

    AgentUsageSnapshot reading(double usedPercent, Instant at) const {
        AgentUsageSnapshot snapshot;
        snapshot.id = id_;
        snapshot.accountLabel = "someone@example.com";
        snapshot.plan = "Pro";
        snapshot.windows = {{"session", usedPercent, 300, at + Seconds(3600)}};
        snapshot.source = SnapshotSource::live;
        snapshot.updatedAt = at;
        return snapshot;
    }

    AgentUsageSnapshot fetch() {
        std::unique_lock hold(lock_);
        ++fetches_;
        changed_.wait(hold, [this] { return !held_; });
        const Answer answer = answer_;
        hold.unlock();
        return answer();
    }

private:
    AgentProviderID id_;
    mutable std::mutex lock_;
    std::condition_variable changed_;
    Answer answer_ = [this] { return reading(10, Instant(Seconds(786'000'000))); };
    bool held_ = false;
    int fetches_ = 0;
    ReadingPace pace_;
};

class StubProvider : public AgentUsageProvider {
public:
    explicit StubProvider(std::shared_ptr<StubAgent> agent) : agent_(std::move(agent)) {}
    AgentProviderID id() const override { return agent_->id(); }
    AgentUsageSnapshot fetch() override { return agent_->fetch(); }
    ReadingPace pace() const override { return agent_->pace(); }

private:
    std::shared_ptr<StubAgent> agent_;
};

inline ProviderRegistration registration(std::shared_ptr<StubAgent> agent,
                                         std::optional<double> retryDelay = std::nullopt) {
    ProviderDescriptor descriptor;
    descriptor.id = agent->id();
    descriptor.timeoutRetryDelaySeconds = retryDelay;
    descriptor.remembersWindow = [agent](std::string_view) { return agent->remembered; };
    return {std::move(descriptor),
            [agent](const Machine&, const ReadingOptions&) -> std::unique_ptr<AgentUsageProvider> {
                return std::make_unique<StubProvider>(agent);
            }};
}

} // namespace vellmark::tests
