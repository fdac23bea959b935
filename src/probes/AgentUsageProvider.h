#pragma once

#include "model/AgentUsageSnapshot.h"

namespace vellmark {

/// Reads one agent. `fetch` blocks its thread, may be called from any thread and from several at
/// once, and throws UsageProviderError (or a std::exception for what nobody expected).
class AgentUsageProvider {
public:
    virtual ~AgentUsageProvider() = default;
    virtual AgentProviderID id() const = 0;
    virtual AgentUsageSnapshot fetch() = 0;
};

} // namespace vellmark
