#include "presentation/MainMenuContent.h"

#include <gtest/gtest.h>

#include <set>

namespace vellmark::tests {
namespace {

const Localization english("en", "en_US", "UTC");

TEST(MainMenuContent, HasEveryItemWithItsActionAndKey) {
    const std::vector<MenuContent> menus = mainMenuContent(english);
    std::string drawing;
    for (const MenuContent& menu : menus) {
        drawing += menu.title + ":\n";
        for (const MenuItemContent& item : menu.items) {
            drawing += item.isSeparator()
                           ? "  -\n"
                           : "  " + item.title + " > " + std::string(item.action) +
                                 (item.key ? std::string(" ") + item.key : std::string()) + "\n";
        }
    }
    EXPECT_EQ(drawing, R"(Vellmark:
  About Vellmark > showAboutFromMenu
  -
  Settings … > showSettingsFromMenu ,
  -
  Hide Vellmark > hide h
  -
  Quit Vellmark > terminate q
File:
  Close Window > performClose w
  -
  Save Activity … > saveActivityFromMenu s
Edit:
  Copy > copy c
  Select All > selectAll a
Window:
  Minimize > performMiniaturize m
Help:
  Vellmark Website > openWebsite
  Support > openSupport
  Support Report … > showSupportReportFromMenu
  -
  Terms of Use > showTermsFromMenu
  Privacy > showPrivacyFromMenu
)");
    EXPECT_EQ(menus.back().role, MenuContent::Role::help);
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

TEST(MainMenuContent, LeadsToPagesInTheChosenLanguage) {
    EXPECT_NE(websiteURL(english), websiteURL(Localization("de")));
    EXPECT_TRUE(supportURL(english).starts_with(websiteURL(english)));
    EXPECT_TRUE(supportURL(english).ends_with("/support.html"));
}

} // namespace
} // namespace vellmark::tests
