#pragma once

#include "app/MainWindowPages.h"
#include "app/WindowController.h"
#include "platform/Machine.h"
#include "presentation/LanguageManager.h"
#include "presentation/SetupAssistantModel.h"
#include "store/AgentUsageStore.h"

#include <functional>
#include <memory>
#include <optional>

namespace vellmark {

/// The window of the setup assistant and what stands behind it. Main thread.
class SetupAssistantWindowController {
public:
    struct Sources {
        AgentUsageStore& store;
        const Machine& machine;
        MainExecutor& executor;
        Preferences& preferences;
        LanguageManager& language;
        /// Whose knowledge of the agents and whose settings are shown.
        MainWindowPages& pages;
        WindowPresenceController& presence;
        /// Gives the window its menu.
        std::function<void(QWidget&)> attachMenu;
        /// The window was closed.
        std::function<void()> onClose;
    };
    explicit SetupAssistantWindowController(Sources sources);
    SetupAssistantWindowController(const SetupAssistantWindowController&) = delete;
    SetupAssistantWindowController& operator=(const SetupAssistantWindowController&) = delete;

    /// Where it was left, or at what is left to do for `agent`.
    void show(const std::optional<AgentProviderID>& agent = std::nullopt);
    bool isVisible() const { return window_.isVisible(); }
    SetupAssistantModel& model() { return model_; }
    /// After a change of the language.
    void retitle();
    /// Shows what holds now, where somebody sees it.
    void update();

private:
    SetupAssistantModel::Sources modelSources();
    std::unique_ptr<QWidget> makeWindow();
    void visibilityChanged();
    void updateSoon();

    Sources sources_;
    bool isUpdatePosted_ = false;
    SetupAssistantModel model_;
    WindowController window_;
};

} // namespace vellmark
