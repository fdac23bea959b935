#include "ui/window/WindowPages.h"

#include "ui/window/AboutPage.h"
#include "ui/window/ActivityPage.h"
#include "ui/window/AgentDetailPage.h"
#include "ui/window/HelpPage.h"
#include "ui/window/HistoryPage.h"
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

    // overview
    void operator()(const OverviewPageContent& content) const { give<OverviewPage>(page, content); }
    // provider
    void operator()(const AgentPageContent& content) const { give<AgentDetailPage>(page, content); }

    // history
    void operator()(const HistoryPageContent& content) const { give<HistoryPage>(page, content); }

    // activity
    void operator()(const ActivityPageContent& content) const { give<ActivityPage>(page, content); }
    // settings
    void operator()(const SettingsPageContent& content) const { give<SettingsPage>(page, content); }

    // help
    void operator()(const HelpPageContent& content) const { give<HelpPage>(page, content); }
    // about
    void operator()(const AboutPageContent& content) const { give<AboutPage>(page, content); }
};

} // namespace

WindowPage* makePage(AgentPage::Kind kind, const MainWindowActions& actions, QWidget* parent) {
    using Kind = AgentPage::Kind;
    switch (kind) {
    case Kind::overview:
        return new OverviewPage(actions.program, parent);
    case Kind::provider:
        return new AgentDetailPage(actions.program, actions.agent, parent);
    case Kind::history:
        return new HistoryPage(actions.program, actions.history, parent);
    case Kind::activity:
        return new ActivityPage(actions.activity, parent);
    case Kind::settings:
        return new SettingsPage(actions.settings, actions.program, parent);
    case Kind::help:
        return new HelpPage(actions.help, parent);
    case Kind::about:
        break;
    }
    return new AboutPage(actions.about, parent);
}

void setPageContent(WindowPage& page, const PageContent& content) {
    std::visit(Giver{page}, content);
}

} // namespace vellmark
