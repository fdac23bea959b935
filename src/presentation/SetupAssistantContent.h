#pragma once

#include "presentation/PopoverContent.h"
#include "presentation/SettingsPageContent.h"
#include "presentation/StatusColor.h"
#include "setup/AgentSetupStatus.h"
#include "setup/SetupRun.h"
#include "setup/SetupScript.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// What came of the last script for an agent, where that is not what it was for.
struct SetupOutcome {
    enum class Kind {
        none,
        notStarted, ///< the files could not be written; `detail` is why
        noWindow,
        closed, ///< the window was closed half-way
        downloadFailed,
        cancelled,
        failed,       ///< `detail` is the exit status
        toolNotFound, ///< installed, but at none of the known places
        notLoggedIn,  ///< the login ended well, and nobody is logged in
    };
    Kind kind = Kind::none;
    SetupScriptPlan::Kind task = SetupScriptPlan::Kind::install;
    std::string detail;
    bool operator==(const SetupOutcome&) const = default;
};

/// What came of a script that ended with `state`, when the agent then has `status`.
SetupOutcome setupOutcome(SetupScriptPlan::Kind task, const SetupRun::State& state,
                          AgentSetupStatus status);

/// A text of the catalog and what is put into it; no key where there is nothing to say.
struct SetupMessage {
    std::string_view key;
    std::vector<TextArgument> arguments;
};

/// An outcome in words, of an agent whose CLI is called `toolName`.
SetupMessage setupOutcomeMessage(const SetupOutcome& outcome, const std::string& toolName);

/// What the setup assistant knows.
struct SetupAssistantState {
    struct Agent {
        AgentProviderID id;
        /// Absent before the first check.
        std::optional<AgentSetupStatus> status;
        bool isChecking = false;
        /// A script is being shown to the user.
        std::optional<SetupRun::Stage> run;
        /// Homebrew instead of the vendor's script.
        bool takesAlternative = false;
        SetupOutcome outcome;
    };
    SetupStep step = SetupStep::welcome;
    /// All agents in the user's order, with what the settings say of them.
    std::vector<Agent> agents;
    SettingsPageContent settings;
    SetupMeans means = SetupMeans::available;
    bool hasHomebrew = false;
    std::optional<Instant> checkedAt;
    /// The agent that somebody came for.
    std::optional<AgentProviderID> focus;
};

struct SetupStepContent {
    enum class Place { done, current, ahead };
    std::string title;
    Place place = Place::ahead;
    std::string spoken;
    bool operator==(const SetupStepContent&) const = default;
};

struct SetupPointsContent {
    struct Point {
        std::string icon;
        std::string text;
        bool operator==(const Point&) const = default;
    };
    std::string heading;
    std::vector<Point> points;
    bool operator==(const SetupPointsContent&) const = default;
};

/// An agent and how far it is set up. Texts are empty, and controls have no title, where there is
/// nothing to say or to do.
struct SetupToolContent {
    AgentProviderID id;
    std::string name;
    std::string detail;
    StatusColorRole dot = StatusColorRole::none;
    std::string status;
    /// Exactly what runs, or what the user is to run.
    std::string command;
    ControlContent copy;
    std::string copiedTitle;
    /// Why there is nothing to press, or what to do in the terminal; the registry's hint.
    std::string hint;
    /// What came of the last script.
    std::string outcome;
    ControlContent run;
    /// Shows the other command.
    ControlContent alternative;
    ControlContent guide;
    ControlContent leaveOut;
    bool operator==(const SetupToolContent&) const = default;
};

/// Everything that the setup assistant shows, as words.
struct SetupAssistantContent {
    SetupStep step = SetupStep::welcome;
    std::vector<SetupStepContent> steps;
    std::string title;
    std::string subtitle;
    /// On the first step.
    std::vector<SetupPointsContent> points;
    /// To be switched on and off, on the second step; what became of them, on the last.
    std::vector<AgentSettingContent> agents;
    std::vector<StatusColorRole> agentDots;
    std::vector<SetupToolContent> tools;
    /// In place of the tools.
    std::string nothingToDo;
    /// On the last step.
    std::vector<SettingRowContent> settings;
    /// Before the button of `settingsRow::statusLine` does anything.
    QuestionContent statusLineQuestion;
    /// What went wrong with the last change of a setting; empty when nothing did.
    std::string trouble;
    std::optional<AgentProviderID> focus;

    ControlContent check;
    bool isChecking = false;
    std::string checkedAt;
    ControlContent later;
    ControlContent back;
    ControlContent next;

    bool operator==(const SetupAssistantContent&) const = default;
};

SetupAssistantContent setupAssistantContent(const SetupAssistantState& state, Instant now,
                                            const Localization& words);

/// What the setup assistant asks for. Main thread.
struct SetupAssistantActions {
    std::function<void()> next;
    std::function<void()> back;
    std::function<void()> later;
    /// Looks again at all agents.
    std::function<void()> check;
    std::function<void(const AgentProviderID&, bool isEnabled)> enableAgent;
    /// Shows what there is to do for the agent in a terminal.
    std::function<void(const AgentProviderID&)> run;
    std::function<void(const AgentProviderID&)> takeOtherCommand;
    std::function<void(const AgentProviderID&)> openGuide;
    std::function<void(const std::string& text)> copy;
    /// Another value for a setting.
    std::function<void(const std::string& name, const std::string& value)> change;
    /// A setting's button. Where there is a question, it has been answered with yes.
    std::function<void(const std::string& name)> press;
    /// The window has got the keyboard.
    std::function<void()> lookAgain;
};

} // namespace vellmark
