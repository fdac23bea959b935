#include "presentation/HistoryPageContent.h"
#include "presentation/MainWindowContent.h"
#include "presentation/PopoverContent.h"
#include "screenshots/SampleHistory.h"
#include "screenshots/SampleSetup.h"
#include "screenshots/SampleStates.h"
#include "ui/QtEnvironment.h"
#include "ui/popover/AgentUsagePopoverView.h"
#include "ui/setup/SetupAssistantView.h"
#include "ui/window/AgentMainWindowView.h"
#include "ui/window/HistoryCards.h"
#include "ui/window/HistoryPage.h"
#include "ui/window/Sidebar.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

/// The states in which the words are the program's own, and none is made long on purpose.
const std::pair<const char*, UsageState (*)()> states[] = {
    {"normal", samples::normal},         {"healthy", samples::healthy},
    {"loading", samples::loading},       {"refreshing", samples::refreshing},
    {"stale", samples::stale},           {"overdue", samples::overdue},
    {"used up", samples::usedUp},        {"all failed", samples::allFailed},
    {"incomplete", samples::incomplete}, {"failed", samples::failed},
    {"balances", samples::balances},     {"refusing", samples::refusing},
    {"credited", samples::credited},     {"no agents", samples::noAgents},
    {"unwritten", samples::unwritten},
};

class Fitting : public ::testing::TestWithParam<std::string_view> {
protected:
    const Localization words = samples::words(std::string(GetParam()));
    RecordedActions recorded;
};

TEST_P(Fitting, Popover) {
    AgentUsagePopoverView view(recorded.actions());
    for (const auto& [name, make] : states) {
        const UsageState state = make();
        for (const char* tab :
             {"overview", "provider:codex", "provider:claude", "provider:antigravity"}) {
            view.setContent(popoverContent(state, tab, samples::now(), words));
            view.resize(AgentUsagePopoverView::viewWidth, view.wantedHeight());
            view.show();
            settle();
            expectNothingIsCut(view, std::string(name) + ", " + tab);
        }
    }
}

TEST_P(Fitting, OverviewAndSidebar) {
    AgentNavigationState navigation;
    AgentMainWindowView view({.program = recorded.actions(), .openMenu = [] {}}, navigation);
    view.resize(AgentMainWindowView::leastSize);
    for (const auto& [name, make] : states) {
        const UsageState state = make();
        view.setContent({sidebarItems(state, samples::now(), words),
                         AgentPage::of(AgentPage::Kind::overview),
                         overviewPageContent(state, samples::now(), words)});
        view.show();
        settle();
        expectNothingIsCut(view, name);
    }
}

/// The application's font for as long as this lives.
class FontFamily {
public:
    FontFamily(const char* family, int stretch) {
        QFont font = former_;
        font.setFamily(QString::fromLatin1(family));
        font.setStretch(stretch);
        QApplication::setFont(font);
    }
    ~FontFamily() { QApplication::setFont(former_); }
    FontFamily(const FontFamily&) = delete;
    FontFamily& operator=(const FontFamily&) = delete;

private:
    QFont former_ = QApplication::font();
};

TEST_P(Fitting, HistoryFigures) {
    const AgentUIActions program;
    const HistoryPageActions actions;
    UsageState state = samples::normal();
    UsageHistory history;
    samples::addHistory(history, state);
    // The second is wider than any that people choose.
    for (const auto& [family, stretch] : {std::pair("Inter", 100), std::pair("DejaVu Sans", 125)}) {
        const FontFamily font(family, stretch);
        HistoryPage page(program, actions, nullptr);
        for (const int width :
             {872, AgentMainWindowView::leastSize.width() - Sidebar::sidebarWidth}) {
            page.resize(width, 760);
            for (const AgentProviderID& agent :
                 {AgentProviderID::codex(), AgentProviderID::claude()}) {
                page.setContent(
                    historyPageContent(state, history, {.agent = agent}, samples::now(), words));
                page.show();
                settle();
                const auto cards = visibleParts<FiguresCard>(page);
                ASSERT_FALSE(cards.empty());
                expectNothingIsCut(*cards.front(), std::string(family) + ", " + agent.rawValue +
                                                       ", " + std::to_string(width));
            }
        }
    }
}

TEST_P(Fitting, SetupAssistant) {
    SetupAssistantActions actions;
    actions.lookAgain = [] {};
    SetupAssistantView view(actions);
    const auto expectFits = [&](const SetupAssistantState& state, const std::string& where) {
        view.setContent(setupAssistantContent(state, samples::now(), words));
        view.show();
        settle();
        expectNothingIsCut(view, where);
    };
    for (const SetupStep step :
         {SetupStep::welcome, SetupStep::agents, SetupStep::tools, SetupStep::finish}) {
        expectFits(samples::setup(step, words), std::to_string(static_cast<int>(step)));
    }
    expectFits(samples::runningSetup(words), "running");
    expectFits(samples::failedSetup(words), "failed");
    expectFits(samples::closedSetup(words), "closed");
    expectFits(samples::setupWithoutTerminal(words), "without terminal");
    expectFits(samples::setupWithoutShell(words), "without shell");
    // All that can come of a script.
    for (int kind = 0; kind <= static_cast<int>(SetupOutcome::Kind::notLoggedIn); ++kind) {
        SetupAssistantState state = samples::failedSetup(words);
        for (SetupAssistantState::Agent& agent : state.agents) {
            agent.outcome.kind = static_cast<SetupOutcome::Kind>(kind);
        }
        expectFits(state, "outcome " + std::to_string(kind));
    }
    view.resize(SetupAssistantView::leastSize);
    expectFits(samples::runningSetup(words), "running, least window");
    expectFits(samples::closedSetup(words), "closed, least window");
}

INSTANTIATE_TEST_SUITE_P(Languages, Fitting, ::testing::ValuesIn(Localization::languages()),
                         [](const ::testing::TestParamInfo<std::string_view>& language) {
                             return std::string(language.param);
                         });

} // namespace
} // namespace vellmark::tests
