#pragma once

#include "presentation/SettingsPageContent.h"
#include "store/MainExecutor.h"

#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <thread>

namespace vellmark {

/// What stands behind the settings page: the settings and their changes, and what is known of the
/// agents' programs and of the program's data, looked for on a thread of its own. Main thread.
///
/// A change is kept at once; one that is refused, or that is not on disk, is told until the next.
class SettingsPageModel {
public:
    struct Sources {
        Preferences& preferences;
        Machine machine;
        LaunchAtLoginController& launchAtLogin;
        MainExecutor& executor;
        std::function<const Localization&()> words;
        std::string systemLanguage;
        /// What the page shows has changed.
        std::function<void()> changed;
        /// The program takes over what the preferences say now.
        std::function<void()> takeSettings;
        std::function<bool()> hasHistory;
        /// `done` is called with the reason where it did not work.
        std::function<void(std::function<void(std::error_code)> done)> deleteHistory;
        std::function<void(const std::filesystem::path& folder)> showFolder;
        /// Asks the agents' programs; blocks.
        std::function<std::vector<AgentFacts>(const Machine&)> gatherFacts =
            [](const Machine& on) { return gatherAgentFacts(on); };
    };
    explicit SettingsPageModel(Sources sources);
    /// Waits for the look that is under way; whoever cannot wait ends the children first.
    ~SettingsPageModel();
    SettingsPageModel(const SettingsPageModel&) = delete;
    SettingsPageModel& operator=(const SettingsPageModel&) = delete;

    SettingsPageContent content() const;
    /// Valid as long as this.
    SettingsPageActions actions();

private:
    struct Findings;

    SettingsPageState state() const;
    void change(const std::string& name, const std::string& value);
    void setEnabled(const AgentProviderID& id, bool isEnabled);
    void press(const std::string& name);
    void deleteHistory();
    /// Takes the last change over, tells why it does not hold, if it does not, and shows what does.
    void finish(const std::optional<SettingRefusal>& refusal = std::nullopt);
    void look();
    void arrived(Findings findings);

    Sources sources_;
    SettingsCatalog catalog_;
    std::string trouble_;
    std::vector<AgentFacts> facts_;
    std::optional<std::uintmax_t> dataSize_;
    std::thread thread_;
    bool isLooking_ = false;
    /// Something was changed that the look under way may have missed.
    bool isToLookAgain_ = false;
    /// Goes away with the model, so that what arrives later is dropped.
    std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
};

} // namespace vellmark
