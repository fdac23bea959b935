#include "presentation/AgentPage.h"

#include <algorithm>
#include <iterator>

namespace vellmark {

namespace {

using PageKind = AgentPage::Kind;

constexpr std::size_t mostSteps = 50;

struct NamedKind {
    PageKind kind;
    std::string_view name;
};
constexpr NamedKind namedKinds[] = {
    {PageKind::overview, "overview"}, {PageKind::history, "history"},
    {PageKind::activity, "activity"}, {PageKind::settings, "settings"},
    {PageKind::help, "help"},         {PageKind::about, "about"},
};

} // namespace

std::string AgentPage::storedForm() const {
    if (kind == PageKind::provider) {
        return std::string(providerPrefix) + providerID.rawValue;
    }
    return std::string(std::ranges::find(namedKinds, kind, &NamedKind::kind)->name);
}

AgentPage AgentPage::fromStoredForm(std::string_view text) {
    if (text.starts_with(providerPrefix)) {
        return provider(AgentProviderID(std::string(text.substr(providerPrefix.size()))));
    }
    const auto* found = std::ranges::find(namedKinds, text, &NamedKind::name);
    return found == std::end(namedKinds) ? AgentPage() : of(found->kind);
}

void AgentNavigationState::select(AgentPage page) {
    if (page == selection_) {
        return;
    }
    back_.push_back(selection_);
    if (back_.size() > mostSteps) {
        back_.pop_front();
    }
    forward_.clear();
    change(std::move(page));
}

void AgentNavigationState::replaceSelection(AgentPage page) {
    if (page != selection_) {
        change(std::move(page));
    }
}

void AgentNavigationState::go(Pages& from, Pages& to) {
    while (!from.empty()) {
        AgentPage page = std::move(from.back());
        from.pop_back();
        if (page != selection_ && (!isShown || isShown(page))) {
            to.push_back(selection_);
            return change(std::move(page));
        }
    }
}

void AgentNavigationState::change(AgentPage page) {
    selection_ = std::move(page);
    if (onChange) {
        onChange();
    }
}

} // namespace vellmark
