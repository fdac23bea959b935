#include "presentation/SetupAssistantContent.h"

#include "model/UsageTexts.h"
#include "text/Formatting.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <utility>

namespace vellmark {
namespace {

using Agent = SetupAssistantState::Agent;
using Task = SetupScriptPlan::Kind;
using Outcome = SetupOutcome::Kind;

constexpr std::array steps{SetupStep::welcome, SetupStep::agents, SetupStep::tools,
                           SetupStep::finish};

/// What curl answers where the network, the server or its certificate was in the way. An installer
/// that ends with one of these has failed at a download of its own.
constexpr std::array downloadFailures{5, 6, 7, 16, 18, 22, 28, 35, 47, 52, 55, 56, 60, 92};

/// Added to the number of a signal by a shell.
constexpr int signalBase = 128;

std::string keyOf(SetupStep step, std::string_view part) {
    return "setup." + std::string(setupStepName(step)) + "." + std::string(part);
}

std::vector<SetupStepContent> stepList(SetupStep current, const Localization& words) {
    using Place = SetupStepContent::Place;
    std::vector<SetupStepContent> list;
    for (const SetupStep step : steps) {
        SetupStepContent content{.title = words.text(keyOf(step, "step")), .spoken = {}};
        content.place = step < current    ? Place::done
                        : step == current ? Place::current
                                          : Place::ahead;
        const std::string_view key = content.place == Place::done      ? "setup.steps.done"
                                     : content.place == Place::current ? "setup.steps.current"
                                                                       : "setup.steps.ahead";
        content.spoken =
            words.format(key, {static_cast<std::int64_t>(list.size() + 1),
                               static_cast<std::int64_t>(steps.size()), content.title});
        list.push_back(std::move(content));
    }
    return list;
}

std::vector<SetupPointsContent> welcomePoints(const Localization& words) {
    return {{.heading = words.text("setup.welcome.does"),
             .points = {{"checkmark", words.text("setup.welcome.shows")},
                        {"checkmark", words.text("setup.welcome.reads")},
                        {"checkmark", words.text("setup.welcome.forecasts")}}},
            {.heading = words.text("setup.welcome.never"),
             .points = {{"xmark", words.text("setup.welcome.sendsNothing")},
                        {"xmark", words.text("setup.welcome.noSecrets")},
                        {"xmark", words.text("setup.welcome.installsNothing")}}}};
}

StatusColorRole dotOf(const std::optional<AgentSetupStatus>& status) {
    return status == AgentSetupStatus::ready         ? StatusColorRole::healthy
           : status == AgentSetupStatus::notLoggedIn ? StatusColorRole::attention
                                                     : StatusColorRole::none;
}

std::string outcomeText(const SetupOutcome& outcome, const std::string& toolName,
                        const Localization& words) {
    const SetupMessage message = setupOutcomeMessage(outcome, toolName);
    return message.key.empty() ? std::string() : words.format(message.key, message.arguments);
}

std::string statusText(const Agent& agent, const Localization& words) {
    if (agent.run) {
        return words.text(*agent.run == SetupRun::Stage::opening ? "setup.tool.opening"
                                                                 : "setup.tool.running");
    }
    return words.text(agent.status ? setupStatusKey(*agent.status) : "settings.cli.checking");
}

/// Why there is nothing to press, else what the user should know before he presses.
std::string hintText(const Agent& agent, const ProviderSetup& setup, SetupMeans means,
                     const Localization& words) {
    if (means != SetupMeans::available) {
        return words.text(means == SetupMeans::noShell ? "setup.means.noShell"
                                                       : "setup.means.noTerminal");
    }
    const bool isMissing = agent.status == AgentSetupStatus::missing;
    // How it could be had otherwise is no news once it is being installed.
    const auto& key = !isMissing  ? setup.loginHintKey
                      : agent.run ? std::optional<std::string>()
                                  : setup.missingHintKey;
    std::string hint = key ? words.text(*key) : std::string();
    const std::string_view before = agent.run ? "setup.tool.followTerminal"
                                    : agent.status == AgentSetupStatus::unverifiable
                                        ? "setup.tool.unverifiable"
                                        : "";
    if (!before.empty()) {
        hint = words.text(before) + (hint.empty() ? "" : " ") + hint;
    }
    return hint;
}

SetupToolContent toolContent(const Agent& agent, const AgentSettingContent& setting,
                             const SetupAssistantState& state, const Localization& words) {
    SetupToolContent content{.id = agent.id, .name = setting.name, .detail = setting.detail};
    content.dot = dotOf(agent.status);
    content.status = statusText(agent, words);
    if (!agent.status) {
        content.detail.clear(); // says the same
        return content;
    }
    const ProviderDescriptor* descriptor = providerDescriptor(agent.id);
    if (descriptor == nullptr || !descriptor->setup) {
        return content;
    }
    const ProviderSetup& setup = *descriptor->setup;
    const bool isMissing = agent.status == AgentSetupStatus::missing;
    if (isMissing) {
        content.detail = words.format("setup.tool.notFound", {setup.info.toolName});
    }
    if (agent.status == AgentSetupStatus::ready) {
        return content;
    }
    const bool takesAlternative = agent.takesAlternative && state.hasHomebrew;
    content.command = !isMissing         ? setup.info.loginCommand
                      : takesAlternative ? setup.info.installAlternative
                                         : setup.info.installCommand;
    content.copy = {words.text("setup.tool.copy"), "doc.on.doc", ""};
    content.copiedTitle = words.text("setup.tool.copied");
    content.hint = hintText(agent, setup, state.means, words);
    content.outcome = outcomeText(agent.outcome, setup.info.toolName, words);
    if (state.means == SetupMeans::available && !agent.run) {
        content.run = {words.text(isMissing ? "setup.tool.install" : "setup.tool.logIn"),
                       "terminal", ""};
    }
    if (isMissing && state.hasHomebrew && !agent.run) {
        content.alternative = {
            words.text(takesAlternative ? "setup.tool.vendorScript" : "setup.tool.homebrew"), "",
            ""};
    }
    content.guide = {words.text("setup.tool.guide"), "arrow.up.right",
                     isMissing ? setup.info.installDocsURL : setup.info.loginDocsURL};
    if (!agent.run) {
        content.leaveOut = {words.text("setup.tool.leaveOut"), "", ""};
    }
    return content;
}

const AgentSettingContent* settingOf(const AgentProviderID& id, const SetupAssistantState& state) {
    const auto found = std::ranges::find(state.settings.agents, id, &AgentSettingContent::id);
    return found == state.settings.agents.end() ? nullptr : &*found;
}

/// What is asked once at the end, where the settings have it.
std::vector<SettingRowContent> lastSettings(const SetupAssistantState& state) {
    std::vector<SettingRowContent> rows;
    for (const std::string_view name :
         {std::string_view("notices"), settingsRow::statusLine, std::string_view("launch-at-login"),
          std::string_view("language")}) {
        const AgentSettingContent* claude = settingOf(AgentProviderID::claude(), state);
        if (name == settingsRow::statusLine && (claude == nullptr || !claude->isEnabled)) {
            continue;
        }
        for (const SettingsSectionContent& section : state.settings.firstSections) {
            const auto row = std::ranges::find(section.rows, name, &SettingRowContent::name);
            if (row != section.rows.end()) {
                rows.push_back(*row);
            }
        }
    }
    return rows;
}

void addStep(SetupAssistantContent& content, const SetupAssistantState& state, Instant now,
             const Localization& words) {
    if (state.step == SetupStep::welcome) {
        content.points = welcomePoints(words);
        return;
    }
    for (const Agent& agent : state.agents) {
        const AgentSettingContent* setting = settingOf(agent.id, state);
        if (setting == nullptr) {
            continue;
        }
        content.isChecking = content.isChecking || agent.isChecking;
        if (state.step == SetupStep::tools) {
            if (setting->isEnabled) {
                content.tools.push_back(toolContent(agent, *setting, state, words));
            }
            continue;
        }
        if (state.step == SetupStep::finish && !setting->isEnabled) {
            continue;
        }
        AgentSettingContent row = *setting;
        row.status = statusText(agent, words);
        content.agents.push_back(std::move(row));
        content.agentDots.push_back(dotOf(agent.status));
    }
    if (state.step == SetupStep::tools) {
        content.nothingToDo = content.tools.empty() ? words.text("setup.tools.none") : "";
        content.check = {
            words.text(content.isChecking ? "settings.cli.checking" : "settings.cli.recheck"),
            "arrow.clockwise", ""};
        if (state.checkedAt) {
            content.checkedAt =
                words.format("setup.tools.checkedAt", {instantText(*state.checkedAt, now, words)});
        }
        content.focus = state.focus;
    }
    if (state.step == SetupStep::finish) {
        content.settings = lastSettings(state);
        content.statusLineQuestion = state.settings.statusLineQuestion;
    }
}

/// Something is left to do for an agent that is shown.
bool isSomethingLeft(const SetupAssistantState& state) {
    return std::ranges::any_of(state.agents, [&](const Agent& agent) {
        const AgentSettingContent* setting = settingOf(agent.id, state);
        return setting != nullptr && setting->isEnabled && agent.status &&
               needsSetup(*agent.status);
    });
}

} // namespace

SetupOutcome setupOutcome(SetupScriptPlan::Kind task, const SetupRun::State& state,
                          AgentSetupStatus status) {
    SetupOutcome outcome{.task = task, .detail = {}};
    if (!needsSetup(status)) {
        return outcome;
    }
    if (state.stage == SetupRun::Stage::noWindow) {
        outcome.kind = Outcome::noWindow;
    } else if (state.stage == SetupRun::Stage::closed) {
        outcome.kind = Outcome::closed;
    } else if (state.exitStatus == signalBase + SIGINT ||
               state.exitStatus == signalBase + SIGQUIT) {
        outcome.kind = Outcome::cancelled;
    } else if (state.exitStatus == 0) {
        outcome.kind = task == Task::login                   ? Outcome::notLoggedIn
                       : status == AgentSetupStatus::missing ? Outcome::toolNotFound
                                                             : Outcome::none;
    } else if (task == Task::install &&
               std::ranges::find(downloadFailures, state.exitStatus) != downloadFailures.end()) {
        outcome.kind = Outcome::downloadFailed;
    } else {
        outcome.kind = Outcome::failed;
        outcome.detail = std::to_string(state.exitStatus);
    }
    return outcome;
}

SetupMessage setupOutcomeMessage(const SetupOutcome& outcome, const std::string& toolName) {
    const bool isLogin = outcome.task == Task::login;
    switch (outcome.kind) {
    case Outcome::none:
        return {};
    case Outcome::notStarted:
        return {"setup.outcome.notStarted", {outcome.detail}};
    case Outcome::noWindow:
        return {"setup.outcome.noWindow", {}};
    case Outcome::closed:
        return {isLogin ? "setup.outcome.loginClosed" : "setup.outcome.installClosed", {}};
    case Outcome::downloadFailed:
        return {"setup.outcome.downloadFailed", {}};
    case Outcome::cancelled:
        return {isLogin ? "setup.outcome.loginCancelled" : "setup.outcome.installCancelled", {}};
    case Outcome::failed:
        return {isLogin ? "setup.outcome.loginFailed" : "setup.outcome.installFailed",
                {outcome.detail}};
    case Outcome::toolNotFound:
        return {"setup.outcome.toolNotFound", {toolName}};
    case Outcome::notLoggedIn:
        break;
    }
    return {"setup.outcome.notLoggedIn", {}};
}

SetupAssistantContent setupAssistantContent(const SetupAssistantState& state, Instant now,
                                            const Localization& words) {
    SetupAssistantContent content{.step = state.step, .steps = stepList(state.step, words)};
    content.title = words.text(keyOf(state.step, "title"));
    content.subtitle = words.text(keyOf(state.step, "subtitle"));
    const bool isLast = state.step == SetupStep::finish;
    if (isLast && isSomethingLeft(state)) {
        content.title = words.text("setup.finish.title.left");
        content.subtitle = words.text("setup.finish.subtitle.left");
    }
    addStep(content, state, now, words);
    content.trouble = state.settings.trouble;
    content.later = {isLast ? "" : words.text("setup.later"), "", words.text("setup.later.help")};
    content.back = {state.step == SetupStep::welcome ? "" : words.text("setup.back"), "", ""};
    content.next = {words.text(isLast ? "setup.done" : "setup.next"), "", ""};
    return content;
}

} // namespace vellmark
