#pragma once

#include "platform/Machine.h"
#include "probes/AgentUsageProvider.h"
#include "text/Instant.h"

namespace vellmark {

/// Whether the user has logged in to the Antigravity CLI: the CLI keeps its token in the system's
/// credential store, and only the existence of that item is asked for.
bool antigravityIsLoggedIn(const Machine& machine);

/// Reads the Antigravity CLI by one non-interactive run of its usage command.
class AntigravityUsageProvider final : public AgentUsageProvider {
public:
    explicit AntigravityUsageProvider(const Machine& machine, Seconds limit = Seconds(30),
                                      Seconds killGrace = Seconds(3))
        : machine_(machine), limit_(limit), killGrace_(killGrace) {}

    AgentProviderID id() const override { return AgentProviderID::antigravity(); }
    AgentUsageSnapshot fetch() override;

private:
    Machine machine_;
    Seconds limit_;
    Seconds killGrace_;
};

} // namespace vellmark
