#pragma once

#include "model/AgentProviderID.h"
#include "platform/Preferences.h"
#include "probes/ProviderRegistry.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// What the user wants of the agents: which of them are shown and in which order (the preferences
/// "DisabledProviders" and "ProviderOrder"), how each is read, and with which program. Main thread.
class AgentSettings {
public:
    static constexpr std::string_view disabledKey = "DisabledProviders";
    static constexpr std::string_view orderKey = "ProviderOrder";
    /// "ClaudePath", "ClaudeReadingWay", "ClaudeReadingInterval".
    static std::string executableKey(const AgentProviderID& id);
    static std::string wayKey(const AgentProviderID& id);
    static std::string intervalKey(const AgentProviderID& id);

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

    /// The program that is to be run as the agent's CLI, wherever else one is installed; absent
    /// where it is looked for.
    std::optional<std::filesystem::path> chosenExecutable(const AgentProviderID& id) const;
    void chooseExecutable(const AgentProviderID& id,
                          const std::optional<std::filesystem::path>& path);
    /// Tells the machine which programs are chosen. Returns the agents whose choice has changed.
    std::set<AgentProviderID> applyExecutables(const Machine& machine) const;

    std::set<AgentProviderID> enabled() const;
    void setEnabled(const AgentProviderID& id, bool enabled);

private:
    Preferences& preferences_;
    std::vector<AgentProviderID> registered_;
};

} // namespace vellmark
