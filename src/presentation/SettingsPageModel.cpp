#include "presentation/SettingsPageModel.h"

#include "store/AgentSettings.h"
#include "text/SystemErrorText.h"

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

struct SettingsPageModel::Findings {
    std::vector<AgentFacts> facts;
    std::uintmax_t dataSize = 0;
};

SettingsPageModel::SettingsPageModel(Sources sources)
    : sources_(std::move(sources)),
      catalog_(sources_.preferences, sources_.machine, sources_.launchAtLogin) {}

SettingsPageModel::~SettingsPageModel() {
    if (thread_.joinable()) {
        thread_.join();
    }
}

SettingsPageState SettingsPageModel::state() const {
    const AgentSettings agents(sources_.preferences, providerRegistry());
    SettingsPageState state;
    for (const SettingItem& item : catalog_.items()) {
        state.settings.push_back({item, catalog_.value(item)});
    }
    state.launchAtLogin = sources_.launchAtLogin.state();
    state.order = agents.order();
    state.enabled = agents.enabled();
    state.agents = facts_;
    state.isChecking = isLooking_;
    state.systemLanguage = sources_.systemLanguage;
    state.dataFolder = sources_.machine.abbreviated(sources_.machine.supportDirectory());
    state.dataSize = dataSize_;
    state.hasHistory = sources_.hasHistory();
    state.trouble = trouble_;
    return state;
}

SettingsPageContent SettingsPageModel::content() const {
    return settingsPageContent(state(), sources_.machine, sources_.words());
}

SettingsPageActions SettingsPageModel::actions() {
    return {.enableAgent = [this](const AgentProviderID& id,
                                  bool isEnabled) { setEnabled(id, isEnabled); },
            .orderAgents =
                [this](const std::vector<AgentProviderID>& order) {
                    AgentSettings(sources_.preferences, providerRegistry()).setOrder(order);
                    finish();
                },
            .checkAgents = [this] { look(); },
            .chooseProgram =
                [this](const AgentProviderID& id, const std::string& path) {
                    for (const SettingItem& item : catalog_.items()) {
                        if (item.kind == SettingItem::Kind::executable && item.agent == id) {
                            change(item.name, path.empty() ? "automatic" : path);
                        }
                    }
                    look();
                },
            .change = [this](const std::string& name,
                             const std::string& value) { change(name, value); },
            .press = [this](const std::string& name) { press(name); }};
}

void SettingsPageModel::change(const std::string& name, const std::string& value) {
    if (const SettingItem* item = catalog_.find(name)) {
        finish(catalog_.set(*item, value));
    }
}

void SettingsPageModel::setEnabled(const AgentProviderID& id, bool isEnabled) {
    AgentSettings(sources_.preferences, providerRegistry()).setEnabled(id, isEnabled);
    finish();
}

void SettingsPageModel::press(const std::string& name) {
    if (name == settingsRow::dataFolder) {
        sources_.showFolder(sources_.machine.supportDirectory());
    } else if (name == settingsRow::history) {
        deleteHistory();
    } else if (name == settingsRow::reset) {
        catalog_.resetAll();
        finish();
        look();
    } else if (const SettingItem* item = catalog_.find(name);
               item != nullptr && item->kind == SettingItem::Kind::loginItem) {
        sources_.launchAtLogin.openSystemSettings();
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
        look();
    });
}

void SettingsPageModel::finish(const std::optional<SettingRefusal>& refusal) {
    sources_.takeSettings();
    trouble_.clear();
    if (refusal) {
        trouble_ = refusal->text(sources_.words());
    } else if (const auto error = sources_.preferences.writeError()) {
        trouble_ = sources_.words().format("settings.notSaved",
                                           {systemErrorText(*error, sources_.words())});
    }
    sources_.changed();
}

void SettingsPageModel::look() {
    if (isLooking_) {
        isToLookAgain_ = true;
        return;
    }
    isLooking_ = true;
    if (thread_.joinable()) {
        thread_.join();
    }
    thread_ = std::thread([this, alive = std::weak_ptr(isAlive_)] {
        // The destructor waits for this thread: what it uses of the model is there.
        Findings findings{sources_.gatherFacts(sources_.machine),
                          sizeOf(sources_.machine.supportDirectory())};
        sources_.executor.post([this, alive, findings = std::move(findings)]() mutable {
            if (!alive.expired()) {
                arrived(std::move(findings));
            }
        });
    });
    sources_.changed();
}

void SettingsPageModel::arrived(Findings findings) {
    facts_ = std::move(findings.facts);
    dataSize_ = findings.dataSize;
    isLooking_ = false;
    if (std::exchange(isToLookAgain_, false)) {
        look();
    } else {
        sources_.changed();
    }
}

} // namespace vellmark
