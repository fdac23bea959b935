#pragma once

#include "platform/Machine.h"
#include "probes/AgentUsageProvider.h"
#include "probes/codex/CodexReading.h"
#include "text/Instant.h"

namespace vellmark {

/// Reads the Codex CLI through its JSON-RPC server mode, a fresh child for every reading.
class CodexUsageProvider final : public AgentUsageProvider {
public:
    explicit CodexUsageProvider(const Machine& machine, Seconds limit = Seconds(20),
                                CodexPatience patience = {})
        : machine_(machine), limit_(limit), patience_(patience) {}

    AgentProviderID id() const override { return AgentProviderID::codex(); }
    AgentUsageSnapshot fetch() override;

private:
    Machine machine_;
    Seconds limit_;
    CodexPatience patience_;
};

} // namespace vellmark
