#include "screenshots/Scenes.h"

#include "presentation/MainWindowContent.h"
#include "presentation/PopoverContent.h"
#include "screenshots/ChartSheet.h"
#include "screenshots/KitSheet.h"
#include "screenshots/SampleActivity.h"
#include "screenshots/SampleHistory.h"
#include "screenshots/SampleReport.h"
#include "screenshots/SampleSettings.h"
#include "screenshots/SampleSetup.h"
#include "screenshots/SampleStates.h"
#include "ui/AboutWindow.h"
#include "ui/ChartView.h"
#include "ui/Conversions.h"
#include "ui/LegalWindow.h"
#include "ui/kit/Question.h"
#include "ui/kit/Theme.h"
#include "ui/popover/AgentUsagePopoverView.h"
#include "ui/popover/Popover.h"
#include "ui/report/ReportTextView.h"
#include "ui/report/SupportReportView.h"
#include "ui/setup/SetupAssistantView.h"
#include "ui/window/AgentMainWindowView.h"
#include "ui/window/HistoryCards.h"
#include "ui/window/HistoryPage.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {

constexpr QRgb lightDesk = 0xFFCCD2D9;
constexpr QRgb darkDesk = 0xFF30343A;
/// Room around a popover for its shadow.
constexpr QMargins deskRoom(40, 30, 40, 39);

AgentUIActions noActions() {
    const auto nothing = [] {};
    return {.refresh = nothing,
            .openWindow = nothing,
            .openProvider = [](const AgentProviderID&) {},
            .openSettings = nothing,
            .showAbout = nothing,
            .startSetup = nothing,
            .setUpAgent = [](const AgentProviderID&) {},
            .showLegal = [](LegalDocument) {},
            .showSupportReport = nothing,
            .quit = nothing};
}

