#include "app/SetupAssistantWindowController.h"

#include "setup/SetupTraces.h"
#include "setup/TerminalWindow.h"
#include "ui/Conversions.h"
#include "ui/setup/SetupAssistantView.h"
#include "ui/window/TitleBar.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace vellmark {

SetupAssistantWindowController::SetupAssistantWindowController(Sources sources)
    : sources_(std::move(sources)), model_(modelSources()),
      window_({.identifier = "setup",
               .autosaveName = "VellmarkSetupWindow",
               .make = [this] { return makeWindow(); },
               .title =
                   [this] { return qString(sources_.language.words().text("setup.window.title")); },
               .onVisibilityChange = [this] { visibilityChanged(); }},
              sources_.presence, sources_.preferences) {
    TerminalWindow::removeAbandoned(sources_.machine);
    sources_.pages.onFactsChange = [this] { model_.factsChanged(); };
}

SetupAssistantModel::Sources SetupAssistantWindowController::modelSources() {
    AgentFactsCache& facts = sources_.pages.facts();
    return {
        .preferences = sources_.preferences,
        .executor = sources_.executor,
        .settings = sources_.pages.settings(),
        .words = [this]() -> const Localization& { return sources_.language.words(); },
        .factsOf = [&facts](const AgentProviderID& id) { return facts.of(id); },
        .isAsking = [&facts](const AgentProviderID& id) { return facts.isAsking(id); },
        .ask = [&facts](const AgentProviderID& id,
                        bool anew) { anew ? facts.recheck(id) : facts.need(id); },
        .isDeniedByReading =
            [this](const AgentProviderID& id) {
                const auto& snapshots = sources_.store.state().snapshots;
                const auto found = std::ranges::find(snapshots, id, &AgentUsageSnapshot::id);
                return found != snapshots.end() && found->error &&
                       wayOutOf(id, found->error->kind()) == WayOut::logIn;
            },
        .traces =
            [this](const ProviderDescriptor& agent) {
                return setupTraces(sources_.machine, agent);
            },
        .means = [this] { return TerminalWindow::means(sources_.machine); },
        .hasHomebrew = [this] { return hasHomebrew(sources_.machine); },
        .openTerminal =
            [this](const std::string& script) {
                return TerminalWindow::open(
                    sources_.machine, script,
                    {.close = sources_.language.words().text("setup.script.close")},
                    ReferenceClock::now());
            },
        .readAgent =
            [this](const AgentProviderID& id) {
                sources_.store.refresh(RefreshTrigger::manual, {id});
            },
        .refresh = [this] { sources_.store.refresh(RefreshTrigger::manual); },
        .log = [this](ActivityEntry entry) { sources_.store.logActivity(std::move(entry)); },
        .openURL = [](const std::string& url) { QDesktopServices::openUrl(QUrl(qString(url))); },
        .copy =
            [](const std::string& text) { QGuiApplication::clipboard()->setText(qString(text)); },
        .changed = [this] { updateSoon(); },
        .closeWindow =
            [this] {
                if (QWidget* window = window_.window()) {
                    window->close();
                }
            }};
}

void SetupAssistantWindowController::show(const std::optional<AgentProviderID>& agent) {
    model_.begin(agent);
    window_.show();
    update();
}

std::unique_ptr<QWidget> SetupAssistantWindowController::makeWindow() {
    auto window = std::make_unique<SetupAssistantView>(model_.actions());
    window->setContent(model_.content());
    if (const int buttonsHeight = reachUnderTitleBar(*window)) {
        window->setTopInset(buttonsHeight);
    }
    sources_.attachMenu(*window);
    return window;
}

void SetupAssistantWindowController::visibilityChanged() {
    if (!window_.isVisible()) {
        model_.closed();
        sources_.onClose();
    }
}

void SetupAssistantWindowController::retitle() {
    window_.retitle();
    update();
}

/// Several changes come together, and what is shown is not changed below a click.
void SetupAssistantWindowController::updateSoon() {
    if (!std::exchange(isUpdatePosted_, true)) {
        sources_.executor.post([this] {
            isUpdatePosted_ = false;
            update();
        });
    }
}

void SetupAssistantWindowController::update() {
    if (auto* view = dynamic_cast<SetupAssistantView*>(window_.window()); view && isVisible()) {
        view->setContent(model_.content());
    }
}

} // namespace vellmark
