#include "presentation/SettingsPageModel.h"

#include "setup/SetupScript.h"
#include "store/AppSettings.h"
#include "text/SystemErrorText.h"
#include "text/TerminalText.h"

#include <exception>
#include <system_error>
#include <utility>

namespace vellmark {
namespace {

/// What the files in `folder` hold; a file that comes or goes meanwhile may or may not count.
std::uintmax_t sizeOf(const std::filesystem::path& folder) {
    namespace fs = std::filesystem;
    std::uintmax_t bytes = 0;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unreadable;
        if (entry->is_regular_file(unreadable)) {
            const std::uintmax_t size = entry->file_size(unreadable);
            bytes += unreadable ? 0 : size;
        }
    }
    return bytes;
}

} // namespace

SettingsPageModel::SettingsPageModel(Sources sources)
    : sources_(std::move(sources)),
      catalog_(sources_.preferences, sources_.machine, sources_.launchAtLogin),
      agents_(sources_.preferences, providerRegistry()) {}

SettingsPageState SettingsPageModel::state() const {
    SettingsPageState state;
    for (const SettingItem& item : catalog_.items()) {
        state.settings.push_back({item, catalog_.value(item)});
    }
    state.launchAtLogin = sources_.launchAtLogin.state();
    state.noticeDelivery = sources_.noticeDelivery();
    state.order = agents_.order();
    state.enabled = agents_.enabled();
    for (const AgentProviderID& id : state.order) {
        if (const AgentFacts* facts = sources_.factsOf(id)) {
            state.agents.push_back(*facts);
        }
        state.isChecking = state.isChecking || sources_.isAsking(id);
    }
    state.systemLanguage = sources_.systemLanguage;
    state.dataFolder = sources_.machine.abbreviated(sources_.machine.supportDirectory());
    state.dataSize = dataSize_;
    state.hasHistory = sources_.hasHistory();
    if (statusLine_) {
        state.statusLine = {.isThere = hasStatusLine_,
                            .file = sources_.machine.abbreviated(statusLine_->file),
                            .change = changedLines(statusLine_->before, statusLine_->after)};
    }
    state.commandTool = commandTool();
    state.trouble = trouble_.empty() ? unsaved() : trouble_;
    return state;
}

SettingsPageContent SettingsPageModel::content() const {
    return settingsPageContent(state(), sources_.machine, sources_.words());
}

SettingsPageActions SettingsPageModel::actions() {
    return {.appear = [this] { look(false); },
            .enableAgent =
                [this](const AgentProviderID& id, bool isEnabled) {
                    agents_.setEnabled(id, isEnabled);
                    finish();
                },
            .orderAgents =
                [this](const std::vector<AgentProviderID>& order) {
                    agents_.setOrder(order);
                    finish();
                },
            .checkAgents = [this] { look(true); },
            .chooseProgram = [this](const AgentProviderID& id,
                                    const std::string& path) { chooseProgram(id, path); },
            .change = [this](const std::string& name,
                             const std::string& value) { change(name, value); },
            .press = [this](const std::string& name) { press(name); }};
}

/// The folder holds a handful of files: they are measured sooner than a thread begins.
void SettingsPageModel::look(bool anew) {
    dataSize_ = sizeOf(sources_.machine.supportDirectory());
    lookAtStatusLine();
    sources_.lookForNoticeService();
    for (const AgentProviderID& id : agents_.order()) {
        sources_.ask(id, anew);
    }
    sources_.changed();
}

void SettingsPageModel::change(const std::string& name, const std::string& value) {
    if (name == settingsRow::commandLineTool) {
        changeCommandTool(value == SettingSwitch().onValue);
    } else if (const SettingItem* item = catalog_.find(name)) {
        finish(catalog_.set(*item, value));
    }
}

void SettingsPageModel::chooseProgram(const AgentProviderID& id, const std::string& path) {
    for (const SettingItem& item : catalog_.items()) {
        if (item.kind == SettingItem::Kind::executable && item.agent == id) {
            change(item.name, path.empty() ? "automatic" : path);
            sources_.ask(id, true);
        }
    }
}

