#pragma once

#include "app/MainMenu.h"
#include "app/MainWindowPages.h"
#include "app/NoticeController.h"
#include "app/QtDescriptorWatcher.h"
#include "app/QtExecutor.h"
#include "app/SetupAssistantWindowController.h"
#include "app/StatusItem.h"
#include "app/ToolkitTexts.h"
#include "app/WindowController.h"
#include "platform/FileWatch.h"
#include "platform/Machine.h"
#include "platform/SingleInstance.h"
#include "platform/SystemAppearance.h"
#include "platform/Wake.h"
#include "presentation/AgentUIActions.h"
#include "presentation/AppAppearance.h"
#include "presentation/AppLoops.h"
#include "presentation/ClockJump.h"
#include "presentation/LanguageManager.h"
#include "presentation/LaunchAtLoginController.h"
#include "presentation/LaunchSequence.h"
#include "presentation/LegalModel.h"
#include "presentation/WindowPresenceController.h"
#include "store/AgentUsageStore.h"

#include <QPointer>
#include <QRect>

#include <memory>
#include <optional>

namespace vellmark {

class AgentMainWindowView;
class LegalWindow;
class Popover;
class SupportReportWindowController;

/// The hub of the application: owns the status item, the popover, the menu, every window and the
/// store, starts what runs for as long as the application does, and ends it. Lives for the whole
/// process, on the main thread.
class VellmarkAppDelegate final : private LaunchSteps {
public:
    VellmarkAppDelegate(LaunchOptions options, Machine machine);
    ~VellmarkAppDelegate() override;
    VellmarkAppDelegate(const VellmarkAppDelegate&) = delete;
    VellmarkAppDelegate& operator=(const VellmarkAppDelegate&) = delete;

    LaunchOutcome applicationDidFinishLaunching();
    bool applicationShouldTerminate() const { return true; }
    void applicationWillTerminate();
    /// The screen has gone: says so in the log, then as `applicationWillTerminate`, and waits until
    /// everything is written.
    void displayWasLost();
    /// The program was opened again. Always answers false: nothing else is to be opened.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    bool validateMenuItem(std::string_view action) const;
    /// What the settings choose.
    LanguageManager& languageManager() { return language_; }
    AppAppearance& appearance() { return appearance_; }

    // The actions of menus and buttons; their names are the names in the menus.
    void togglePopover();
    void showAboutFromMenu();
    void showSettingsFromMenu();
    void saveActivityFromMenu();
    void showSupportReportFromMenu();
    void openWebsite();
    void openSupport();
    void showTermsFromMenu();
    void showPrivacyFromMenu();

private:
    // The launch, step by step.
    bool handOverToRunningInstance() override;
    void terminate() override;
    void becomeAccessory() override;
    void buildMainMenu() override;
    void applyAppearance() override;
    void observeAppearance() override;
    void createStatusItem() override;
    void configurePopover() override;
    void observeStore() override;
    void observeLanguage() override;
    void setUpLaunchAtLogin() override;
    void followMoveAtLogin() override;
    void startLaunchRefresh() override;
    void observeWake() override;
    void startLoops() override;
    void runFirstRun() override;
    void showMainWindow() override;
    void showAbout() override;
    void showPopover() override;

    AgentUIActions makeActions();
    std::unique_ptr<QWidget> makeMainWindow();
    std::unique_ptr<QWidget> makeAboutWindow();
    std::unique_ptr<QWidget> makeLegalWindow();
    const Localization& words() const { return language_.words(); }

    void takeSettings();
    void storeChanged();
    void reevaluateStatusItem();
    void updateVisibleViews();
    void updatePopover();
    void rehearsePopover();
    void updateMainWindow();
    void rememberPage();
    void togglePopoverAt(const QRect& anchor);
    void closePopover();
    void showPage(AgentPage page);
    void windowsCameOrWent(ActivationPolicy policy);
    void minuteTick();
    void systemDidWake();
    void menuItemChosen(std::string_view action);
    void showLegal(LegalDocument document);
    void showLegalNotice();
    void updateLegalWindow();
    void showSetup(const std::optional<AgentProviderID>& agent = std::nullopt);
    void setupClosed();

    LaunchOptions options_;
    bool isRunningTests_;
    Machine machine_;
    QtExecutor executor_;
    QtDescriptorWatcher loop_;
    std::unique_ptr<Preferences> preferences_;
    LanguageManager language_;
    ToolkitTexts toolkitTexts_;
    AppAppearance appearance_;
    LegalModel legal_;
    LaunchAtLoginController launchAtLogin_;
    WindowPresenceController windowPresence_;
    AgentUIActions actions_;
    std::unique_ptr<SingleInstance> singleInstance_;
    std::unique_ptr<AgentUsageStore> store_;
    std::unique_ptr<SystemAppearance> systemAppearance_;
    /// What panels follow: the system, whatever the user has chosen for the application.
    ColorScheme panelScheme_ = ColorScheme::light;
    std::unique_ptr<StatusItem> statusItem_;
    std::optional<MenuBarGlyph> drawnGlyph_;
    /// Null when it has been closed for a while.
    std::unique_ptr<Popover> popover_;
    MainMenu mainMenu_;
    AgentNavigationState navigation_;
    /// Made with the store.
    std::unique_ptr<NoticeController> notices_;
    /// Made with the store.
    std::unique_ptr<MainWindowPages> pages_;
    WindowController mainWindow_;
    WindowController aboutWindow_;
    WindowController legalWindow_;
    /// Made with the store, and gone before it.
    std::unique_ptr<SupportReportWindowController> supportReport_;
    LegalDocument shownLegal_ = LegalDocument::terms;
    /// Inside `mainWindow_`, and there while it is.
    QPointer<AgentMainWindowView> mainWindowView_;
    std::unique_ptr<AppLoops> loops_;
    std::unique_ptr<WakeObserver> wakeObserver_;
    std::unique_ptr<FileWatch> settingsWatch_;
    std::unique_ptr<FileWatch> statusLineWatch_;
    ClockJump clockJump_;
    std::shared_ptr<AgentUsageStore::Subscription> storeSubscription_;
    bool isReevaluationPosted_ = false;
    /// Made with the store.
    std::unique_ptr<SetupAssistantWindowController> setup_;
    /// The setup assistant came up by itself; the terms are shown after it.
    bool isFirstRun_ = false;
    bool hasTerminated_ = false;
};

} // namespace vellmark
