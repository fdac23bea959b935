#include "presentation/SetupAssistantModel.h"

#include "store/ActivityTexts.h"
#include "text/SystemErrorText.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace vellmark {
namespace {

using Level = ActivityEntry::Level;
using Stage = SetupRun::Stage;

SetupStep storedStep(const Preferences& preferences) {
    const auto stored = preferences.string(SetupAssistantModel::stepKey);
    for (const SetupStep step : {SetupStep::agents, SetupStep::tools, SetupStep::finish}) {
        if (stored == setupStepName(step)) {
            return step;
        }
    }
    return SetupStep::welcome;
}

SetupStep neighbour(SetupStep step, int distance) {
    return static_cast<SetupStep>(static_cast<int>(step) + distance);
}

/// "claude:notLoggedIn"; a missing program is the worse of the two.
std::string noteOf(const AgentProviderID& id, AgentSetupStatus status) {
    return id.rawValue + (status == AgentSetupStatus::missing ? ":missing" : ":notLoggedIn");
}

bool isOver(Stage stage) {
    return stage != Stage::opening && stage != Stage::running;
}

} // namespace

struct SetupAssistantModel::Agent {
    const ProviderDescriptor* descriptor = nullptr;
    std::optional<AgentSetupStatus> status;
    /// At the last answer a reading had said otherwise; which of the two is right nobody knows.
    bool isDoubted = false;
    /// An answer is on its way.
    bool isAwaited = false;
    /// What was asked before the last change tells nothing of it.
    bool asksOnceMore = false;
    /// Of the last answer.
    std::string traces;
    Instant askedAt{};

    std::unique_ptr<SetupRun> run;
    Stage stage = Stage::opening;
    SetupScriptPlan::Kind task = SetupScriptPlan::Kind::install;
    /// How the last script ended, until its outcome is known.
    std::optional<SetupRun::State> end;
    bool takesAlternative = false;
    SetupOutcome outcome;
};

SetupAssistantModel::SetupAssistantModel(Sources sources) : sources_(std::move(sources)) {
    for (const ProviderRegistration& registration : providerRegistry()) {
        auto agent = std::make_unique<Agent>();
        agent->descriptor = &registration.descriptor;
        agents_.emplace(registration.descriptor.id, std::move(agent));
    }
}

SetupAssistantModel::~SetupAssistantModel() {
    if (timer_) {
        sources_.executor.cancel(*timer_);
    }
}

SetupAssistantModel::Agent& SetupAssistantModel::agent(const AgentProviderID& id) {
    return *agents_.at(id);
}

std::optional<AgentSetupStatus> SetupAssistantModel::statusOf(const AgentProviderID& id) const {
    const Agent& agent = *agents_.at(id);
    const bool isDenied = agent.status == AgentSetupStatus::ready && agent.isDoubted &&
                          sources_.isDeniedByReading(id);
    return isDenied ? AgentSetupStatus::unverifiable : agent.status;
}

SetupAssistantContent SetupAssistantModel::content() const {
    SetupAssistantState state{.step = step_, .agents = {}, .settings = sources_.settings.content()};
    for (const AgentSettingContent& setting : state.settings.agents) {
        const Agent& agent = *agents_.at(setting.id);
        state.agents.push_back({.id = setting.id,
                                .status = statusOf(setting.id),
                                .isChecking = agent.isAwaited,
                                .run = agent.run ? std::optional(agent.stage) : std::nullopt,
                                .takesAlternative = agent.takesAlternative,
                                .outcome = agent.outcome});
    }
    state.means = sources_.means();
    state.hasHomebrew = sources_.hasHomebrew();
    state.checkedAt = checkedAt_;
    state.focus = focus_;
    return setupAssistantContent(state, sources_.now(), sources_.words());
}

SetupAssistantActions SetupAssistantModel::actions() {
    return {.next = [this] { step_ == SetupStep::finish ? finish() : go(neighbour(step_, 1)); },
            .back =
                [this] {
                    if (step_ != SetupStep::welcome) {
                        go(neighbour(step_, -1));
                    }
                },
            .later = [this] { sources_.closeWindow(); },
            .check =
                [this] {
                    for (const auto& [id, agent] : agents_) {
                        check(id);
                    }
                },
            .enableAgent =
                [this](const AgentProviderID& id, bool isOn) {
                    sources_.settings.actions().enableAgent(id, isOn);
                    sources_.changed();
                },
            .run = [this](const AgentProviderID& id) { run(id); },
            .takeOtherCommand =
                [this](const AgentProviderID& id) {
                    agent(id).takesAlternative = !agent(id).takesAlternative;
                    sources_.changed();
                },
            .openGuide =
                [this](const AgentProviderID& id) {
                    const CLISetupInfo& info = agent(id).descriptor->setup->info;
                    sources_.openURL(agent(id).status == AgentSetupStatus::missing
                                         ? info.installDocsURL
                                         : info.loginDocsURL);
                },
            .copy = sources_.copy,
            .change =
                [this](const std::string& name, const std::string& value) {
                    sources_.settings.actions().change(name, value);
                    sources_.changed();
                },
            .press =
                [this](const std::string& name) {
                    sources_.settings.actions().press(name);
                    sources_.changed();
                },
            .lookAgain = [this] { lookAgain(); }};
}