void SettingsPageModel::press(const std::string& name) {
    if (name == settingsRow::dataFolder) {
        sources_.showFolder(sources_.machine.supportDirectory());
    } else if (name == settingsRow::history) {
        deleteHistory();
    } else if (name == settingsRow::statusLine) {
        changeStatusLine();
    } else if (name == settingsRow::commandLineTool) {
        if (const auto tool = commandTool()) {
            sources_.copyText(tool->command);
        }
    } else if (name == settingsRow::reset) {
        catalog_.resetAll();
        finish();
        look(true);
    } else if (const SettingItem* item = catalog_.find(name);
               item != nullptr && item->kind == SettingItem::Kind::loginItem) {
        sources_.launchAtLogin.openSystemSettings();
    } else if (item != nullptr && item->preferenceKey == setting::notices.key) {
        sources_.allowNotices();
    }
}

void SettingsPageModel::allowWantedNotices() {
    if (valueOf(sources_.preferences, setting::notices) == Switch::on &&
        sources_.noticeDelivery() == NoticeDelivery::unasked) {
        sources_.allowNotices();
    }
}

void SettingsPageModel::deleteHistory() {
    sources_.deleteHistory([this, alive = std::weak_ptr(isAlive_)](std::error_code error) {
        if (alive.expired()) {
            return;
        }
        trouble_ = error ? sources_.words().format("settings.history.notDeleted",
                                                   {systemErrorText(error, sources_.words())})
                         : std::string();
        look(false);
    });
}

/// Claude Code's settings are there once it has been used.
void SettingsPageModel::lookAtStatusLine() {
    using Wish = ClaudeSettingsChange::Wish;
    const std::filesystem::path& program = sources_.terminalProgram;
    const std::filesystem::path settings = claudeSettingsFile(sources_.machine);
    std::error_code ignored;
    statusLine_.reset();
    if (!std::filesystem::exists(program, ignored) ||
        !std::filesystem::exists(settings.parent_path(), ignored)) {
        return;
    }
    try {
        statusLine_ = ClaudeSettingsChange::of(sources_.machine, Wish::remove, program);
        hasStatusLine_ = statusLine_.has_value();
        if (!hasStatusLine_) {
            statusLine_ = ClaudeSettingsChange::of(sources_.machine, Wish::install, program);
        }
    } catch (const std::exception&) {
        // What is not understood is left alone, and nothing is offered.
    }
}

void SettingsPageModel::changeStatusLine() {
    if (!statusLine_) {
        return;
    }
    const Localization& words = sources_.words();
    const std::string file = sources_.machine.abbreviated(statusLine_->file);
    const auto outcome = statusLine_->make();
    trouble_.clear();
    if (outcome.hasChangedMeanwhile) {
        trouble_ = words.format("cli.statusline.changedMeanwhile", {file});
    } else if (outcome.error) {
        trouble_ = words.format("cli.statusline.unwritable",
                                {file, systemErrorText(outcome.error, words)});
    }
    look(false);
}

/// Asked anew each time: an administrator may have typed the command meanwhile.
std::optional<SettingsPageState::CommandTool> SettingsPageModel::commandTool() const {
    using State = CommandLineTool::State;
    const auto& tool = sources_.commandLineTool;
    if (!tool) {
        return std::nullopt;
    }
    SettingsPageState::CommandTool shown{.state = tool->state(), .link = tool->link()};
    if (!tool->mayChange()) {
        const std::string link = shellQuoted(tool->link().string());
        const std::string removal = "sudo rm " + link;
        const std::string making =
            "sudo mkdir -p " + shellQuoted(tool->link().parent_path().string()) +
            " && sudo ln -s " + shellQuoted(tool->program().string()) + " " + link;
        shown.command = shown.state == State::on           ? removal
                        : shown.state == State::leftBehind ? removal + " && " + making
                                                           : making;
    }
    return shown;
}

void SettingsPageModel::changeCommandTool(bool isOn) {
    const auto& tool = sources_.commandLineTool;
    if (!tool) {
        return;
    }
    trouble_.clear();
    if (const std::error_code error = tool->setOn(isOn)) {
        const Localization& words = sources_.words();
        trouble_ = words.format("settings.commandLineTool.failed",
                                {singleLine(tool->link().string()), systemErrorText(error, words)});
    }
    sources_.changed();
}

void SettingsPageModel::finish(const std::optional<SettingRefusal>& refusal) {
    sources_.takeSettings();
    trouble_.clear();
    if (refusal) {
        trouble_ = refusal->text(sources_.words());
    }
    sources_.changed();
}

std::string SettingsPageModel::unsaved() const {
    const auto error = sources_.preferences.writeError();
    return error ? sources_.words().format("settings.notSaved",
                                           {systemErrorText(*error, sources_.words())})
                 : std::string();
}

} // namespace vellmark
