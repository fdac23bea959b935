#pragma once

#include "presentation/SettingsPageContent.h"
#include "store/AgentSettings.h"

#include <functional>
#include <memory>
#include <string>
#include <system_error>

namespace vellmark {

/// What stands behind the settings page: the settings and their changes, and what is known of the
/// agents' programs and of the program's data. Main thread.
///
/// A change is kept at once; one that is refused, or that is not on disk, is told until the next.
class SettingsPageModel {
public:
    struct Sources {
        Preferences& preferences;
        const Machine& machine;
        LaunchAtLoginController& launchAtLogin;
        std::function<const Localization&()> words;
        std::string systemLanguage;
        /// Null as long as nothing is known.
        std::function<const AgentFacts*(const AgentProviderID&)> factsOf;
        std::function<bool(const AgentProviderID&)> isAsking;
        /// Asks an agent's program, unless that was done lately; `anew` in any case.
        std::function<void(const AgentProviderID&, bool anew)> ask;
        /// What the page shows has changed.
        std::function<void()> changed;
        /// The program takes over what the preferences say now.
        std::function<void()> takeSettings;
        std::function<bool()> hasHistory;
        /// `done` is called with the reason where it did not work.
        std::function<void(std::function<void(std::error_code)> done)> deleteHistory;
        std::function<void(const std::filesystem::path& folder)> showFolder;
        std::function<NoticeDelivery()> noticeDelivery = [] { return NoticeDelivery::unknown; };
        /// Looks who shows notices.
        std::function<void()> lookForNoticeService = [] {};
        /// Leads to where notices are allowed, or looks again who shows them.
        std::function<void()> allowNotices = [] {};
        /// `vellmark`, for Claude Code to run; without it no status line is offered.
        std::filesystem::path terminalProgram = {};
        /// Absent where a package brings the command.
        std::optional<CommandLineTool> commandLineTool = {};
        std::function<void(const std::string& text)> copyText = [](const std::string&) {};
    };
    explicit SettingsPageModel(Sources sources);
    SettingsPageModel(const SettingsPageModel&) = delete;
    SettingsPageModel& operator=(const SettingsPageModel&) = delete;

    SettingsPageContent content() const;
    /// Valid as long as this.
    SettingsPageActions actions();
    /// Where the system asks the user before the first notice, it asks now, if there is to be one.
    void allowWantedNotices();

private:
    SettingsPageState state() const;
    void look(bool anew);
    void change(const std::string& name, const std::string& value);
    void chooseProgram(const AgentProviderID& id, const std::string& path);
    void press(const std::string& name);
    void deleteHistory();
    void lookAtStatusLine();
    void changeStatusLine();
    std::optional<SettingsPageState::CommandTool> commandTool() const;
    void changeCommandTool(bool isOn);
    /// Takes the last change over, tells why it does not hold, if it does not, and shows what does.
    void finish(const std::optional<SettingRefusal>& refusal = std::nullopt);
    /// Why changes are not on disk; empty when they are.
    std::string unsaved() const;

    Sources sources_;
    SettingsCatalog catalog_;
    AgentSettings agents_;
    /// Why what was asked for last was not done; may be empty.
    std::string trouble_;
    std::optional<std::uintmax_t> dataSize_;
    /// What the user was shown of Claude Code's settings; absent when there is nothing to change.
    std::optional<ClaudeSettingsChange> statusLine_;
    bool hasStatusLine_ = false;
    /// Goes away with the model, so that an answer that comes later is dropped.
    std::shared_ptr<int> isAlive_ = std::make_shared<int>();
};

} // namespace vellmark