// Steps

void SetupAssistantModel::begin(const std::optional<AgentProviderID>& agent) {
    const bool wasOpen = std::exchange(isOpen_, true);
    focus_ = agent;
    if (agent || isCompleted()) {
        step_ = agent || !wasOpen ? SetupStep::tools : step_;
    } else if (!wasOpen) {
        comeTo(storedStep(sources_.preferences));
    }
    for (const auto& [id, known] : agents_) {
        if (!known->isAwaited) {
            sources_.ask(id, false);
        }
    }
    factsChanged();
    lookAgain();
}

void SetupAssistantModel::closed() {
    if (!std::exchange(isOpen_, false)) {
        return;
    }
    focus_.reset();
    if (!isCompleted()) {
        sources_.preferences.setString(stepKey, std::string(setupStepName(step_)));
        sources_.preferences.setString(postponedKey, leftToDo());
    }
}

void SetupAssistantModel::go(SetupStep step) {
    comeTo(step);
    focus_.reset();
    sources_.changed();
}

/// The last step shows what only the system knows: the login item, who shows notices, and Claude
/// Code's settings.
void SetupAssistantModel::comeTo(SetupStep step) {
    step_ = step;
    if (step == SetupStep::finish) {
        sources_.settings.actions().appear();
    }
}

void SetupAssistantModel::finish() {
    sources_.settings.allowWantedNotices();
    sources_.preferences.setBoolean(completedKey, true);
    sources_.preferences.remove(stepKey);
    sources_.preferences.remove(postponedKey);
    sources_.refresh();
    sources_.closeWindow();
}

bool SetupAssistantModel::isCompleted() const {
    return sources_.preferences.boolean(completedKey).value_or(false);
}

bool SetupAssistantModel::isEnabled(const AgentProviderID& id) const {
    return AgentSettings(sources_.preferences, providerRegistry()).enabled().contains(id);
}

bool SetupAssistantModel::isSomethingLeft() const {
    return !leftToDo().empty();
}

bool SetupAssistantModel::isAnythingRunning() const {
    return std::ranges::any_of(agents_,
                               [](const auto& entry) { return entry.second->run != nullptr; });
}

// The first run

void SetupAssistantModel::decideFirstRun(std::function<void(bool isNeeded)> decided) {
    if (isCompleted()) {
        return;
    }
    decided_ = std::move(decided);
    for (const auto& [id, agent] : agents_) {
        agent->isAwaited = true;
        sources_.ask(id, false);
    }
}

void SetupAssistantModel::decide() {
    const bool isAnyAwaited =
        std::ranges::any_of(agents_, [](const auto& entry) { return entry.second->isAwaited; });
    if (!decided_ || isAnyAwaited) {
        return;
    }
    const auto decided = std::exchange(decided_, nullptr);
    if (!isSomethingLeft()) {
        sources_.preferences.setBoolean(completedKey, true);
        decided(false);
        return;
    }
    const auto postponed = sources_.preferences.string(postponedKey);
    decided(!postponed || isWorseThan(*postponed));
}

std::string SetupAssistantModel::leftToDo() const {
    std::string notes;
    for (const auto& [id, agent] : agents_) {
        if (agent->status && needsSetup(*agent->status) && isEnabled(id)) {
            notes += (notes.empty() ? "" : " ") + noteOf(id, *agent->status);
        }
    }
    return notes;
}

bool SetupAssistantModel::isWorseThan(const std::string& postponed) const {
    const std::string known = " " + postponed + " ";
    return std::ranges::any_of(agents_, [&](const auto& entry) {
        const auto& [id, agent] = entry;
        if (!agent->status || !needsSetup(*agent->status) || !isEnabled(id)) {
            return false;
        }
        const auto wasKnown = [&](AgentSetupStatus status) {
            return known.find(" " + noteOf(id, status) + " ") != std::string::npos;
        };
        const bool wasMissing = wasKnown(AgentSetupStatus::missing);
        return *agent->status == AgentSetupStatus::missing
                   ? !wasMissing
                   : !wasMissing && !wasKnown(AgentSetupStatus::notLoggedIn);
    });
}

// What is known of the agents

void SetupAssistantModel::check(const AgentProviderID& id) {
    Agent& checked = agent(id);
    checked.askedAt = sources_.now();
    checked.asksOnceMore = sources_.isAsking(id);
    checked.isAwaited = true;
    if (!checked.asksOnceMore) {
        sources_.ask(id, true);
    }
    sources_.changed();
}

void SetupAssistantModel::factsChanged() {
    bool hasGottenReady = false;
    for (const auto& [id, agent] : agents_) {
        if (sources_.isAsking(id)) {
            agent->isAwaited = true;
            continue;
        }
        const AgentFacts* facts = sources_.factsOf(id);
        if (facts == nullptr || (agent->status && !agent->isAwaited)) {
            continue;
        }
        if (std::exchange(agent->asksOnceMore, false)) {
            sources_.ask(id, true);
            continue;
        }
        const auto former = agent->status;
        land(id, *facts);
        hasGottenReady =
            hasGottenReady || (former && needsSetup(*former) && !needsSetup(*agent->status));
    }
    if (hasGottenReady && step_ == SetupStep::tools && !isSomethingLeft() && !isAnythingRunning()) {
        comeTo(SetupStep::finish);
    }
    decide();
    sources_.changed();
}

