#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/SettingsPageContent.h"

namespace vellmark {

/// What the main window asks of the application: what every view may ask for, and what single
/// pages do, in a record of theirs each. Main thread.
struct MainWindowActions {
    AgentUIActions program;
    // provider

    // history

    // activity

    // settings
    SettingsPageActions settings;

    // help

    // about
};

} // namespace vellmark
