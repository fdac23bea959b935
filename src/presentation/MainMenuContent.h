#pragma once

#include "presentation/AgentPage.h"
#include "text/Instant.h"
#include "text/Localization.h"

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The names of the actions behind menu items, which also key their validation.
namespace menuAction {
inline constexpr std::string_view showAbout = "showAboutFromMenu";
inline constexpr std::string_view showSettings = "showSettingsFromMenu";
inline constexpr std::string_view saveActivity = "saveActivityFromMenu";
inline constexpr std::string_view showSupportReport = "showSupportReportFromMenu";
inline constexpr std::string_view openWebsite = "openWebsite";
inline constexpr std::string_view openSupport = "openSupport";
inline constexpr std::string_view showTerms = "showTermsFromMenu";
inline constexpr std::string_view showPrivacy = "showPrivacyFromMenu";
/// Answered by whatever has the focus, not by the delegate.
inline constexpr std::string_view hide = "hide";
inline constexpr std::string_view terminate = "terminate";
inline constexpr std::string_view closeWindow = "performClose";
inline constexpr std::string_view copy = "copy";
inline constexpr std::string_view selectAll = "selectAll";
inline constexpr std::string_view minimize = "performMiniaturize";
/// Of the status item's own menu, on systems where it has one.
inline constexpr std::string_view openWindow = "openWindow";
inline constexpr std::string_view refresh = "refresh";
} // namespace menuAction

struct MenuItemContent {
    /// Empty for a separator.
    std::string title;
    std::string_view action;
    /// Pressed with the command key (Control elsewhere); 0 for none.
    char key = 0;

    bool isSeparator() const { return action.empty(); }
    bool operator==(const MenuItemContent&) const = default;
};

struct MenuContent {
    enum class Role { plain, application, help };
    std::string title;
    Role role = Role::plain;
    std::vector<MenuItemContent> items;
    bool operator==(const MenuContent&) const = default;
};

/// The main menu, left to right.
std::vector<MenuContent> mainMenuContent(const Localization& words);

/// Whether a menu item may be chosen now.
bool isMenuItemEnabled(std::string_view action, bool isMainWindowVisible,
                       const AgentPage& shownPage);

/// The name proposed for a saved activity log.
std::string activityExportFileName(Instant now);

/// Pages of the product's web site, in the chosen language.
std::string websiteURL(const Localization& words);
std::string supportURL(const Localization& words);

} // namespace vellmark
