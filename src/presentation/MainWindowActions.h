#pragma once

#include "presentation/AboutPageActions.h"
#include "presentation/AgentPageContent.h"
#include "presentation/AgentUIActions.h"
#include "presentation/HelpPageActions.h"

namespace vellmark {

/// What the main window asks of the application: what every view may ask for, and what single
/// pages do, in a record of theirs each. Main thread.
struct MainWindowActions {
    AgentUIActions program;
    // provider
    AgentPageActions agent;

    // history

    // activity

    // settings

    // help
    HelpPageActions help;

    // about
    AboutPageActions about;
};

} // namespace vellmark
