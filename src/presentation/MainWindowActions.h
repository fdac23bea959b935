#pragma once

#include "presentation/AboutPageActions.h"
#include "presentation/ActivityPageContent.h"
#include "presentation/AgentPageContent.h"
#include "presentation/AgentUIActions.h"
#include "presentation/HelpPageActions.h"
#include "presentation/HistoryPageContent.h"
#include "presentation/SettingsPageContent.h"

namespace vellmark {

/// What the main window asks of the application: what every view may ask for, and what single
/// pages do, in a record of theirs each. All have an empty default, so that a test names what it
/// needs. Main thread.
struct MainWindowActions {
    AgentUIActions program = {};
    /// Shows the menu bar's contents; empty where the system shows a menu bar.
    std::function<void()> openMenu = {};
    // provider
    AgentPageActions agent = {};

    // history
    HistoryPageActions history;

    // activity
    ActivityPageActions activity = {};
    // settings
    SettingsPageActions settings = {};

    // help
    HelpPageActions help = {};

    // about
    AboutPageActions about = {};
};

} // namespace vellmark
