#pragma once

#include "model/AgentProviderID.h"
#include "presentation/PageHeadContent.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vellmark {

struct SettingsPageState;

/// What the rows of the settings page set, agents and their programs aside.
enum class SettingID {
    launchAtLogin,
    language,
    appearance,
    firstFigure,
    interval,
    quitting,
    statusItemInk,
    statusItemFigure,
    dataFolder,
    history,
    reset,
};

struct SettingSwitch {
    bool isOn = false;
    bool isEnabled = true;
    bool operator==(const SettingSwitch&) const = default;
};

struct SettingChoices {
    enum class Form {
        sideBySide,
        popUp,
    };
    std::vector<std::string> titles;
    /// Of `titles`; -1 when what holds is none of them.
    int current = -1;
    Form form = Form::sideBySide;
    bool operator==(const SettingChoices&) const = default;
};

struct SettingRowContent {
    SettingID id = SettingID::language;
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

    bool operator==(const SettingsPageContent&) const = default;
};

SettingsPageContent settingsPageContent(const SettingsPageState& state, const Localization& words);

/// What the settings page asks for. Main thread.
struct SettingsPageActions {
    std::function<void(const AgentProviderID&, bool isEnabled)> enableAgent;
    /// All agents in the order wanted.
    std::function<void(const std::vector<AgentProviderID>&)> orderAgents;
    /// Looks again for the agents' programs, and who is logged in.
    std::function<void()> checkAgents;
    /// Empty: it is looked for again.
    std::function<void(const AgentProviderID&, const std::string& path)> chooseProgram;
    std::function<void(SettingID, bool)> setSwitch;
    /// The choice's place among its titles.
    std::function<void(SettingID, int)> choose;
    /// A row's button. Where there is a question, it has been answered with yes.
    std::function<void(SettingID)> press;
};

} // namespace vellmark
