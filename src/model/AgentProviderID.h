#pragma once

#include <compare>
#include <functional>
#include <string>
#include <utility>

namespace vellmark {

/// Names a monitored agent. Any text is valid, so that files of a newer version survive a round
/// trip; the known agents are constants below.
struct AgentProviderID {
    std::string rawValue;

    AgentProviderID() = default;
    explicit AgentProviderID(std::string value) : rawValue(std::move(value)) {}
    auto operator<=>(const AgentProviderID&) const = default;

    static AgentProviderID claude() { return AgentProviderID("claude"); }
    static AgentProviderID codex() { return AgentProviderID("codex"); }
    static AgentProviderID antigravity() { return AgentProviderID("antigravity"); }
};

} // namespace vellmark

template<>
struct std::hash<vellmark::AgentProviderID> {
    std::size_t operator()(const vellmark::AgentProviderID& id) const noexcept {
        return std::hash<std::string>()(id.rawValue);
    }
};
