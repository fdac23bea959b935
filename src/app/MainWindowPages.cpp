#include "app/MainWindowPages.h"

#include "presentation/MainMenuContent.h"
#include "ui/Conversions.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>

#include <utility>

namespace vellmark {

namespace {

void openURL(const std::string& url) {
    QDesktopServices::openUrl(QUrl(qString(url)));
}

void copyText(const std::string& text) {
    QGuiApplication::clipboard()->setText(qString(text));
}

} // namespace

MainWindowPages::MainWindowPages(Sources sources) : sources_(std::move(sources)) {}

MainWindowActions MainWindowPages::actions() {
    MainWindowActions actions;
    actions.program = sources_.actions;
    // provider

    // history

    // activity

    // settings

    // help
    actions.help = {.choose =
                        [this](HelpSection section) {
                            showHelp(section);
                            sources_.update();
                        },
                    .search =
                        [this](const std::string& query) {
                            helpQuery_ = query;
                            sources_.update();
                        },
                    .copy = copyText,
                    .open = [this](HelpLink link) { openHelpLink(link); }};
    // about
    actions.about = {.open = [this](AboutLink link) { openAboutLink(link); }, .openURL = openURL};
    return actions;
}

void MainWindowPages::showHelp(HelpSection section) {
    helpSection_ = section;
    helpQuery_.clear();
}

void MainWindowPages::openHelpLink(HelpLink link) {
    switch (link) {
    case HelpLink::supportPage:
        return openURL(supportURL(sources_.language.words()));
    case HelpLink::terms:
        return sources_.actions.showLegal(LegalDocument::terms);
    case HelpLink::privacy:
        return sources_.actions.showLegal(LegalDocument::privacy);
    case HelpLink::none:
        return;
    }
}

void MainWindowPages::openAboutLink(AboutLink link) {
    switch (link) {
    case AboutLink::website:
        return openURL(websiteURL(sources_.language.words()));
    case AboutLink::supportPage:
        return openURL(supportURL(sources_.language.words()));
    case AboutLink::terms:
        return sources_.actions.showLegal(LegalDocument::terms);
    case AboutLink::privacy:
        return sources_.actions.showLegal(LegalDocument::privacy);
    }
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
        return pageHead({"nav.section.agents", {}}, words);
    case Kind::history:
        return pageHead({"nav.history", {}}, words);
    case Kind::activity:
        return pageHead({"nav.activity", {}}, words);
    case Kind::settings:
        return pageHead({"nav.settings", {}}, words);
    case Kind::help:
        return helpPageContent(helpSection_, helpQuery_, words);
    case Kind::about:
        return aboutPageContent(words);
    }
    return PageHeadContent();
}

} // namespace vellmark
