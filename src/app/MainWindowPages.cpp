#include "app/MainWindowPages.h"

#include "platform/CommandLineTool.h"
#include "platform/ProgramPath.h"
#include "presentation/MainMenuContent.h"
#include "ui/Conversions.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QGuiApplication>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <string_view>
#include <utility>

namespace vellmark {

namespace {

constexpr std::string_view agentPageRangeKey = "AgentPageRange";

void openURL(const std::string& url) {
    QDesktopServices::openUrl(QUrl(qString(url)));
}

void showFolder(const std::filesystem::path& folder) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(qString(folder.string())));
}

void copyText(const std::string& text) {
    QGuiApplication::clipboard()->setText(qString(text));
}

/// Where the history is to be saved, its kind by the name's end; empty when nowhere.
QString askWhereTo(const std::string& name, const Localization& words) {
    const QStringList kinds{qString(words.text("history.export.csv")) + " (*.csv)",
                            qString(words.text("history.export.json")) + " (*.json)",
                            qString(words.text("history.export.picture")) + " (*.png)"};
    QFileDialog dialog(QApplication::activeWindow(), {},
                       QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                       kinds.join(QStringLiteral(";;")));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    const auto offer = [&](const QString& kind) {
        // "Table (*.csv)" → "csv". The dialog itself then asks before it replaces a file.
        const QString end = kind.section(QStringLiteral("*."), 1).chopped(1);
        dialog.setDefaultSuffix(end);
        dialog.selectFile(qString(name) + '.' + end);
    };
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, offer);
    offer(kinds.first());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return {};
    }
    return dialog.selectedFiles().first();
}

} // namespace

MainWindowPages::MainWindowPages(Sources sources)
    : sources_(std::move(sources)), facts_({.machine = sources_.machine}, sources_.executor,
                                           [this] {
                                               // Asked for while the page is being shown.
                                               sources_.executor.post([this] {
                                                   sources_.update();
                                                   if (onFactsChange) {
                                                       onFactsChange();
                                                   }
                                               });
                                           }),
      history_(sources_.store, sources_.preferences),
      activity_(std::make_shared<ActivityFeed>(sources_.store, sources_.update)),
      settings_(settingsSources()) {}

MainWindowActions MainWindowPages::actions() {
    MainWindowActions actions;
    actions.program = sources_.actions;
    actions.openMenu = sources_.openMenu;
    // provider
    actions.agent = agentActions();

    // history
    actions.history = historyActions();

    // activity
    actions.activity = {.save = sources_.saveActivity, .rest = [weak = std::weak_ptr(activity_)] {
                            if (const auto feed = weak.lock()) {
                                feed->rest();
                            }
                        }};
    // settings
    actions.settings = settings_.actions();

    // help
    actions.help = {.choose =
                        [this](HelpSection section) {
                            showHelp(section);
                            sources_.update();
                        },
                    .search =
                        [this](const std::string& query) {
                            helpQuery_ = query;
                            sources_.update();
                        },
                    .copy = copyText,
                    .open = [this](HelpLink link) { openHelpLink(link); }};
    // about
    actions.about = {.open = [this](AboutLink link) { openAboutLink(link); }, .openURL = openURL};
    return actions;
}

SettingsPageModel::Sources MainWindowPages::settingsSources() {
    const Machine& machine = sources_.machine;
    return {.preferences = sources_.preferences,
            .machine = machine,
            .launchAtLogin = sources_.launchAtLogin,
            .words = [this]() -> const Localization& { return sources_.language.words(); },
            .systemLanguage =
                localizationFor(UserLocale::of(machine.environment), {}).languageCode(),
            .factsOf = [this](const AgentProviderID& id) { return facts_.of(id); },
            .isAsking = [this](const AgentProviderID& id) { return facts_.isAsking(id); },
            .ask = [this](const AgentProviderID& id,
                          bool anew) { anew ? facts_.recheck(id) : facts_.need(id); },
            // A row is not rebuilt while it still tells of its click.
            .changed = [this] { sources_.executor.post(sources_.update); },
            .takeSettings = sources_.takeSettings,
            .hasHistory = [this] { return sources_.store.history().sampleCount() > 0; },
            .deleteHistory =
                [this](std::function<void(std::error_code)> done) {
                    sources_.store.deleteHistory(std::move(done));
                },
            .showFolder = showFolder,
            .noticeDelivery = [this] { return sources_.notices.delivery(); },
            .lookForNoticeService = [this] { sources_.notices.lookForService(); },
            .allowNotices = [this] { sources_.notices.allow(); },
            .terminalProgram = terminalProgram(programPath()),
            .commandLineTool = bundledCommandLineTool(machine, programPath()),
            .copyText = copyText};
}

void MainWindowPages::showHelp(HelpSection section) {
    helpSection_ = section;
    helpQuery_.clear();
}

void MainWindowPages::openHelpLink(HelpLink link) {
    switch (link) {
    case HelpLink::supportReport:
        return sources_.actions.showSupportReport();
    case HelpLink::supportPage:
        return openURL(supportURL(sources_.language.words()));
    case HelpLink::terms:
        return sources_.actions.showLegal(LegalDocument::terms);
    case HelpLink::privacy:
        return sources_.actions.showLegal(LegalDocument::privacy);
    case HelpLink::none:
        return;
    }
}

