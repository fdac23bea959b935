#pragma once

#include "platform/Machine.h"
#include "probes/AgentUsageProvider.h"
#include "text/Instant.h"

namespace vellmark {

/// Reads the Codex CLI through its JSON-RPC server mode, a fresh child for every reading.
class CodexUsageProvider final : public AgentUsageProvider {
public:
    explicit CodexUsageProvider(const Machine& machine, Seconds limit = Seconds(20))
        : machine_(machine), limit_(limit) {}

    AgentProviderID id() const override { return AgentProviderID::codex(); }
    AgentUsageSnapshot fetch() override;

private:
    Machine machine_;
    Seconds limit_;
};

} // namespace vellmark
