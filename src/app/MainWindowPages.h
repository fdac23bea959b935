#pragma once

#include "app/ActivityFeed.h"
#include "app/NoticeController.h"
#include "platform/Preferences.h"
#include "presentation/AppAppearance.h"
#include "presentation/HistoryPageController.h"
#include "presentation/LanguageManager.h"
#include "presentation/MainWindowActions.h"
#include "presentation/MainWindowContent.h"
#include "presentation/SettingsPageModel.h"
#include "store/AgentFactsCache.h"
#include "store/AgentUsageStore.h"

#include <functional>
#include <memory>

namespace vellmark {

/// What stands on the pages of the main window: builds the content of the shown one from the store
/// and the settings, and answers what the pages ask for. Main thread.
class MainWindowPages {
public:
    struct Sources {
        AgentUsageStore& store;
        const Machine& machine;
        MainExecutor& executor;
        Preferences& preferences;
        LanguageManager& language;
        AppAppearance& appearance;
        AgentUIActions actions;
        /// Shows the menu bar's contents; empty where the system shows a menu bar.
        std::function<void()> openMenu;
        /// Shows the content anew, after a page has changed what it depends on.
        std::function<void()> update;
        std::function<void()> saveActivity;
        LaunchAtLoginController& launchAtLogin;
        NoticeController& notices;
        /// What the preferences hold now holds in the whole program.
        std::function<void()> takeSettings;
    };
    explicit MainWindowPages(Sources sources);

    /// What the pages may ask for. Valid as long as this.
    MainWindowActions actions();
    MainWindowContent content(const AgentPage& selection, Instant now) const;
    ActivityFeed& activity() { return *activity_; }
    /// What is known of the agents' programs, and the settings, for other windows.
    AgentFactsCache& facts() { return facts_; }
    SettingsPageModel& settings() { return settings_; }
    /// Called from the executor when the former has changed; may be empty.
    std::function<void()> onFactsChange;

private:
    PageContent contentOf(const AgentPage& page, Instant now) const;
    void openHelpLink(HelpLink link);
    void openAboutLink(AboutLink link);
    ActivityPageContent activityContent(Instant now) const;

    Sources sources_;
    // provider
    PageContent agentPage(const AgentProviderID& id, Instant now) const;
    AgentPageActions agentActions();
    AgentFactsCache facts_;

    // history
    HistoryPageActions historyActions();
    void saveHistory(const std::function<std::string()>& picture);
    HistoryPageController history_;

    // activity
    std::shared_ptr<ActivityFeed> activity_;
    // settings
    SettingsPageModel::Sources settingsSources();
    SettingsPageModel settings_;

    // help
    void showHelp(HelpSection section);
    HelpSection helpSection_ = HelpSection::reading;
    std::string helpQuery_;
    // about
};

} // namespace vellmark
