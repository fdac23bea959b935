#pragma once

#include "platform/Machine.h"
#include "probes/AgentUsageProvider.h"
#include "probes/ExecutableIdentity.h"
#include "text/Instant.h"

#include <mutex>
#include <optional>
#include <string>

namespace vellmark {

/// Reads the Antigravity CLI by one non-interactive run of its usage command.
///
/// Versions before 1.1.11 hand that command to a model, which spends quota and answers in prose.
/// They are read when the user asks, but not automatically. The same holds for an executable of any
/// version whose last answer reported a model's turn, until another takes its place.
class AntigravityUsageProvider final : public AgentUsageProvider {
public:
    explicit AntigravityUsageProvider(const Machine& machine, Seconds limit = Seconds(30),
                                      Seconds killGrace = Seconds(3))
        : machine_(machine), limit_(limit), killGrace_(killGrace) {}

    AgentProviderID id() const override { return AgentProviderID::antigravity(); }
    AgentUsageSnapshot fetch() override;
    AgentUsageSnapshot fetchAutomatically() override;
    ReadingPace pace() const override;

private:
    /// What has been learnt about an executable.
    struct Experience {
        std::optional<ExecutableIdentity> executable;
        /// As the user is told it: "?" when the CLI does not say. Absent before it was asked.
        std::optional<std::string> version;
        bool readingCosts = false;
    };

    /// Throws where there is nothing to run.
    ExecutableIdentity locate() const;
    AgentUsageSnapshot read(const ExecutableIdentity& executable);
    /// Asks the CLI the first time.
    std::string version(const ExecutableIdentity& executable);

    Experience experience(const ExecutableIdentity& executable) const;
    template<typename Change>
    void learn(const ExecutableIdentity& executable, Change change);

    Machine machine_;
    Seconds limit_;
    Seconds killGrace_;
    mutable std::mutex lock_;
    Experience experience_; ///< of the last executable; under `lock_`
};

} // namespace vellmark
