#include "AgentNames.h"
#include "presentation/MainMenuContent.h"

#include <gtest/gtest.h>

#include <set>

namespace vellmark::tests {
namespace {

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
