#pragma once

#include "model/AgentProviderID.h"
#include "platform/CommandLineTool.h"
#include "presentation/LaunchAtLoginController.h"
#include "presentation/NoticeSettings.h"
#include "presentation/PageHeadContent.h"
#include "presentation/SettingsCatalog.h"
#include "probes/AgentFacts.h"
#include "setup/ClaudeStatusLine.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vellmark {

/// The rows that are no settings, by name.
namespace settingsRow {
inline constexpr std::string_view dataFolder = "data-folder";
inline constexpr std::string_view history = "history";
inline constexpr std::string_view statusLine = "status-line";
inline constexpr std::string_view commandLineTool = "command-line-tool";
inline constexpr std::string_view reset = "reset";
} // namespace settingsRow

struct SettingSwitch {
    bool isOn = false;
    bool isEnabled = true;
    /// As the setting keeps them.
    std::string onValue = "on";
    std::string offValue = "off";
    bool operator==(const SettingSwitch&) const = default;
};

struct SettingChoices {
    enum class Form {
        sideBySide,
        popUp,
    };
    struct Choice {
        /// As the setting keeps it.
        std::string value;
        std::string title;
        bool operator==(const Choice&) const = default;
    };
    std::vector<Choice> choices;
    /// The value that holds.
    std::string current;
    Form form = Form::sideBySide;
    bool operator==(const SettingChoices&) const = default;
};

struct SettingRowContent {
    /// The setting's, or one of `settingsRow`.
    std::string name;
    std::string label;
    /// May be empty.
    std::string explanation;
    /// Before the control; without a title there is none.
    ControlContent button;
    std::variant<std::monostate, SettingSwitch, SettingChoices> control;
    bool operator==(const SettingRowContent&) const = default;
};

struct SettingsSectionContent {
    std::string heading;
    std::vector<SettingRowContent> rows;
    /// Under the rows; may be empty.
    std::string hint;
    bool operator==(const SettingsSectionContent&) const = default;
};

struct AgentSettingContent {
    AgentProviderID id;
    std::string name;
    /// Version and path of its program, or what to do to get one.
    std::string detail;
    /// Whether somebody is logged in; may be empty.
    std::string status;
    /// What there is to install or to log in to; without a title nothing.
    ControlContent wayOut;
    bool isEnabled = true;
    /// For screen readers.
    std::string switchName;
    std::string handleName;
    std::string place;
    bool operator==(const AgentSettingContent&) const = default;
};

struct AgentProgramContent {
    AgentProviderID id;
    std::string label;
    /// How it is read, or why the chosen file cannot be used.
    std::string explanation;
    /// As the user writes it; empty where the program is looked for.
    std::string chosenPath;
    /// Stands where none is chosen: the path that was found, or that there is none.
    std::string foundPath;
    /// How it is read, and how often, where there is a choice.
    std::vector<SettingRowContent> ways;
    bool operator==(const AgentProgramContent&) const = default;
};

/// A question before something that cannot be taken back lightly.
struct QuestionContent {
    std::string title;
    std::string text;
    std::string deed;
    std::string cancel;
    bool operator==(const QuestionContent&) const = default;
};

/// What the settings page tells of, as the application knows it.
struct SettingsPageState {
    struct Value {
        SettingItem item;
        std::string value;
    };
    /// All settings with the values that hold.
    std::vector<Value> settings;
    LaunchAtLoginController::State launchAtLogin = LaunchAtLoginController::State::unavailable;
    NoticeDelivery noticeDelivery = NoticeDelivery::unknown;
    /// In the user's order.
    std::vector<AgentProviderID> order;
    std::set<AgentProviderID> enabled;
    /// What the last look at the agents' programs found; empty before the first.
    std::vector<AgentFacts> agents;
    bool isChecking = false;
    /// The language that "system" stands for.
    std::string systemLanguage;
    /// As the user writes it.
    std::string dataFolder;
    /// In bytes; absent until it has been measured.
    std::optional<std::uintmax_t> dataSize;
    /// There are samples to delete.
    bool hasHistory = true;
    /// What would put Vellmark into Claude Code's status line, or take it out.
    struct StatusLine {
        bool isThere = false;
        /// As the user writes it.
        std::string file;
        std::vector<ChangedLine> change;
    };
    /// Absent where Claude Code has never been used, or has settings that are not understood.
    std::optional<StatusLine> statusLine;
    /// `vellmark` in the folder of commands.
    struct CommandTool {
        CommandLineTool::State state = CommandLineTool::State::off;
        /// As the user writes it.
        std::filesystem::path link;
        /// What an administrator types for the change; empty where this user may make it.
        std::string command;
    };
    /// Absent where a package brings the command.
    std::optional<CommandTool> commandTool;
    /// Why the last change was refused or is not on disk, in words; empty when it holds.
    std::string trouble;
};

/// Everything that the settings page shows, as words.
struct SettingsPageContent {
    PageHeadContent head;
    ControlContent openSetup;
    /// What went wrong with the last change; empty when nothing did.
    std::string trouble;
    std::string agentsHeading;
    std::string agentsHint;
    ControlContent checkAgain;
    bool isChecking = false;
    std::vector<AgentSettingContent> agents;
    /// Above the agents' programs.
    std::vector<SettingsSectionContent> firstSections;
    std::string programsHeading;
    std::vector<AgentProgramContent> programs;
    ControlContent choosePath;
    ControlContent resetPath;
    /// Below the agents' programs.
    std::vector<SettingsSectionContent> lastSections;
    QuestionContent deleteQuestion;
    QuestionContent resetQuestion;
    QuestionContent statusLineQuestion;

    bool operator==(const SettingsPageContent&) const = default;
};

/// `machine` writes paths as the user does.
SettingsPageContent settingsPageContent(const SettingsPageState& state, const Machine& machine,
                                        const Localization& words);

/// What the settings page asks for. Main thread.
struct SettingsPageActions {
    /// The page has come up: what it shows of the system is looked up.
    std::function<void()> appear;
    std::function<void(const AgentProviderID&, bool isEnabled)> enableAgent;
    /// All agents in the order wanted.
    std::function<void(const std::vector<AgentProviderID>&)> orderAgents;
    /// Looks again for the agents' programs, and who is logged in.
    std::function<void()> checkAgents;
    /// Empty: it is looked for again.
    std::function<void(const AgentProviderID&, const std::string& path)> chooseProgram;
    /// Another value for a setting.
    std::function<void(const std::string& name, const std::string& value)> change;
    /// A row's button. Where there is a question, it has been answered with yes.
    std::function<void(const std::string& name)> press;
};

} // namespace vellmark