QImage canvas(QSize size, double scale, const QColor& ground) {
    QImage image(size * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(ground);
    return image;
}

void settle() {
    // Deferred deletions and layouts; nothing in a picture waits for time.
    for (int turn = 0; turn < 3; ++turn) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

QImage drawPopover(const UsageState& state, const std::string& storedTab,
                   const std::string& language, double scale) {
    Popover popover(noActions());
    popover.setContent(popoverContent(state, storedTab, samples::now(), samples::words(language)));
    popover.open(QRect(400, 0, 30, 24));
    settle();
    const QRect view = popover.view().geometry();
    QImage image = canvas(view.size().grownBy(deskRoom), scale,
                          QColor(kit::Theme::current().isDark() ? darkDesk : lightDesk));
    QPainter painter(&image);
    popover.render(&painter, QPoint(deskRoom.left(), deskRoom.top()) - view.topLeft(), QRegion(),
                   QWidget::DrawChildren);
    painter.end();
    popover.hide();
    return image;
}

Scene popoverScene(std::string name, UsageState (*state)(), std::string tab = "overview") {
    return {"popover-" + std::move(name),
            [state, tab = std::move(tab)](const std::string& language, double scale) {
                return drawPopover(state(), tab, language, scale);
            }};
}

QImage drawWhole(QWidget& window, double scale) {
    window.show();
    settle();
    QImage image = canvas(window.size(), scale, Qt::black);
    QPainter painter(&image);
    window.render(&painter);
    return image;
}

/// What a page shows of a state.
using PageOfState = std::function<PageContent(const UsageState& state, const Localization& words)>;

Scene pageScene(std::string name, AgentPage page, UsageState (*state)(), PageOfState content,
                QSize size = AgentMainWindowView::firstSize,
                std::function<void(AgentMainWindowView&)> beforeDrawing = {}) {
    const auto draw = [page = std::move(page), state, content = std::move(content), size,
                       beforeDrawing = std::move(beforeDrawing)](const std::string& language,
                                                                 double scale) {
        AgentNavigationState navigation;
        AgentMainWindowView view({.program = noActions()}, navigation);
        const Localization words = samples::words(language);
        const UsageState shown = state();
        view.setContent({sidebarItems(shown, samples::now(), words), page, content(shown, words),
                         menuButton(words)});
        // A window is given less than its least size where the screen has no more.
        view.setMinimumSize(size.boundedTo(AgentMainWindowView::leastSize));
        view.resize(size);
        if (beforeDrawing) {
            beforeDrawing(view);
        }
        return drawWhole(view, scale);
    };
    return {"window-" + std::move(name), draw};
}

Scene overviewScene(std::string name, UsageState (*state)(),
                    QSize size = AgentMainWindowView::firstSize) {
    return pageScene(
        std::move(name), AgentPage::of(AgentPage::Kind::overview), state,
        [](const UsageState& shown, const Localization& words) {
            return overviewPageContent(shown, samples::now(), words);
        },
        size);
}

/// How an agent's page is drawn.
struct AgentScene {
    AgentProviderID agent = AgentProviderID::claude();
    ChartRange range = ChartRange::week;
    QSize size = AgentMainWindowView::firstSize;
    /// What was recorded before.
    void (*addHistory)(UsageHistory&, const UsageState&) = samples::addHistory;
    bool knowsFacts = true;
    bool isInstalled = true;
};

Scene agentScene(std::string name, UsageState (*state)(), const AgentScene& scene = {}) {
    const auto content = [scene](const UsageState& shown,
                                 const Localization& words) -> PageContent {
        UsageHistory history;
        scene.addHistory(history, shown);
        Machine machine;
        machine.home = "/home/name";
        const AgentFacts facts =
            scene.isInstalled
                ? samples::facts(scene.agent)
                : AgentFacts{.id = scene.agent, .toolPath = {}, .toolVersion = {}, .loggedIn = {}};
        const auto snapshot =
            std::ranges::find(shown.snapshots, scene.agent, &AgentUsageSnapshot::id);
        return agentPageContent(*snapshot,
                                {.state = shown,
                                 .history = history,
                                 .machine = machine,
                                 .facts = scene.knowsFacts ? &facts : nullptr,
                                 .isAskingForFacts = !scene.knowsFacts,
                                 .range = scene.range},
                                samples::now(), words);
    };
    return pageScene("agent" + std::move(name), AgentPage::provider(scene.agent), state, content,
                     scene.size);
}

/// How the history page is drawn.
struct HistoryScene {
    AgentProviderID agent = AgentProviderID::claude();
    ChartRange range = ChartRange::month;
    bool comparesEarlier = false;
    QSize size = AgentMainWindowView::firstSize;
    void (*addHistory)(UsageHistory&, const UsageState&) = samples::addHistory;
    /// Where the chart is read, as a share of it.
    std::optional<double> readAt = std::nullopt;
    /// In place of what the range has.
    std::map<WindowKey, bool> shown = {};
    /// The key of what is said of an export.
    std::string_view exportKey = {};
};

Scene historyScene(std::string name, UsageState (*state)(), const HistoryScene& scene = {}) {
    const auto content = [scene](const UsageState& shown,
                                 const Localization& words) -> PageContent {
        UsageHistory history;
        scene.addHistory(history, shown);
        HistoryPageContent page = historyPageContent(shown, history,
                                                     {.agent = scene.agent,
                                                      .range = scene.range,
                                                      .shown = scene.shown,
                                                      .comparesEarlier = scene.comparesEarlier},
                                                     samples::now(), words);
        if (!scene.exportKey.empty()) {
            page.exportFailed = true;
            page.exportNote = words.format(
                scene.exportKey, {"/media/stick/Vellmark.csv", "No space left on device"});
        }
        return page;
    };
    const auto read = [scene](AgentMainWindowView& view) {
        if (auto* page = view.findChild<QWidget*>("history"); page != nullptr && scene.readAt) {
            dynamic_cast<HistoryPage&>(*page).chartCard()->chart()->readAt(scene.readAt);
        }
    };
    return pageScene("history" + std::move(name), AgentPage::of(AgentPage::Kind::history), state,
                     content, scene.size, read);
}

/// What is done on the page before it is drawn.
using ActivityPreparation = std::function<void(QWidget& page)>;

Scene activityScene(
    std::string name, ActivityPreparation prepare = {}, QSize size = AgentMainWindowView::firstSize,
    std::vector<ActivityEntry> (*entries)(const Localization&) = samples::activity) {
    return pageScene(
        "activity" + std::move(name), AgentPage::of(AgentPage::Kind::activity), samples::normal,
        [entries](const UsageState& state, const Localization& words) {
            ActivityPageContent content = activityPageContent(state, samples::now(), words);
            if (entries != nullptr) {
                content.entries =
                    std::make_shared<const std::vector<ActivityEntry>>(entries(words));
                content.entryCount = content.entries->size();
            }
            return content;
        },
        size,
        [prepare = std::move(prepare)](AgentMainWindowView& view) {
            view.show();
            settle();
            if (prepare) {
                prepare(view);
            }
        });
}

std::vector<ActivityEntry> noEntries(const Localization& /*words*/) {
    return {};
}

void unfoldEverything(QWidget& page) {
    auto* list = page.findChild<QListView*>();
    for (int row = 0; row < list->model()->rowCount(); ++row) {
        const bool isError = list->model()
                                 ->index(row, 0)
                                 .data(Qt::DisplayRole)
                                 .toString()
                                 .contains(QStringLiteral("API Error"));
        if (isError || row > list->model()->rowCount() - 3) {
            list->setCurrentIndex(list->model()->index(row, 0));
            QKeyEvent unfold(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
            QCoreApplication::sendEvent(list, &unfold);
        }
    }
}

void lookFor(QWidget& page, const QString& words) {
    page.findChild<QLineEdit*>()->setText(words);
}

Scene settingsScene(std::string name, SettingsPageState (*settings)(),
                    QSize size = AgentMainWindowView::firstSize) {
    return pageScene(
        std::move(name), AgentPage::of(AgentPage::Kind::settings), samples::normal,
        [settings](const UsageState& /*shown*/, const Localization& words) {
            return settingsPageContent(settings(), samples::machine(), words);
        },
        size);
}

QImage drawQuestion(const QuestionContent& content, double scale) {
    QWidget over;
    kit::Question* question = kit::Question::ask(&over,
                                                 {.title = qString(content.title),
                                                  .words = qString(content.text),
                                                  .deed = qString(content.deed),
                                                  .cancel = qString(content.cancel)},
                                                 {});
    return drawWhole(*question, scale);
}

SettingsPageContent settingsContent(const std::string& language) {
    return settingsPageContent(samples::settings(), samples::machine(), samples::words(language));
}

QImage drawSettingsQuestion(const std::string& language, double scale) {
    return drawQuestion(settingsContent(language).deleteQuestion, scale);
}

QImage drawStatusLineQuestion(const std::string& language, double scale) {
    return drawQuestion(settingsContent(language).statusLineQuestion, scale);
}

QImage drawKit(const std::string& /*language*/, double scale) {
    KitSheet sheet;
    return drawWhole(sheet, scale);
}

QImage drawAbout(const std::string& language, double scale) {
    AboutWindow window({.open = [](AboutLink) {}, .openURL = [](const std::string&) {}});
    window.setContent(aboutPageContent(samples::words(language)));
    return drawWhole(window, scale);
}

QImage drawLegal(LegalDocument document, bool needsNotice, const std::string& language,
                 double scale) {
    LegalWindow window({.choose = [](LegalDocument) {}, .accept = [] {}});
    window.setContent(legalWindowContent(document, needsNotice, samples::words(language)));
    return drawWhole(window, scale);
}

Scene legalScene(std::string name, LegalDocument document, bool needsNotice) {
    return {"legal-" + std::move(name),
            [document, needsNotice](const std::string& language, double scale) {
                return drawLegal(document, needsNotice, language, scale);
            }};
}

using SetupOf = std::function<SetupAssistantState(const Localization& words)>;

Scene setupScene(std::string name, SetupOf state, QSize size = SetupAssistantView::firstSize) {
    return {"setup-" + std::move(name),
            [state = std::move(state), size](const std::string& language, double scale) {
                const Localization words = samples::words(language);
                SetupAssistantActions actions;
                actions.lookAgain = [] {};
                SetupAssistantView view(std::move(actions));
                view.setContent(setupAssistantContent(state(words), samples::now(), words));
                view.setMinimumSize(size.boundedTo(SetupAssistantView::leastSize));
                view.resize(size);
                return drawWhole(view, scale);
            }};
}

SetupOf setupAt(SetupStep step) {
    return [step](const Localization& words) { return samples::setup(step, words); };
}

QImage drawReport(samples::ReportMoment moment, QSize size, const std::string& language,
                  double scale) {
    const Localization words = samples::words(language);
    const SupportReportState state = samples::report(moment, words);
    const auto nothing = [] {};
    SupportReportView window({.type = [](const std::string&) {},
                              .setIncludeEmails = [](bool) {},
                              .lookFor = [](const std::string&) {},
                              .goToMatch = [](int) {},
                              .copy = nothing,
                              .save = nothing,
                              .mail = nothing,
                              .showFile = nothing});
    window.setMinimumSize(size.boundedTo(SupportReportView::leastSize));
    window.resize(size);
    window.show();
    window.setContent(supportReportContent(state, words));
    if (moment == samples::ReportMoment::mailed) {
        // Somebody points at an address, and has scrolled to where there are some.
        window.text()->goToNext(RemovedKind::address);
        window.text()->setMarked(RemovedKind::address);
    } else if (moment == samples::ReportMoment::saved) {
        window.text()->select(20, 160);
    }
    return drawWhole(window, scale);
}

Scene reportScene(std::string name, samples::ReportMoment moment,
                  QSize size = SupportReportView::firstSize) {
    return {"report-" + std::move(name), [moment, size](const std::string& language, double scale) {
                return drawReport(moment, size, language, scale);
            }};
}

Scene helpScene(std::string name, HelpSection section, std::string query = {},
                QSize size = AgentMainWindowView::firstSize) {
    return pageScene(
        "help-" + std::move(name), AgentPage::of(AgentPage::Kind::help), samples::normal,
        [section, query = std::move(query)](const UsageState&, const Localization& words) {
            return helpPageContent(section, query, words);
        },
        size);
}

/// What 1366 by 768 leaves where everything is at 150 %.
constexpr QSize smallScreen(900, 460);

Scene aboutScene(std::string name, QSize size = AgentMainWindowView::firstSize) {
    return pageScene(
        std::move(name), AgentPage::of(AgentPage::Kind::about), samples::normal,
        [](const UsageState&, const Localization& words) { return aboutPageContent(words); }, size);
}

} // namespace

std::vector<Scene> allScenes() {
    return {
        {"kit", drawKit},
        {"charts", drawChartSheet},
        {"about", drawAbout},
        legalScene("notice", LegalDocument::terms, true),
        legalScene("privacy", LegalDocument::privacy, false),
        reportScene("building", samples::ReportMoment::building),
        reportScene("ready", samples::ReportMoment::ready),
        reportScene("least", samples::ReportMoment::mailed, SupportReportView::leastSize),
        reportScene("wide", samples::ReportMoment::ready, {1600, 1000}),
        reportScene("found", samples::ReportMoment::found),
        reportScene("described", samples::ReportMoment::described),
        reportScene("saved", samples::ReportMoment::saved),
        reportScene("mailed", samples::ReportMoment::mailed),
        reportScene("without-mail", samples::ReportMoment::withoutMail),
        reportScene("not-saved", samples::ReportMoment::notSaved),
        reportScene("clean", samples::ReportMoment::clean),
        reportScene("failed", samples::ReportMoment::failed),
        popoverScene("overview", samples::normal),
        popoverScene("refreshing", samples::refreshing),
        popoverScene("healthy", samples::healthy),
        popoverScene("loading", samples::loading),
        popoverScene("stale", samples::stale),
        popoverScene("overdue", samples::overdue),
        popoverScene("all-failed", samples::allFailed),
        popoverScene("used-up", samples::usedUp),
        popoverScene("incomplete", samples::incomplete),
        popoverScene("failed", samples::failed),
        popoverScene("no-agents", samples::noAgents),
        popoverScene("balances", samples::balances),
        popoverScene("refusing", samples::refusing),
        popoverScene("credited", samples::credited),
        popoverScene("long-texts", samples::longTexts),
        popoverScene("many-agents", samples::manyAgents),
        popoverScene("stored-tab-of-disabled-agent", samples::healthy, "provider:antigravity"),
        popoverScene("agent", samples::normal, "provider:claude"),
        popoverScene("agent-loading", samples::loading, "provider:claude"),
        popoverScene("agent-stale", samples::stale, "provider:codex"),
        popoverScene("agent-used-up", samples::usedUp, "provider:claude"),
        popoverScene("agent-failed", samples::failed, "provider:codex"),
        popoverScene("agent-balances", samples::balances, "provider:claude"),
        popoverScene("agent-refusing", samples::refusing, "provider:codex"),
        popoverScene("agent-long-texts", samples::longTexts, "provider:antigravity"),
        overviewScene("overview", samples::normal),
        overviewScene("overview-least", samples::normal, AgentMainWindowView::leastSize),
        overviewScene("overview-small-screen", samples::normal, smallScreen),
        overviewScene("refreshing", samples::refreshing),
        overviewScene("healthy", samples::healthy),
        overviewScene("loading", samples::loading),
        overviewScene("stale", samples::stale),
        overviewScene("overdue", samples::overdue),
        overviewScene("all-failed", samples::allFailed),
        overviewScene("used-up", samples::usedUp),
        overviewScene("incomplete", samples::incomplete),
        overviewScene("failed", samples::failed),
        overviewScene("refusing", samples::refusing),
        overviewScene("no-agents", samples::noAgents),
        overviewScene("unwritten", samples::unwritten),
        overviewScene("long-texts", samples::longTexts),
        overviewScene("many-agents", samples::manyAgents),

        // activity
        activityScene(""),
        activityScene("-least", {}, AgentMainWindowView::leastSize),
        activityScene("-small-screen", {}, smallScreen),
        activityScene("-wide", {}, {2560, 1400}),
        activityScene("-unfolded", unfoldEverything),
        activityScene("-found", [](QWidget& page) { lookFor(page, QStringLiteral("codex 78")); }),
        activityScene("-not-found", [](QWidget& page) { lookFor(page, QStringLiteral("xyz")); }),
        activityScene("-empty", {}, AgentMainWindowView::firstSize, noEntries),
        activityScene("-loading", {}, AgentMainWindowView::firstSize, nullptr),

        // agent
        agentScene("", samples::inspected),
        agentScene("-day", samples::normal, {.range = ChartRange::day}),
        agentScene("-least", samples::readAlone, {.size = AgentMainWindowView::leastSize}),
        agentScene("-wide", samples::inspected, {.size = {2560, 1400}}),
        agentScene("-small-screen", samples::inspected, {.size = smallScreen}),
        agentScene("-loading", samples::loading, {.knowsFacts = false}),
        agentScene("-first-day", samples::normal,
                   {.range = ChartRange::day, .addHistory = samples::addFirstDay}),
        agentScene("-no-history", samples::normal,
                   {.addHistory = [](UsageHistory&, const UsageState&) {}}),
        agentScene("-stale", samples::stale, {.agent = AgentProviderID::codex()}),
        agentScene("-overdue", samples::overdue, {.agent = AgentProviderID::codex()}),
        agentScene("-used-up", samples::usedUp),
        agentScene("-incomplete", samples::incomplete),
        agentScene("-failed", samples::failed,
                   {.agent = AgentProviderID::codex(), .isInstalled = false}),
        agentScene("-one-window", samples::oneWindow,
                   {.agent = AgentProviderID::codex(), .range = ChartRange::day}),
        agentScene("-refusing", samples::refusing, {.agent = AgentProviderID::codex()}),
        agentScene("-antigravity", samples::normal, {.agent = AgentProviderID::antigravity()}),
        agentScene("-long-texts", samples::longTexts, {.agent = AgentProviderID::antigravity()}),

        // history
        historyScene("", samples::normal, {.readAt = 0.245}),
        historyScene("-day", samples::normal, {.range = ChartRange::day}),
        historyScene("-week", samples::normal,
                     {.agent = AgentProviderID::antigravity(), .range = ChartRange::week}),
        historyScene("-earlier", samples::normal,
                     {.agent = AgentProviderID::codex(), .comparesEarlier = true, .readAt = 0.7}),
        historyScene("-session", samples::normal,
                     {.range = ChartRange::quarter,
                      .shown = {{{AgentProviderID::claude(), "session"}, true},
                                {{AgentProviderID::claude(), "fable-weekly"}, false}}}),
        historyScene("-year", samples::normal, {.range = ChartRange::year}),
        historyScene("-least", samples::normal, {.size = AgentMainWindowView::leastSize}),
        historyScene("-wide", samples::normal, {.size = {2560, 1400}, .readAt = 0.6}),
        historyScene("-small-screen", samples::normal, {.size = smallScreen}),
        historyScene("-first-day", samples::normal,
                     {.range = ChartRange::day, .addHistory = samples::addFirstDay}),
        historyScene("-nothing", samples::loading,
                     {.addHistory = [](UsageHistory&, const UsageState&) {}}),
        historyScene("-stale", samples::stale,
                     {.agent = AgentProviderID::codex(), .range = ChartRange::day}),
        historyScene(
            "-long-texts", samples::longTexts,
            {.agent = AgentProviderID::antigravity(), .exportKey = "history.export.failed"}),
        historyScene("-no-agents", samples::noAgents),

        // settings
        settingsScene("settings", samples::settings),
        settingsScene("settings-least", samples::settings, AgentMainWindowView::leastSize),
        settingsScene("settings-small-screen", samples::settings, smallScreen),
        settingsScene("settings-large", samples::settings, QSize(2560, 1400)),
        settingsScene("settings-whole", samples::settings, QSize(1120, 2150)),
        {"settings-question", drawSettingsQuestion},
        {"settings-status-line-question", drawStatusLineQuestion},
        settingsScene("settings-checking", samples::uncheckedSettings),
        settingsScene("settings-unready", samples::unreadySettings, QSize(1120, 2120)),
        settingsScene("settings-unready-least", samples::unreadySettings, QSize(1040, 2200)),

        // setup
        setupScene("welcome", setupAt(SetupStep::welcome)),
        setupScene("agents", setupAt(SetupStep::agents)),
        setupScene("tools", setupAt(SetupStep::tools)),
        setupScene("tools-least", samples::failedSetup, SetupAssistantView::leastSize),
        // What 1366 by 768 leaves where type is at 150 %.
        setupScene("tools-small-screen", samples::runningSetup, QSize(780, 440)),
        setupScene("checking", samples::checkingSetup),
        setupScene("running", samples::runningSetup),
        setupScene("failed", samples::failedSetup),
        setupScene("closed", samples::closedSetup, QSize(820, 680)),
        setupScene("without-terminal", samples::setupWithoutTerminal),
        setupScene("without-shell", samples::setupWithoutShell),
        setupScene("nobody", samples::setupOfNobody),
        setupScene("left", setupAt(SetupStep::finish)),
        setupScene("finished", samples::finishedSetup),
        // help
        helpScene("reading", HelpSection::reading),
        helpScene("marks", HelpSection::marks),
        helpScene("failures", HelpSection::failures),
        helpScene("failures-least", HelpSection::failures, {}, AgentMainWindowView::leastSize),
        helpScene("failures-small-screen", HelpSection::failures, {}, smallScreen),
        helpScene("keyboard", HelpSection::keyboard),
        helpScene("support", HelpSection::support),
        helpScene("search", HelpSection::reading, "claude token"),
        helpScene("nothing-found", HelpSection::reading, "zzz"),
        // about
        aboutScene("about"),
        aboutScene("about-least", AgentMainWindowView::leastSize),
        aboutScene("about-small-screen", smallScreen),
    };
}

} // namespace vellmark
