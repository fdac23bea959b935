#pragma once

#include "presentation/AboutPageContent.h"
#include "presentation/ActivityPageContent.h"
#include "presentation/AgentPage.h"
#include "presentation/AgentPageContent.h"
#include "presentation/HelpPageContent.h"
#include "presentation/HistoryPageContent.h"
#include "presentation/OverviewPageContent.h"
#include "presentation/SettingsPageContent.h"
#include "presentation/SidebarContent.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vellmark {

/// What the shown page shows: the content of one kind of page each. A page that has nothing but a
/// head yet gets `PageHeadContent`.
using PageContent = std::variant<
    // overview
    OverviewPageContent,
    // provider
    AgentPageContent,

    // history
    HistoryPageContent,

    // activity
    ActivityPageContent,
    // settings
    SettingsPageContent,

    // help
    HelpPageContent,

    // about
    AboutPageContent>;

/// What the main window shows: the list of pages and the content of the one that is shown.
struct MainWindowContent {
    std::vector<SidebarItem> sidebar;
    AgentPage page;
    PageContent content;
    /// Opens the menu bar's contents; absent where the system shows a menu bar.
    std::optional<ControlContent> menuButton = std::nullopt;
    /// What screen readers call the sidebar.
    std::string sidebarName = {};
};

/// The button that opens the menu bar's contents.
ControlContent menuButton(const Localization& words);

/// The page to show for the selected one: the overview in the place of an agent that is not shown.
AgentPage shownPage(const AgentPage& selection, const UsageState& state);

} // namespace vellmark
