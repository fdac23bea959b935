#include "app/VellmarkAppDelegate.h"

#include "app/SupportReportWindowController.h"
#include "app/WindowActivation.h"
#include "app/WindowMemory.h"
#include "platform/ContinuousClock.h"
#include "platform/InstanceIdentifier.h"
#include "platform/UnusedMemory.h"
#include "presentation/AboutPageContent.h"
#include "presentation/LegalWindowContent.h"
#include "presentation/PopoverContent.h"
#include "process/BoundedProcess.h"
#include "store/ActivityTexts.h"
#include "store/AppSettings.h"
#include "text/TerminalText.h"
#include "ui/AboutWindow.h"
#include "ui/Conversions.h"
#include "ui/LegalWindow.h"
#include "ui/kit/Motion.h"
#include "ui/kit/Theme.h"
#include "ui/popover/AgentUsagePopoverView.h"
#include "ui/popover/Popover.h"
#include "ui/window/AgentMainWindowView.h"
#include "ui/window/TitleBar.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

namespace vellmark {
namespace {

constexpr std::string_view popoverTabKey = "PopoverSelectedTab";
constexpr std::string_view pageKey = "MainWindowPage";
constexpr Seconds terminationGrace{1.0};
/// What has just come is on the screen by then; a panel has asked for all it draws of the item.
constexpr Seconds drawingTime{0.1};
/// The status item is drawn, and nobody has found it yet.
constexpr Seconds popoverRehearsal{0.5};
/// The first refresh is mostly over by then.
constexpr Seconds launchSettles{5};
constexpr int exportedActivityDays = 30;

Instant now() {
    return ReferenceClock::now();
}

Seconds steadySeconds() {
    return std::chrono::duration_cast<Seconds>(std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace

VellmarkAppDelegate::VellmarkAppDelegate(LaunchOptions options, Machine machine)
    : options_(std::move(options)), isRunningTests_(options_.isRunningTests),
      machine_(std::move(machine)), preferences_(makePreferences(machine_)),
      language_(*preferences_, UserLocale::of(machine_.environment), options_.language),
      appearance_(*preferences_), legal_(*preferences_),
      launchAtLogin_(*preferences_, makeLoginItem(machine_)),
      windowPresence_([this](ActivationPolicy policy) { windowsCameOrWent(policy); }),
      actions_(makeActions()),
      mainMenu_(
          {.choose = [this](std::string_view action) { menuItemChosen(action); },
           .isEnabled = [this](std::string_view action) { return validateMenuItem(action); }}),
      mainWindow_({.identifier = "main",
                   .autosaveName = "VellmarkMainWindow",
                   .make = [this] { return makeMainWindow(); },
                   .title = [this] { return qString(words().text("app.name")); },
                   .onVisibilityChange =
                       [this] {
                           rememberPage();
                           mainMenu_.validate();
                       }},
                  windowPresence_, *preferences_),
      aboutWindow_({.identifier = "about",
                    .autosaveName = {},
                    .make = [this] { return makeAboutWindow(); },
                    .title = [this] { return qString(words().text("about.title")); },
                    .onVisibilityChange = {}},
                   windowPresence_, *preferences_),
      legalWindow_({.identifier = "legal",
                    .autosaveName = {},
                    .make = [this] { return makeLegalWindow(); },
                    .title = [this] { return qString(words().text("legal.window.title")); },
                    .onVisibilityChange = {}},
                   windowPresence_, *preferences_) {
    navigation_.replaceSelection(
        AgentPage::fromStoredForm(preferences_->string(pageKey).value_or("")));
    navigation_.isShown = [this](const AgentPage& page) {
        return shownPage(page, store_->state()) == page;
    };
    navigation_.onChange = [this] {
        mainMenu_.validate();
        updateMainWindow();
    };
}

VellmarkAppDelegate::~VellmarkAppDelegate() {
    applicationWillTerminate();
}

LaunchOutcome VellmarkAppDelegate::applicationDidFinishLaunching() {
    const LaunchOutcome outcome = runLaunchSequence(options_, *this);
    if (outcome == LaunchOutcome::launched) {
        executor_.postAfter(popoverRehearsal, popoverRehearsal, [this] { rehearsePopover(); });
        // Once more with the first readings: at first there may be nothing to draw but their
        // places.
        executor_.postAfter(launchSettles, launchSettles, [this] {
            rehearsePopover();
            releaseUnusedMemory();
        });
    }
    return outcome;
}

void VellmarkAppDelegate::applicationWillTerminate() {
    if (isRunningTests_ || std::exchange(hasTerminated_, true)) {
        return;
    }
    settingsWatch_.reset();
    statusLineWatch_.reset();
    loops_.reset();
    if (notices_) {
        notices_->end();
    }
    mainWindow_.saveFrame();
    rememberPage();
    if (setup_) {
        setup_->model().closed();
    }
    if (supportReport_) {
        supportReport_->cancel();
    }
    if (store_) {
        store_->abortRefresh();
    }
    terminateAllChildren(terminationGrace);
}

void VellmarkAppDelegate::displayWasLost() {
    if (store_) {
        store_->logActivity(ActivityTexts::entry(ActivityEntry::Level::notice, std::nullopt,
                                                 "log.display.lost", {}, words()));
    }
    applicationWillTerminate();
    singleInstance_.reset();
    if (store_) {
        store_->flush();
    }
}

bool VellmarkAppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
    if (!isRunningTests_) {
        showMainWindow();
    }
    return false;
}

bool VellmarkAppDelegate::validateMenuItem(std::string_view action) const {
    return isMenuItemEnabled(action, mainWindow_.isVisible(), navigation_.selection());
}

// Launch

bool VellmarkAppDelegate::handOverToRunningInstance() {
    singleInstance_ = claimSingleInstance(
        loop_,
        {.identifier = instanceIdentifier(machine_),
         .directory = machine_.supportDirectory(),
         .onShow = [this] { executor_.post([this] { applicationShouldHandleReopen(false); }); },
         .onShowPopover = [this] { executor_.post([this] { showPopover(); }); },
         .asksForPopover = options_.showsPopover,
         .activationToken = options_.activationToken,
         .onActivationToken = setActivationToken});
    if (singleInstance_ != nullptr) {
        setActivationToken(options_.activationToken);
    }
    return singleInstance_ == nullptr;
}

void VellmarkAppDelegate::terminate() {
    executor_.post([] { QCoreApplication::quit(); });
}

void VellmarkAppDelegate::becomeAccessory() {
    setActivationPolicy(ActivationPolicy::accessory);
}

void VellmarkAppDelegate::buildMainMenu() {
    mainMenu_.rebuild(mainMenuContent(words()));
}

void VellmarkAppDelegate::applyAppearance() {
    setApplicationAppearance(appearance_.chosenScheme());
    const ColorScheme scheme =
        systemAppearance_ ? systemAppearance_->colorScheme() : ColorScheme::noPreference;
    kit::motion::setReduced(systemAppearance_ && systemAppearance_->reducesMotion());
    const bool paletteIsDark = kit::Theme::isSystemDark();
    panelScheme_ = scheme != ColorScheme::noPreference ? scheme
                   : paletteIsDark                     ? ColorScheme::dark
                                                       : ColorScheme::light;
    kit::Theme::setCurrent(
        appearance_.isDark(scheme, paletteIsDark) ? kit::Theme::Appearance::dark
                                                  : kit::Theme::Appearance::light,
        kit::Theme::systemHighlight(),
        systemAppearance_ && systemAppearance_->increasesContrast() ? kit::Theme::Contrast::high
                                                                    : kit::Theme::Contrast::usual);
    if (statusItem_) {
        statusItem_->setPanelScheme(panelScheme_);
    }
}

void VellmarkAppDelegate::observeAppearance() {
    const auto changed = [this] {
        applyAppearance();
        reevaluateStatusItem();
    };
    appearance_.onChange = changed;
    systemAppearance_ = observeSystemAppearance(loop_, changed);
}

void VellmarkAppDelegate::createStatusItem() {
    store_ = std::make_unique<AgentUsageStore>(
        AgentUsageStore::Configuration{.machine = machine_,
                                       .registrations = providerRegistry(),
                                       .words = [this] { return words(); },
                                       .drawingTime = drawingTime},
        executor_, *preferences_);
    notices_ = std::make_unique<NoticeController>(
        NoticeController::Sources{.store = *store_,
                                  .machine = machine_,
                                  .executor = executor_,
                                  .preferences = *preferences_,
                                  .loop = loop_,
                                  .words = [this]() -> const Localization& { return words(); },
                                  .actions = actions_,
                                  .update = [this] { updateVisibleViews(); },
                                  .isFirstRun = [this] { return isFirstRun_; },
                                  .posts = options_.postsNotices || !machine_.isSandbox()});
    std::function<void()> openMenu;
    if (!mainMenu_.isSystemBar()) {
        openMenu = [this] { mainMenu_.popUp(mainWindowView_->menuAnchor()); };
    }
    pages_ = std::make_unique<MainWindowPages>(
        MainWindowPages::Sources{.store = *store_,
                                 .machine = machine_,
                                 .executor = executor_,
                                 .preferences = *preferences_,
                                 .language = language_,
                                 .appearance = appearance_,
                                 .actions = actions_,
                                 .openMenu = openMenu,
                                 .update = [this] { updateMainWindow(); },
                                 .saveActivity = [this] { saveActivityFromMenu(); },
                                 .launchAtLogin = launchAtLogin_,
                                 .notices = *notices_,
                                 .takeSettings = [this] { takeSettings(); }});
    setup_ =
        std::make_unique<SetupAssistantWindowController>(SetupAssistantWindowController::Sources{
            .store = *store_,
            .machine = machine_,
            .executor = executor_,
            .preferences = *preferences_,
            .language = language_,
            .pages = *pages_,
            .presence = windowPresence_,
            .attachMenu = [this](QWidget& window) { mainMenu_.attach(window); },
            .onClose = [this] { setupClosed(); }});
    supportReport_ =
        std::make_unique<SupportReportWindowController>(SupportReportWindowController::Sources{
            .store = *store_,
            .machine = machine_,
            .executor = executor_,
            .preferences = *preferences_,
            .language = language_,
            .presence = windowPresence_,
            .attachMenu = [this](QWidget& window) { mainMenu_.attach(window); }});
    statusItem_ =
        makeStatusItem(loop_, *preferences_,
                       {.toggle = [this](const QRect& anchor) { togglePopoverAt(anchor); },
                        .menuAction = [this](std::string_view action) { menuItemChosen(action); }});
    statusItem_->setPanelScheme(panelScheme_);
    statusItem_->setInk(valueOf(*preferences_, setting::statusInk));
    reevaluateStatusItem();
}

void VellmarkAppDelegate::configurePopover() {
    popover_ = std::make_unique<Popover>(actions_);
    popover_->view().onSelectTab = [this](const PopoverTab& tab) {
        preferences_->setString(popoverTabKey, tab.storedForm());
    };
    popover_->onOpenChange = [this](bool isOpen) {
        if (statusItem_) {
            statusItem_->setPopoverOpen(isOpen);
        }
        if (!isOpen) {
            // A click in it may be opening a window.
            executor_.post([this] {
                if (!windowPresence_.hasOpenWindows() && !(popover_ && popover_->isVisible())) {
                    yieldActivation();
                }
            });
        }
    };
    mainMenu_.attach(*popover_);
    new WindowMemory(*popover_, [this] { return std::move(popover_); });
}

void VellmarkAppDelegate::observeStore() {
    storeSubscription_ =
        store_->observe({.willChange = [this] { storeChanged(); }, .didChange = {}});
}

/// The change has not landed yet; several in one turn of the loop are looked at once.
void VellmarkAppDelegate::storeChanged() {
    if (std::exchange(isReevaluationPosted_, true)) {
        return;
    }
    executor_.post([this] {
        isReevaluationPosted_ = false;
        reevaluateStatusItem();
        updateVisibleViews();
    });
}

void VellmarkAppDelegate::observeLanguage() {
    toolkitTexts_.setWords(words());
    QCoreApplication::installTranslator(&toolkitTexts_);
    language_.onChange = [this] {
        toolkitTexts_.setWords(words());
        reevaluateStatusItem();
        buildMainMenu();
        mainWindow_.retitle();
        aboutWindow_.retitle();
        if (auto* about = dynamic_cast<AboutWindow*>(aboutWindow_.window())) {
            about->setContent(aboutPageContent(words()));
        }
        legalWindow_.retitle();
        updateLegalWindow();
        setup_->retitle();
        supportReport_->retell();
        updateVisibleViews();
    };
}

void VellmarkAppDelegate::setUpLaunchAtLogin() {
    launchAtLogin_.setUpOnce();
}

void VellmarkAppDelegate::followMoveAtLogin() {
    if (const auto move = launchAtLogin_.followMove()) {
        store_->logActivity(
            {.level = ActivityEntry::Level::info,
             .agent = {},
             .text = words().format("log.loginItemReregistered", {singleLine(move->from.string()),
                                                                  singleLine(move->to.string())})});
    }
}

void VellmarkAppDelegate::startLaunchRefresh() {
    store_->discardDeletedHistory();
    store_->refresh(RefreshTrigger::launch);
}

void VellmarkAppDelegate::startLoops() {
    loops_ = std::make_unique<AppLoops>(
        executor_,
        AppLoops::Actions{.reevaluateStatusItem = [this] { minuteTick(); },
                          .refresh = [this](RefreshTrigger trigger) { store_->refresh(trigger); },
                          .trimLog = [this] { store_->trimLog(); },
                          .holdAutomaticRefreshesUntil =
                              [this](Instant until) { store_->setAutomaticHoldUntil(until); },
                          .now = now,
                          .continuousTime = continuousSeconds});
    loops_->setRefreshPeriod(length(valueOf(*preferences_, setting::readingInterval)));
    loops_->start();
    settingsWatch_ = watchPreferences(loop_, machine_, [this] {
        preferences_->reload();
        takeSettings();
    });
    statusLineWatch_ =
        watchFiles(loop_, machine_.supportDirectory(), {machine_.statusLineFile().filename()},
                   [this] { store_->takeStatusLine(); });
}

/// What the preferences hold now holds in the whole program.
void VellmarkAppDelegate::takeSettings() {
    language_.takeSetting();
    appearance_.takeSetting();
    statusItem_->setInk(valueOf(*preferences_, setting::statusInk));
    loops_->setRefreshPeriod(length(valueOf(*preferences_, setting::readingInterval)));
    store_->takeSettings();
    notices_->look();
    reevaluateStatusItem();
    updateVisibleViews();
}

void VellmarkAppDelegate::observeWake() {
    wakeObserver_ = vellmark::observeWake(loop_, [this] { systemDidWake(); });
}

void VellmarkAppDelegate::systemDidWake() {
    (void)clockJump_.look(continuousSeconds(), steadySeconds());
    if (loops_) {
        notices_->systemDidWake();
        loops_->systemDidWake();
    }
}

void VellmarkAppDelegate::runFirstRun() {
    if (setup_->model().isCompleted()) {
        showLegalNotice();
        return;
    }
    const auto decided = [this](bool isNeeded) {
        if (hasTerminated_) {
            return;
        }
        if (isNeeded) {
            isFirstRun_ = true;
            showSetup();
        } else {
            showLegalNotice();
        }
    };
    // It starts agents, too.
    executor_.postAfter(drawingTime, Seconds(0), [this, decided] {
        if (!hasTerminated_) {
            setup_->model().decideFirstRun(decided);
        }
    });
}

/// A demo is gone in a minute, with whatever was accepted in it.
void VellmarkAppDelegate::showLegalNotice() {
    if (legal_.needsNotice() && !options_.isDemo) {
        showLegal(LegalDocument::terms);
    }
}

void VellmarkAppDelegate::showSetup(const std::optional<AgentProviderID>& agent) {
    closePopover();
    setup_->show(agent);
}

void VellmarkAppDelegate::setupClosed() {
    if (std::exchange(isFirstRun_, false) && !hasTerminated_) {
        notices_->look();
        showLegalNotice();
    }
}

// Showing

void VellmarkAppDelegate::reevaluateStatusItem() {
    if (!statusItem_) {
        return;
    }
    StatusItemContent content = statusItemContent(store_->state(), now(), words(),
                                                  valueOf(*preferences_, setting::statusFigure));
    if (needsRedraw(drawnGlyph_, content.glyph)) {
        drawnGlyph_ = content.glyph;
    } else {
        content.glyph = *drawnGlyph_;
    }
    statusItem_->show(content);
    statusItem_->setMenu(statusMenuContent(store_->state(), now(), words()));
}

/// A window may follow the last one in the same turn of the loop.
void VellmarkAppDelegate::windowsCameOrWent(ActivationPolicy policy) {
    setActivationPolicy(policy);
    if (policy == ActivationPolicy::accessory &&
        valueOf(*preferences_, setting::lastWindow) == LastWindow::quits) {
        executor_.post([this] {
            if (!windowPresence_.hasOpenWindows()) {
                QCoreApplication::quit();
            }
        });
    }
}

void VellmarkAppDelegate::minuteTick() {
    reevaluateStatusItem();
    updateVisibleViews();
    // Also where the system announces a wake: who does so may have ended.
    if (clockJump_.look(continuousSeconds(), steadySeconds())) {
        systemDidWake();
    }
    notices_->look();
}

void VellmarkAppDelegate::updateVisibleViews() {
    if (popover_ && popover_->isVisible()) {
        updatePopover();
    }
    updateMainWindow();
    setup_->update();
}

void VellmarkAppDelegate::updateMainWindow() {
    if (mainWindow_.isVisible()) {
        // The page of an agent that is no longer shown leaves its place for good.
        navigation_.replaceSelection(shownPage(navigation_.selection(), store_->state()));
        mainWindowView_->setContent(pages_->content(navigation_.selection(), now()));
    }
}

/// When the window closes and at the end, since every write goes to the disk.
void VellmarkAppDelegate::rememberPage() {
    const std::string page = navigation_.selection().storedForm();
    if (preferences_->string(pageKey).value_or(AgentPage().storedForm()) != page) {
        preferences_->setString(pageKey, page);
    }
}

void VellmarkAppDelegate::updatePopover() {
    popover_->setContent(popoverContent(
        store_->state(), preferences_->string(popoverTabKey).value_or("overview"), now(), words()));
}

void VellmarkAppDelegate::rehearsePopover() {
    if (popover_ && !popover_->isVisible()) {
        updatePopover();
        popover_->rehearse();
    }
}

void VellmarkAppDelegate::togglePopover() {
    togglePopoverAt(statusItem_ ? statusItem_->anchor() : QRect());
}

void VellmarkAppDelegate::showPopover() {
    if (!popover_ || !popover_->isVisible()) {
        togglePopover();
    }
}

void VellmarkAppDelegate::togglePopoverAt(const QRect& anchor) {
    if (!statusItem_) {
        return;
    }
    if (!popover_) {
        configurePopover();
    }
    const bool isOpen = popover_->toggle(anchor, [this] {
        store_->refresh(RefreshTrigger::window);
        updatePopover();
    });
    if (isOpen) {
        bringToFront(*popover_);
        activateApplication();
    }
}

void VellmarkAppDelegate::closePopover() {
    if (popover_) {
        popover_->close();
    }
}

void VellmarkAppDelegate::showMainWindow() {
    closePopover();
    mainWindow_.show();
    store_->refresh(RefreshTrigger::window);
    updateMainWindow();
}

void VellmarkAppDelegate::showPage(AgentPage page) {
    navigation_.select(std::move(page));
    showMainWindow();
    mainWindowView_->showBeginning();
}

void VellmarkAppDelegate::showAbout() {
    closePopover();
    aboutWindow_.show();
}

void VellmarkAppDelegate::showLegal(LegalDocument document) {
    closePopover();
    shownLegal_ = document;
    legalWindow_.show();
    updateLegalWindow();
}

void VellmarkAppDelegate::updateLegalWindow() {
    if (auto* window = dynamic_cast<LegalWindow*>(legalWindow_.window())) {
        window->setContent(legalWindowContent(shownLegal_, legal_.needsNotice(), words()));
    }
}

std::unique_ptr<QWidget> VellmarkAppDelegate::makeMainWindow() {
    auto window = std::make_unique<AgentMainWindowView>(pages_->actions(), navigation_);
    if (const int buttonsHeight = reachUnderTitleBar(*window)) {
        window->setTopInset(buttonsHeight);
    }
    mainWindowView_ = window.get();
    mainMenu_.attach(*window, [view = window.get()] { return view->menuAnchor(); });
    return window;
}

std::unique_ptr<QWidget> VellmarkAppDelegate::makeAboutWindow() {
    auto window = std::make_unique<AboutWindow>(pages_->actions().about);
    window->setContent(aboutPageContent(words()));
    mainMenu_.attach(*window);
    return window;
}

std::unique_ptr<QWidget> VellmarkAppDelegate::makeLegalWindow() {
    auto window =
        std::make_unique<LegalWindow>(LegalWindow::Actions{.choose =
                                                               [this](LegalDocument document) {
                                                                   shownLegal_ = document;
                                                                   updateLegalWindow();
                                                               },
                                                           .accept =
                                                               [this] {
                                                                   legal_.accept();
                                                                   legalWindow_.window()->close();
                                                                   updateLegalWindow();
                                                               }});
    window->setContent(legalWindowContent(shownLegal_, legal_.needsNotice(), words()));
    mainMenu_.attach(*window);
    return window;
}

// Actions

AgentUIActions VellmarkAppDelegate::makeActions() {
    return {
        .refresh = [this] { store_->refresh(RefreshTrigger::manual); },
        .openWindow = [this] { showMainWindow(); },
        .openProvider = [this](const AgentProviderID& id) { showPage(AgentPage::provider(id)); },
        .openSettings = [this] { showSettingsFromMenu(); },
        .showAbout = [this] { showAbout(); },
        .startSetup = [this] { showSetup(); },
        .setUpAgent = [this](const AgentProviderID& id) { showSetup(id); },
        .showLegal = [this](LegalDocument document) { showLegal(document); },
        .showSupportReport = [this] { showSupportReportFromMenu(); },
        .quit = [] { QCoreApplication::quit(); },
    };
}

void VellmarkAppDelegate::menuItemChosen(std::string_view action) {
    using Delegate = VellmarkAppDelegate;
    static const std::map<std::string_view, void (Delegate::*)()> methods{
        {menuAction::showAbout, &Delegate::showAboutFromMenu},
        {menuAction::showSettings, &Delegate::showSettingsFromMenu},
        {menuAction::saveActivity, &Delegate::saveActivityFromMenu},
        {menuAction::showSupportReport, &Delegate::showSupportReportFromMenu},
        {menuAction::openWebsite, &Delegate::openWebsite},
        {menuAction::openSupport, &Delegate::openSupport},
        {menuAction::showTerms, &Delegate::showTermsFromMenu},
        {menuAction::showPrivacy, &Delegate::showPrivacyFromMenu},
        {menuAction::openWindow, &Delegate::showMainWindow},
    };
    if (const auto method = methods.find(action); method != methods.end()) {
        (this->*method->second)();
    } else if (action == menuAction::refresh) {
        store_->refresh(RefreshTrigger::manual);
    } else if (action == menuAction::terminate) {
        QCoreApplication::quit();
    } else if (const auto agent = agentOfMenuAction(action)) {
        showPage(AgentPage::provider(*agent));
    } else if (const auto unready = agentToSetUp(action)) {
        showSetup(unready);
    } else {
        mainMenu_.performInResponderChain(action);
    }
}

void VellmarkAppDelegate::showAboutFromMenu() {
    showAbout();
}

void VellmarkAppDelegate::showSettingsFromMenu() {
    showPage(AgentPage::of(AgentPage::Kind::settings));
}

void VellmarkAppDelegate::saveActivityFromMenu() {
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString path = QFileDialog::getSaveFileName(
        mainWindow_.window(), {}, directory + '/' + qString(activityExportFileName(now())));
    if (path.isEmpty()) {
        return;
    }
    const std::string text = store_->activityExportText(exportedActivityDays);
    QSaveFile file(path);
    const auto size = static_cast<qint64>(text.size());
    const bool isSaved =
        file.open(QIODevice::WriteOnly) && file.write(text.data(), size) == size && file.commit();
    pages_->activity().setTrouble(
        isSaved ? std::string()
                : words().format("menu.saveActivity.failed",
                                 {path.toStdString(), file.errorString().toStdString()}));
}

void VellmarkAppDelegate::showSupportReportFromMenu() {
    supportReport_->show();
}

void VellmarkAppDelegate::openWebsite() {
    QDesktopServices::openUrl(QUrl(qString(websiteURL(words()))));
}

void VellmarkAppDelegate::openSupport() {
    QDesktopServices::openUrl(QUrl(qString(supportURL(words()))));
}

void VellmarkAppDelegate::showTermsFromMenu() {
    showLegal(LegalDocument::terms);
}

void VellmarkAppDelegate::showPrivacyFromMenu() {
    showLegal(LegalDocument::privacy);
}

} // namespace vellmark