void MainWindowPages::openAboutLink(AboutLink link) {
    switch (link) {
    case AboutLink::website:
        return openURL(websiteURL(sources_.language.words()));
    case AboutLink::supportPage:
        return openURL(supportURL(sources_.language.words()));
    case AboutLink::terms:
        return sources_.actions.showLegal(LegalDocument::terms);
    case AboutLink::privacy:
        return sources_.actions.showLegal(LegalDocument::privacy);
    }
}

MainWindowContent MainWindowPages::content(const AgentPage& selection, Instant now) const {
    const UsageState& state = sources_.store.state();
    MainWindowContent content;
    content.sidebar = sidebarItems(state, now, sources_.language.words());
    content.sidebarName = sources_.language.words().text("sidebar.accessibility");
    content.page = shownPage(selection, state);
    content.content = contentOf(content.page, now);
    if (sources_.openMenu) {
        content.menuButton = menuButton(sources_.language.words());
    }
    return content;
}

PageContent MainWindowPages::contentOf(const AgentPage& page, Instant now) const {
    using Kind = AgentPage::Kind;
    const UsageState& state = sources_.store.state();
    const Localization& words = sources_.language.words();
    switch (page.kind) {
    case Kind::overview:
        return overviewPageContent(state, now, words);
    case Kind::provider:
        return agentPage(page.providerID, now);
    case Kind::history:
        return history_.content(now, words);
    case Kind::activity:
        return activityContent(now);
    case Kind::settings:
        return settings_.content();
    case Kind::help:
        return helpPageContent(helpSection_, helpQuery_, words);
    case Kind::about:
        return aboutPageContent(words);
    }
    return PageHeadContent();
}

// history

HistoryPageActions MainWindowPages::historyActions() {
    return {.chooseAgent =
                [this](const AgentProviderID& agent) {
                    history_.chooseAgent(agent);
                    sources_.update();
                },
            .chooseRange =
                [this](ChartRange range) {
                    history_.chooseRange(range);
                    sources_.update();
                },
            .toggle =
                [this](const std::string& windowID) {
                    history_.toggle(windowID);
                    sources_.update();
                },
            .save = [this](const std::function<std::string()>& picture) { saveHistory(picture); },
            .leave = [this] { history_.leave(); }};
}

void MainWindowPages::saveHistory(const std::function<std::string()>& picture) {
    const Localization& words = sources_.language.words();
    const Instant now = ReferenceClock::now();
    const QString path = askWhereTo(history_.exportName(now, words.timeZone()), words);
    if (path.isEmpty()) {
        return;
    }
    const HistoryExportFormat format = historyExportFormat(path.toStdString());
    const std::string data =
        format == HistoryExportFormat::png ? picture() : history_.exportText(format, now);
    QSaveFile file(path);
    const auto size = static_cast<qint64>(data.size());
    const bool isSaved =
        file.open(QIODevice::WriteOnly) && file.write(data.data(), size) == size && file.commit();
    history_.setExportNote(
        isSaved ? words.format("history.export.done", {path.toStdString()})
                : words.format("history.export.failed",
                               {path.toStdString(), file.errorString().toStdString()}),
        !isSaved);
    sources_.update();
}

// provider

PageContent MainWindowPages::agentPage(const AgentProviderID& id, Instant now) const {
    const UsageState& state = sources_.store.state();
    const auto snapshot = std::ranges::find(state.snapshots, id, &AgentUsageSnapshot::id);
    const auto stored = sources_.preferences.string(agentPageRangeKey);
    // Only an agent that is shown has a page: see shownPage().
    return agentPageContent(*snapshot,
                            {.state = state,
                             .history = sources_.store.history(),
                             .machine = sources_.machine,
                             .facts = facts_.of(id),
                             .isAskingForFacts = facts_.isAsking(id),
                             .range = agentPageRange(stored.value_or(std::string()))},
                            now, sources_.language.words());
}

AgentPageActions MainWindowPages::agentActions() {
    AgentUsageStore& store = sources_.store;
    return {
        .shown = [this](const AgentProviderID& id) { facts_.need(id); },
        .refresh =
            [&store](const AgentProviderID& id) { store.refresh(RefreshTrigger::manual, {id}); },
        .recheck =
            [this, &store](const AgentProviderID& id) {
                facts_.recheck(id);
                store.refresh(RefreshTrigger::manual, {id});
            },
        .setRange =
            [this](ChartRange range) {
                sources_.preferences.setString(agentPageRangeKey, std::string(storedText(range)));
                sources_.update();
            },
        .setOrder =
            [&store](const std::vector<AgentProviderID>& order) { store.setProviderOrder(order); },
        .switchOff = [&store](const AgentProviderID& id) { store.setEnabled(id, false); },
    };
}

// activity

ActivityPageContent MainWindowPages::activityContent(Instant now) const {
    ActivityPageContent content =
        activityPageContent(sources_.store.state(), now, sources_.language.words());
    activity_->fill(content);
    return content;
}

} // namespace vellmark
