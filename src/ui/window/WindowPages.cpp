#include "ui/window/WindowPages.h"

#include "ui/window/HeadOnlyPage.h"
#include "ui/window/OverviewPage.h"
#include "ui/window/SettingsPage.h"

namespace vellmark {

namespace {

template<class Page, class Content>
void give(WindowPage& page, const Content& content) {
    dynamic_cast<Page&>(page).setContent(content);
}

struct Giver {
    WindowPage& page;

    void operator()(const PageHeadContent& content) const { give<HeadOnlyPage>(page, content); }
    // overview
    void operator()(const OverviewPageContent& content) const { give<OverviewPage>(page, content); }
    // provider

    // history

    // activity

    // settings
    void operator()(const SettingsPageContent& content) const { give<SettingsPage>(page, content); }

    // help

    // about
};

} // namespace

WindowPage* makePage(AgentPage::Kind kind, const MainWindowActions& actions, QWidget* parent) {
    using Kind = AgentPage::Kind;
    switch (kind) {
    case Kind::overview:
        return new OverviewPage(actions.program, parent);
    case Kind::provider:
        return new HeadOnlyPage(parent);
    case Kind::history:
        return new HeadOnlyPage(parent);
    case Kind::activity:
        return new HeadOnlyPage(parent);
    case Kind::settings:
        return new SettingsPage(actions.settings, actions.program.startSetup, parent);
    case Kind::help:
        return new HeadOnlyPage(parent);
    case Kind::about:
        return new HeadOnlyPage(parent);
    }
    return new HeadOnlyPage(parent);
}

void setPageContent(WindowPage& page, const PageContent& content) {
    std::visit(Giver{page}, content);
}

} // namespace vellmark
