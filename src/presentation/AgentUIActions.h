#pragma once

#include "model/AgentProviderID.h"
#include "presentation/LegalDocument.h"

#include <functional>

namespace vellmark {

/// What views ask of the application; built once and handed to every view. Main thread.
struct AgentUIActions {
    std::function<void()> refresh;
    std::function<void()> openWindow;
    std::function<void(const AgentProviderID&)> openProvider;
    std::function<void()> openSettings;
    std::function<void()> showAbout;
    std::function<void()> startSetup;
    /// The same, on what is left to install or to log in to for one agent.
    std::function<void(const AgentProviderID&)> setUpAgent;
    std::function<void(LegalDocument)> showLegal;
    std::function<void()> showSupportReport;
    std::function<void()> quit;
};

} // namespace vellmark
