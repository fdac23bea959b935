#include "app/MainWindowPages.h"

#include <utility>

namespace vellmark {

MainWindowPages::MainWindowPages(Sources sources) : sources_(std::move(sources)) {}

MainWindowActions MainWindowPages::actions() {
    MainWindowActions actions;
    actions.program = sources_.actions;
    actions.openMenu = sources_.openMenu;
    // provider

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
    content.sidebarName = sources_.language.words().text("sidebar.accessibility");
    content.page = shownPage(selection, state);
    content.content = contentOf(content.page, now);
    if (sources_.openMenu) {
        content.menuButton = menuButton(sources_.language.words());
    }
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
        return pageHead({"nav.section.agents", {}}, words);
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

} // namespace vellmark
