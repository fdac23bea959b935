#include "app/MainWindowPages.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vellmark {

namespace {
constexpr std::string_view agentPageRangeKey = "AgentPageRange";
}

MainWindowPages::MainWindowPages(Sources sources)
    : sources_(std::move(sources)),
      facts_({.machine = sources_.machine}, sources_.executor, [this] {
          // Asked for while the page is being shown.
          sources_.executor.post(sources_.update);
      }) {}

MainWindowActions MainWindowPages::actions() {
    MainWindowActions actions;
    actions.program = sources_.actions;
    // provider
    actions.agent = agentActions();

    // history

    // activity

    // settings

    // help

    // about

    return actions;
}

MainWindowContent MainWindowPages::content(const AgentPage& selection, Instant now) const {
    const UsageState& state = sources_.store.state();
    MainWindowContent content;
    content.sidebar = sidebarItems(state, now, sources_.language.words());
    content.page = shownPage(selection, state);
    content.content = contentOf(content.page, now);
    return content;
}

PageContent MainWindowPages::contentOf(const AgentPage& page, Instant now) const {
    using Kind = AgentPage::Kind;
    const UsageState& state = sources_.store.state();
    const Localization& words = sources_.language.words();
    switch (page.kind) {
    case Kind::overview:
        return overviewPageContent(state, now, words, asksForSetup_);
    case Kind::provider:
        return agentPage(page.providerID, now);
    case Kind::history:
        return pageHead({"nav.history", {}}, words);
    case Kind::activity:
        return pageHead({"nav.activity", {}}, words);
    case Kind::settings:
        return pageHead({"nav.settings", {}}, words);
    case Kind::help:
        return pageHead({"nav.help", {}}, words);
    case Kind::about:
        return pageHead({"nav.about", {}}, words);
    }
    return PageHeadContent();
}

// provider

PageContent MainWindowPages::agentPage(const AgentProviderID& id, Instant now) const {
    const UsageState& state = sources_.store.state();
    const auto snapshot = std::ranges::find(state.snapshots, id, &AgentUsageSnapshot::id);
    const auto stored = sources_.preferences.string(agentPageRangeKey);
    // Only an agent that is shown has a page: see shownPage().
    return agentPageContent(*snapshot,
                            {.state = state,
                             .history = sources_.store.history(),
                             .machine = sources_.machine,
                             .facts = facts_.of(id),
                             .isAskingForFacts = facts_.isAsking(id),
                             .range = agentPageRange(stored.value_or(std::string()))},
                            now, sources_.language.words());
}

AgentPageActions MainWindowPages::agentActions() {
    AgentUsageStore& store = sources_.store;
    return {
        .shown = [this](const AgentProviderID& id) { facts_.need(id); },
        .refresh =
            [&store](const AgentProviderID& id) { store.refresh(RefreshTrigger::manual, {id}); },
        .recheck =
            [this, &store](const AgentProviderID& id) {
                facts_.recheck(id);
                store.refresh(RefreshTrigger::manual, {id});
            },
        .setRange =
            [this](ChartRange range) {
                sources_.preferences.setString(agentPageRangeKey, std::string(storedText(range)));
                sources_.update();
            },
        .setOrder =
            [&store](const std::vector<AgentProviderID>& order) { store.setProviderOrder(order); },
        .switchOff = [&store](const AgentProviderID& id) { store.setEnabled(id, false); },
    };
}

} // namespace vellmark
