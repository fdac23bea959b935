#pragma once

#include "model/AgentProviderID.h"

#include <functional>
#include <string>
#include <utility>

namespace vellmark {

/// A page of the main window.
struct AgentPage {
    enum class Kind { provider, overview, history, activity, settings, help, about };
    Kind kind = Kind::overview;
    /// Of the kind `provider`.
    AgentProviderID providerID;

    static AgentPage provider(AgentProviderID id) { return {Kind::provider, std::move(id)}; }
    static AgentPage of(Kind kind) { return {kind, {}}; }
    bool operator==(const AgentPage&) const = default;
};

/// Which page the main window shows. Main thread.
class AgentNavigationState {
public:
    const AgentPage& selection() const { return selection_; }
    void select(AgentPage page) {
        if (page == selection_) {
            return;
        }
        selection_ = std::move(page);
        if (onChange) {
            onChange();
        }
    }
    std::function<void()> onChange;

private:
    AgentPage selection_;
};

} // namespace vellmark
