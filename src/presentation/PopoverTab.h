#pragma once

#include "model/AgentProviderID.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vellmark {

/// A tab of the popover: the overview, or one agent. Kept across starts under its stored form,
/// "overview" or "provider:" and the agent's identifier.
struct PopoverTab {
    /// Absent for the overview.
    std::optional<AgentProviderID> provider;

    static PopoverTab overview() { return {}; }
    static PopoverTab agent(AgentProviderID id) { return {std::move(id)}; }

    std::string storedForm() const;
    /// An agent that is not among `shown`, like anything unreadable, is the overview.
    static PopoverTab fromStoredForm(std::string_view text, std::span<const AgentProviderID> shown);

    bool operator==(const PopoverTab&) const = default;
};

} // namespace vellmark
