#pragma once

#include "platform/Preferences.h"
#include "presentation/AppAppearance.h"
#include "presentation/LanguageManager.h"
#include "presentation/MainWindowActions.h"
#include "presentation/MainWindowContent.h"
#include "store/AgentFactsCache.h"
#include "store/AgentUsageStore.h"

#include <functional>

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
        /// Shows the content anew, after a page has changed what it depends on.
        std::function<void()> update;
    };
    explicit MainWindowPages(Sources sources);

    /// What the pages may ask for. Valid as long as this.
    MainWindowActions actions();
    /// The section of the help to begin with.
    void showHelp(HelpSection section);
    /// Whether the overview says that something is left to set up.
    void setAsksForSetup(bool asks) { asksForSetup_ = asks; }
    MainWindowContent content(const AgentPage& selection, Instant now) const;

private:
    PageContent contentOf(const AgentPage& page, Instant now) const;
    void openHelpLink(HelpLink link);
    void openAboutLink(AboutLink link);

    Sources sources_;
    bool asksForSetup_ = false;
    // provider
    PageContent agentPage(const AgentProviderID& id, Instant now) const;
    AgentPageActions agentActions();
    AgentFactsCache facts_;

    // history

    // activity

    // settings

    // help
    HelpSection helpSection_ = HelpSection::reading;
    std::string helpQuery_;
    // about
};

} // namespace vellmark
