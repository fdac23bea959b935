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
};

class StubProvider : public AgentUsageProvider {
public:
    explicit StubProvider(std::shared_ptr<StubAgent> agent) : agent_(std::move(agent)) {}
    AgentProviderID id() const override { return agent_->id(); }
    AgentUsageSnapshot fetch() override { return agent_->fetch(); }

private:
    std::shared_ptr<StubAgent> agent_;
};

inline ProviderRegistration registration(std::shared_ptr<StubAgent> agent,
                                         std::optional<double> retryDelay = std::nullopt) {
    ProviderDescriptor descriptor;
    descriptor.id = agent->id();
    descriptor.timeoutRetryDelaySeconds = retryDelay;
    return {std::move(descriptor), [agent](const Machine&) -> std::unique_ptr<AgentUsageProvider> {
                return std::make_unique<StubProvider>(agent);
            }};
}

} // namespace vellmark::tests
