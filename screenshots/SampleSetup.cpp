#include "screenshots/SampleSetup.h"

#include "screenshots/SampleSettings.h"
#include "screenshots/SampleStates.h"

namespace vellmark::samples {

namespace {

using Task = SetupScriptPlan::Kind;
using Outcome = SetupOutcome::Kind;

SetupAssistantState withSettings(SettingsPageState settings, SetupStep step,
                                 const Localization& words) {
    SetupAssistantState state{.step = step, .agents = {}, .settings = {}};
    for (const AgentProviderID& id : settings.order) {
        state.agents.push_back({.id = id, .status = AgentSetupStatus::ready, .outcome = {}});
    }
    state.settings = settingsPageContent(settings, machine(), words);
    state.checkedAt = now();
    return state;
}

} // namespace

SetupAssistantState setup(SetupStep step, const Localization& words) {
    SettingsPageState known = settings();
    known.agents[1].loggedIn = false;
    known.agents[2].toolPath.reset();
    SetupAssistantState state = withSettings(known, step, words);
    state.agents[1].status = AgentSetupStatus::notLoggedIn;
    state.agents[2].status = AgentSetupStatus::missing;
    return state;
}

SetupAssistantState checkingSetup(const Localization& words) {
    SetupAssistantState state = withSettings(uncheckedSettings(), SetupStep::tools, words);
    for (SetupAssistantState::Agent& agent : state.agents) {
        agent.status.reset();
        agent.isChecking = true;
    }
    state.checkedAt.reset();
    return state;
}

SetupAssistantState runningSetup(const Localization& words) {
    SetupAssistantState state = setup(SetupStep::tools, words);
    state.agents[1].run = SetupRun::Stage::opening;
    state.agents[2].run = SetupRun::Stage::running;
    return state;
}

SetupAssistantState failedSetup(const Localization& words) {
    SetupAssistantState state = setup(SetupStep::tools, words);
    state.agents[1].outcome = {.kind = Outcome::cancelled, .task = Task::login, .detail = {}};
    state.agents[2].outcome = {
        .kind = Outcome::downloadFailed, .task = Task::install, .detail = {}};
    state.hasHomebrew = true;
    return state;
}

SetupAssistantState closedSetup(const Localization& words) {
    SetupAssistantState state = setup(SetupStep::tools, words);
    state.agents[0].status = AgentSetupStatus::unverifiable;
    state.agents[1].outcome = {.kind = Outcome::failed, .task = Task::login, .detail = "137"};
    state.agents[2].outcome = {.kind = Outcome::toolNotFound, .task = Task::install, .detail = {}};
    state.agents[2].takesAlternative = true;
    state.hasHomebrew = true;
    return state;
}

SetupAssistantState setupWithoutTerminal(const Localization& words) {
    SetupAssistantState state = setup(SetupStep::tools, words);
    state.means = SetupMeans::noTerminal;
    return state;
}

SetupAssistantState setupWithoutShell(const Localization& words) {
    SetupAssistantState state = setup(SetupStep::tools, words);
    state.means = SetupMeans::noShell;
    return state;
}

SetupAssistantState setupOfNobody(const Localization& words) {
    SettingsPageState known = settings();
    known.enabled.clear();
    return withSettings(known, SetupStep::tools, words);
}

SetupAssistantState finishedSetup(const Localization& words) {
    return withSettings(settings(), SetupStep::finish, words);
}

} // namespace vellmark::samples
