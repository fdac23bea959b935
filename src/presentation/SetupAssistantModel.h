#pragma once

#include "platform/Preferences.h"
#include "presentation/SettingsPageModel.h"
#include "presentation/SetupAssistantContent.h"
#include "store/ActivityEntry.h"
#include "store/MainExecutor.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace vellmark {

/// The way from an empty machine to agents that can be read: which step is shown, how far each
/// agent is set up, and the scripts that the user has in terminals. Main thread.
///
/// What runs in a terminal goes on while the assistant is closed, and is followed: an agent that
/// has become ready is read at once. While a script runs the files are looked at every three
/// seconds, and an agent's CLI is asked only after a change there or at the script's end.
///
/// Keeps "SetupAssistantCompleted"; "SetupAssistantStep", where the assistant was closed; and
/// "SetupAssistantPostponed", what was left to do then: it comes again by itself only when more is.
class SetupAssistantModel {
public:
    static constexpr std::string_view completedKey = "SetupAssistantCompleted";
    static constexpr std::string_view stepKey = "SetupAssistantStep";
    static constexpr std::string_view postponedKey = "SetupAssistantPostponed";
    static constexpr Seconds lookInterval{3};
    static constexpr Seconds lookTolerance{0.5};

    struct Sources {
        Preferences& preferences;
        MainExecutor& executor;
        SettingsPageModel& settings;
        std::function<const Localization&()> words;
        /// As the settings page asks; after a change, `factsChanged` is to be called.
        std::function<const AgentFacts*(const AgentProviderID&)> factsOf;
        std::function<bool(const AgentProviderID&)> isAsking;
        std::function<void(const AgentProviderID&, bool anew)> ask;
        /// Whether the last reading of an agent says that nobody is logged in.
        std::function<bool(const AgentProviderID&)> isDeniedByReading;
        /// What the files tell of an agent; see setupTraces.
        std::function<std::string(const ProviderDescriptor&)> traces;
        std::function<SetupMeans()> means;
        std::function<bool()> hasHomebrew;
        /// Throws std::system_error.
        std::function<std::unique_ptr<SetupRun>(const std::string& script)> openTerminal;
        std::function<void(const AgentProviderID&)> readAgent;
        std::function<void()> refresh;
        /// For the activity log.
        std::function<void(ActivityEntry)> log;
        std::function<void(const std::string& url)> openURL;
        std::function<void(const std::string& text)> copy;
        /// What is shown has changed.
        std::function<void()> changed;
        std::function<void()> closeWindow;
        std::function<Instant()> now = [] { return ReferenceClock::now(); };
    };
    explicit SetupAssistantModel(Sources sources);
    ~SetupAssistantModel();
    SetupAssistantModel(const SetupAssistantModel&) = delete;
    SetupAssistantModel& operator=(const SetupAssistantModel&) = delete;

    SetupAssistantContent content() const;
    /// Valid as long as this.
    SetupAssistantActions actions();

    bool isCompleted() const;
    /// Whether the assistant is to come up by itself. Calls back once all agents have been asked,
    /// and not at all when it was completed before; notes that it is when nothing is left to do.
    void decideFirstRun(std::function<void(bool isNeeded)> decided);

    /// The window is about to come up: where it was left, or at what is left to do for `agent`.
    void begin(const std::optional<AgentProviderID>& agent);
    /// The window has the keyboard: what was done elsewhere shows.
    void lookAgain();
    /// The window was closed, by whatever way.
    void closed();
    /// What is known of an agent has changed, or the settings have.
    void factsChanged();

private:
    struct Agent;
    Agent& agent(const AgentProviderID& id);
    std::optional<AgentSetupStatus> statusOf(const AgentProviderID& id) const;
    bool isEnabled(const AgentProviderID& id) const;
    bool isSomethingLeft() const;
    bool isAnythingRunning() const;
    void go(SetupStep step);
    void comeTo(SetupStep step);
    void finish();
    void check(const AgentProviderID& id);
    void land(const AgentProviderID& id, const AgentFacts& facts);
    void run(const AgentProviderID& id);
    SetupScriptPlan plan(const AgentProviderID& id);
    void log(ActivityEntry::Level level, const AgentProviderID& id, const SetupMessage& message);
    void logOutcome(const AgentProviderID& id);
    void look();
    void lookAt(const AgentProviderID& id);
    void lookSoon();
    void decide();
    std::string leftToDo() const;
    bool isWorseThan(const std::string& postponed) const;

    Sources sources_;
    SetupStep step_ = SetupStep::welcome;
    std::optional<AgentProviderID> focus_;
    std::map<AgentProviderID, std::unique_ptr<Agent>> agents_;
    std::optional<Instant> checkedAt_;
    std::optional<MainExecutor::Timer> timer_;
    std::function<void(bool)> decided_;
    bool isOpen_ = false;
};

} // namespace vellmark
