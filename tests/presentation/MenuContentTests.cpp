#include "AgentNames.h"
#include "presentation/MainMenuContent.h"
#include "presentation/StatusMenuContent.h"
#include "support/Matchers.h"

namespace vellmark::tests {
namespace {

std::vector<std::string> titles(const std::vector<StatusMenuItem>& items) {
    std::vector<std::string> all;
    for (const StatusMenuItem& item : items) {
        all.push_back(item.isSeparator() ? "-" : item.title);
    }
    return all;
}

TEST(StatusMenuContent, HoldsTheFiguresAndWhatCanBeDone) {
    const UsageState state = stateOf(
        {live(claude, {window("session", 10, 300, 87), window("weekly", 96, 10'080, 900)}),
         failed(codex, UsageProviderError::timeout("Codex"), {window("session", 96, 300, 87)}),
         failed(antigravity, UsageProviderError::timeout("Antigravity"))});
    const auto menu = statusMenuContent(state, noon, english);
    EXPECT_THAT(titles(menu), ElementsAre("Claude · Week 4% left", "Codex · Session 4% left",
                                          "Antigravity · Unavailable", "-", "Open Vellmark",
                                          "Refresh", "-", "Settings …", "-", "Quit Vellmark"));
    EXPECT_THAT(titles(menu[0].items), ElementsAre("Session: 90% left · Resets 3:15 PM",
                                                   "Week: 4% left · Resets Fri 4:48 AM"));
    EXPECT_THAT(titles(menu[1].items),
                ElementsAre("Session: 4% left · Resets 3:15 PM · as of 1:46 PM",
                            "Codex did not answer in time."));
    EXPECT_EQ(agentOfMenuAction(menu[0].items[1].action), claude);
    EXPECT_TRUE(menu[0].action.empty());
    EXPECT_FALSE(agentOfMenuAction(menuAction::refresh));
    // A minute later nothing has changed in it.
    EXPECT_EQ(menu, statusMenuContent(state, noon + Seconds(60), english));
}

TEST(StatusMenuContent, LeadsToWhatIsLeftToInstallOrToLogInTo) {
    using Kind = UsageProviderError::Kind;
    const auto menu = statusMenuContent(
        stateOf({failed(claude, UsageProviderError(Kind::claudeNotLoggedIn)),
                 failed(codex, UsageProviderError::executableMissing("Codex CLI"))}),
        noon, english);
    EXPECT_THAT(titles(menu[0].items), ElementsAre("Not logged in to Claude.", "Log in …"));
    EXPECT_EQ(agentToSetUp(menu[0].items[1].action), claude);
    EXPECT_FALSE(agentOfMenuAction(menu[0].items[1].action));
    EXPECT_THAT(titles(menu[1].items), ElementsAre("Codex CLI not found.", "Install …"));
    EXPECT_EQ(agentToSetUp(menu[1].items[1].action), codex);
    EXPECT_FALSE(agentToSetUp(menu[1].items[0].action));
}

TEST(StatusMenuContent, TellsWhatCannotBeUsed) {
    const UsageState state =
        stateOf({live(claude, {window("session", 10, 300, 87), window("weekly", 100, 10'080, 900)}),
                 live(codex, {window("session", 96, 300, -3)})});
    const auto menu = statusMenuContent(state, noon, english);
    EXPECT_THAT(titles(menu[0].items), ElementsAre("Session: 90% left · Waits for the week",
                                                   "Week: 0% left · Used up · back Fri 4:48 AM"));
    EXPECT_EQ(menu[1].title, "Codex · Reset due");
    EXPECT_EQ(statusMenuContent(UsageState(), noon, english).front().action,
              menuAction::openWindow);
}

TEST(MainMenuContent, TakesNoKeyTwiceAndSeparatesOnlyItems) {
    std::set<char> keys;
    for (const MenuContent& menu : mainMenuContent(english)) {
        bool endsWithSeparator = true;
        for (const MenuItemContent& item : menu.items) {
            EXPECT_FALSE(item.isSeparator() && endsWithSeparator) << menu.title;
            endsWithSeparator = item.isSeparator();
            EXPECT_TRUE(item.key == 0 || keys.insert(item.key).second) << item.title;
        }
        EXPECT_FALSE(endsWithSeparator) << menu.title;
    }
}

TEST(MainMenuContent, SavesActivityOnlyFromItsPage) {
    using Kind = AgentPage::Kind;
    for (const Kind kind : {Kind::provider, Kind::overview, Kind::history, Kind::activity,
                            Kind::settings, Kind::help, Kind::about}) {
        const AgentPage page = AgentPage::of(kind);
        EXPECT_EQ(isMenuItemEnabled(menuAction::saveActivity, true, page), kind == Kind::activity);
        EXPECT_FALSE(isMenuItemEnabled(menuAction::saveActivity, false, page));
        EXPECT_TRUE(isMenuItemEnabled(menuAction::showSettings, false, page));
    }
}

} // namespace
} // namespace vellmark::tests
