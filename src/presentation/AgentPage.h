#pragma once

#include "model/AgentProviderID.h"

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace vellmark {

/// A page of the main window. Kept across starts under its stored form, the name of its kind or
/// "provider:" and the agent's identifier.
struct AgentPage {
    enum class Kind { provider, overview, history, activity, settings, help, about };
    /// Before the identifier of an agent in a stored form.
    static constexpr std::string_view providerPrefix = "provider:";

    Kind kind = Kind::overview;
    /// Of the kind `provider`.
    AgentProviderID providerID;

    static AgentPage provider(AgentProviderID id) { return {Kind::provider, std::move(id)}; }
    static AgentPage of(Kind kind) { return {kind, {}}; }

    std::string storedForm() const;
    /// Anything unreadable is the overview.
    static AgentPage fromStoredForm(std::string_view text);

    bool operator==(const AgentPage&) const = default;
};

/// Which page the main window shows, and the way there: pages that were selected before can be gone
/// back to. Main thread.
class AgentNavigationState {
public:
    const AgentPage& selection() const { return selection_; }
    void select(AgentPage page);
    /// Takes the place of a selection that is no longer there; going back leads past it.
    void replaceSelection(AgentPage page);

    /// Nothing happens where there is no page to go to.
    void goBack() { go(back_, forward_); }
    void goForward() { go(forward_, back_); }

    std::function<void()> onChange;
    /// Whether a page can be gone back to; all can until set.
    std::function<bool(const AgentPage&)> isShown;

private:
    using Pages = std::deque<AgentPage>;
    void go(Pages& from, Pages& to);
    void change(AgentPage page);

    AgentPage selection_;
    /// The latest last.
    Pages back_;
    Pages forward_;
};

} // namespace vellmark