void SetupAssistantModel::land(const AgentProviderID& id, const AgentFacts& facts) {
    Agent& known = agent(id);
    const auto former = std::exchange(known.status, setupStatusOf(facts));
    known.isAwaited = false;
    known.traces = sources_.traces(*known.descriptor);
    checkedAt_ = sources_.now();
    // A login that has just ended is newer than any reading.
    known.isDoubted = !known.end && sources_.isDeniedByReading(id);
    if (known.end) {
        known.outcome = setupOutcome(known.task, *known.end, *known.status);
        known.end.reset();
        logOutcome(id);
    }
    if (known.status != AgentSetupStatus::missing) {
        known.takesAlternative = false;
    }
    if (former != known.status && known.outcome.task == SetupScriptPlan::Kind::install &&
        known.status != AgentSetupStatus::missing) {
        known.outcome = {};
    }
    if (former == AgentSetupStatus::missing && known.status == AgentSetupStatus::notLoggedIn) {
        log(Level::info, id, {"log.setup.installed", {}});
    }
    if (!needsSetup(*known.status)) {
        known.outcome = {};
        if (former && needsSetup(*former)) {
            log(Level::info, id, {"log.setup.ready", {}});
            sources_.readAgent(id);
        }
    }
}

void SetupAssistantModel::lookAgain() {
    for (const auto& [id, agent] : agents_) {
        if (agent->run) {
            lookAt(id);
        } else if (agent->status && !agent->isAwaited) {
            const bool isDoubtful = statusOf(id) != AgentSetupStatus::ready && isEnabled(id) &&
                                    sources_.now() - agent->askedAt >= lookInterval;
            if (isDoubtful || sources_.traces(*agent->descriptor) != agent->traces) {
                check(id);
            }
        }
    }
}

// Scripts

SetupScriptPlan SetupAssistantModel::plan(const AgentProviderID& id) {
    const Agent& planned = agent(id);
    const CLISetupInfo& info = planned.descriptor->setup->info;
    if (planned.status == AgentSetupStatus::missing) {
        return SetupScriptPlan::install(info, planned.takesAlternative && sources_.hasHomebrew());
    }
    const AgentFacts* facts = sources_.factsOf(id);
    return SetupScriptPlan::login(info, facts != nullptr && facts->toolPath
                                            ? std::optional(facts->toolPath->string())
                                            : std::nullopt);
}

void SetupAssistantModel::run(const AgentProviderID& id) {
    Agent& started = agent(id);
    if (started.run || !started.status || !started.descriptor->setup) {
        return;
    }
    const SetupScriptPlan plan = this->plan(id);
    started.task = plan.kind;
    started.end.reset();
    started.outcome = {.task = plan.kind, .detail = {}};
    try {
        started.run =
            sources_.openTerminal(setupScript(plan, SetupScriptTexts::localized(sources_.words())));
        started.stage = Stage::opening;
        log(Level::info, id,
            {plan.kind == SetupScriptPlan::Kind::install ? "log.setup.install" : "log.setup.login",
             {plan.command}});
        lookSoon();
    } catch (const std::system_error& error) {
        started.outcome.kind = SetupOutcome::Kind::notStarted;
        started.outcome.detail = systemErrorText(error.code(), sources_.words());
        logOutcome(id);
    }
    sources_.changed();
}

void SetupAssistantModel::log(Level level, const AgentProviderID& id, const SetupMessage& message) {
    sources_.log(ActivityTexts::entry(level, id, message.key, message.arguments, sources_.words()));
}

void SetupAssistantModel::logOutcome(const AgentProviderID& id) {
    const Agent& ended = agent(id);
    const SetupMessage message =
        setupOutcomeMessage(ended.outcome, ended.descriptor->setup->info.toolName);
    if (!message.key.empty()) {
        log(Level::notice, id, message);
    }
}

void SetupAssistantModel::lookSoon() {
    if (!timer_) {
        timer_ = sources_.executor.postAfter(lookInterval, lookTolerance, [this] {
            timer_.reset();
            look();
        });
    }
}

void SetupAssistantModel::look() {
    for (const auto& [id, agent] : agents_) {
        if (agent->run) {
            lookAt(id);
        }
    }
    if (isAnythingRunning()) {
        lookSoon();
    }
}

void SetupAssistantModel::lookAt(const AgentProviderID& id) {
    Agent& looked = agent(id);
    const SetupRun::State state = looked.run->look(sources_.now());
    if (isOver(state.stage)) {
        looked.run.reset();
        looked.end = state;
        check(id);
    } else if (!looked.isAwaited && sources_.traces(*looked.descriptor) != looked.traces) {
        check(id);
    }
    if (std::exchange(looked.stage, state.stage) != state.stage) {
        sources_.changed();
    }
}

} // namespace vellmark
