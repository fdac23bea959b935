#pragma once

#include "model/AgentProviderID.h"
#include "platform/Preferences.h"
#include "probes/ProviderRegistry.h"

#include <set>
#include <vector>

namespace vellmark {

/// Which agents the user wants to see, and in which order: the preferences "DisabledProviders" and
/// "ProviderOrder". Main thread.
class AgentSettings {
public:
    /// `registrations`: all agents, in the order that holds without a wish.
    AgentSettings(Preferences& preferences, const std::vector<ProviderRegistration>& registrations);

    bool isRegistered(const AgentProviderID& id) const;

    /// All registered agents: first those that the user has put in order.
    std::vector<AgentProviderID> order() const;
    void setOrder(const std::vector<AgentProviderID>& order);
    /// `wanted` without unknown agents and repetitions, followed by the agents that it leaves out.
    std::vector<AgentProviderID> completed(const std::vector<AgentProviderID>& wanted) const;

    /// How an agent is to be read: the preferences "ClaudeReadingWay" (a way's name) and
    /// "ClaudeReadingInterval" (minutes between readings that cost something); another agent's
    /// begin with its own identifier.
    ReadingOptions readingOptions(const ProviderDescriptor& agent) const;

    std::set<AgentProviderID> enabled() const;
    void setEnabled(const AgentProviderID& id, bool enabled);

private:
    Preferences& preferences_;
    std::vector<AgentProviderID> registered_;
};

} // namespace vellmark
