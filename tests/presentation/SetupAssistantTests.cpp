#include "SettingsTest.h"
#include "presentation/SetupAssistantModel.h"
#include "support/HandTurnedExecutor.h"
#include "support/Matchers.h"

#include <algorithm>
#include <system_error>

namespace vellmark::tests {
namespace {

using Stage = SetupRun::Stage;
using Kind = SetupOutcome::Kind;

/// A script whose course the test decides.
struct PretendedRun : SetupRun {
    explicit PretendedRun(State& state) : state_(state) {}
    State look(Instant /*now*/) override { return state_; }

private:
    State& state_;
};

/// The assistant over a machine that the test makes up; "asked" agents answer when it says so.
class SetupAssistantTest : public SettingsTest {
protected:
    SetupAssistantModel::Sources sources() {
        return {.preferences = *preferences,
                .executor = executor,
                .settings = settings,
                .words = [this]() -> const Localization& { return words; },
                .factsOf = [this](const AgentProviderID& id) { return factsOf(id); },
                .isAsking = [this](const AgentProviderID& id) { return isAsking(id); },
                .ask =
                    [this](const AgentProviderID& id, bool anew) {
                        if (anew || factsOf(id) == nullptr) {
                            asked.push_back(id);
                            ++questions[id];
                        }
                    },
                .isDeniedByReading = [this](const AgentProviderID& id) { return denied == id; },
                .traces = [this](const ProviderDescriptor& agent) { return traces[agent.id]; },
                .means = [this] { return means; },
                .hasHomebrew = [this] { return hasHomebrew; },
                .openTerminal = [this](const std::string& text) -> std::unique_ptr<SetupRun> {
                    script = text;
                    run = {};
                    if (failure) {
                        throw std::system_error(*failure);
                    }
                    return std::make_unique<PretendedRun>(run);
                },
                .readAgent = [this](const AgentProviderID& id) { read.push_back(id.rawValue); },
                .refresh = [this] { read.emplace_back("all"); },
                .log = [this](const ActivityEntry& entry) { logged.push_back(entry.text); },
                .openURL = [this](const std::string& url) { opened = url; },
                .copy = [](const std::string&) {},
                .changed = [this] { ++changes; },
                .closeWindow = [this] { model->closed(); },
                .now = [this] { return executor.now(); }};
    }

    /// What the agents answer from now on: "-" not installed, "?" cannot tell, "no", "yes".
    void make(const AgentProviderID& id, const std::string& state) {
        AgentFacts& truth = truths[id];
        truth = {.id = id};
        if (state != "-") {
            truth.toolPath = "/usr/bin/" + id.rawValue;
            truth.loggedIn = state == "?" ? std::nullopt : std::optional(state == "yes");
        }
    }
    /// Everybody who was asked answers.
    void answer() {
        while (!asked.empty()) {
            const AgentProviderID id = asked.front();
            asked.erase(asked.begin());
            facts[id] = truths[id];
            model->factsChanged();
        }
    }
    void begin(const std::optional<AgentProviderID>& agent = {}) {
        model->begin(agent);
        answer();
    }
    SetupToolContent tool(const AgentProviderID& id) {
        const SetupAssistantContent content = model->content();
        const auto found = std::ranges::find(content.tools, id, &SetupToolContent::id);
        return found == content.tools.end() ? SetupToolContent() : *found;
    }
    /// The window of the script has done what the state says.
    void end(const SetupRun::State& state) {
        run = state;
        executor.advance(SetupAssistantModel::lookInterval);
        answer();
    }
    /// What a start of the program decides; absent when nothing is to be decided.
    std::optional<bool> firstRun() {
        asked.clear();
        facts.clear();
        model = std::make_unique<SetupAssistantModel>(sources());
        actions = model->actions();
        std::optional<bool> decision;
        model->decideFirstRun([&](bool isNeeded) { decision = isNeeded; });
        answer();
        return decision;
    }

    HandTurnedExecutor executor;
    std::map<AgentProviderID, AgentFacts> truths;
    std::map<AgentProviderID, int> questions;
    std::map<AgentProviderID, std::string> traces;
    std::optional<AgentProviderID> denied;
    SetupMeans means = SetupMeans::available;
    bool hasHomebrew = false;
    std::optional<std::error_code> failure;
    std::string script;
    SetupRun::State run;
    std::vector<std::string> read;
    std::vector<std::string> logged;
    std::string opened;
    SettingsPageModel settings{settingsSources()};
    std::unique_ptr<SetupAssistantModel> model = std::make_unique<SetupAssistantModel>(sources());
    SetupAssistantActions actions = model->actions();

    void SetUp() override {
        directory.write("vellmark", "");
        make(codex, "yes");
        make(claude, "no");
        make(antigravity, "-");
    }
};

TEST_F(SetupAssistantTest, TellsOfEachAgentWhatThereIsToDo) {
    model->begin(claude);
    EXPECT_EQ(model->content().step, SetupStep::tools);
    EXPECT_EQ(model->content().focus, claude);
    EXPECT_EQ(tool(claude).status, "Checking …");
    EXPECT_TRUE(model->content().isChecking);
    answer();
    EXPECT_EQ(tool(codex).status, "Ready");
    EXPECT_EQ(tool(codex).command, "");
    EXPECT_EQ(tool(claude).command, "claude auth login");
    EXPECT_EQ(tool(claude).run.title, "Log in in Terminal");
    EXPECT_THAT(tool(antigravity).command, HasSubstr("curl -fsSL https://"));
    EXPECT_EQ(tool(antigravity).alternative.title, "") << "where Homebrew is not";
    actions.openGuide(antigravity);
    EXPECT_THAT(opened, HasSubstr("get-started"));

    // The command that runs is the one that is shown.
    hasHomebrew = true;
    actions.takeOtherCommand(antigravity);
    EXPECT_EQ(tool(antigravity).command, "brew install --cask antigravity-cli");
    actions.run(antigravity);
    EXPECT_THAT(script, HasSubstr("\nbrew install --cask antigravity-cli\nrc=$?"));
    EXPECT_EQ(tool(antigravity).run.title, "") << "once at a time";

    for (const SetupMeans lacking : {SetupMeans::noShell, SetupMeans::noTerminal}) {
        means = lacking;
        EXPECT_EQ(tool(claude).run.title, "");
        EXPECT_EQ(tool(claude).command, "claude auth login");
        EXPECT_THAT(tool(claude).hint, HasSubstr("Run the command yourself"));
    }
    actions.enableAgent(antigravity, false);
    EXPECT_EQ(tool(antigravity).name, "");
}

TEST_F(SetupAssistantTest, MovesOnByItselfAndReadsAtOnceWhoHasBecomeReady) {
    begin();
    actions.next();
    actions.next();
    actions.run(antigravity);
    EXPECT_EQ(tool(antigravity).status, "Opening the terminal …");
    run.stage = Stage::running;
    executor.advance(SetupAssistantModel::lookInterval);
    EXPECT_EQ(tool(antigravity).status, "Running in the terminal …");
    EXPECT_EQ(questions[antigravity], 1) << "no CLI is asked while its files are the same";

    // The program appears before its installer has ended.
    make(antigravity, "no");
    traces[antigravity] = "installed";
    executor.advance(SetupAssistantModel::lookInterval);
    answer();
    EXPECT_EQ(questions[antigravity], 2);
    EXPECT_EQ(tool(antigravity).command, "agy");
    end({Stage::ended, 0});
    EXPECT_EQ(executor.timerCount(), 0U) << "nothing runs any more";
    EXPECT_EQ(tool(antigravity).outcome, "");

    actions.run(antigravity);
    make(antigravity, "yes");
    end({Stage::ended, 0});
    EXPECT_THAT(read, ElementsAre("antigravity"));
    EXPECT_EQ(model->content().step, SetupStep::tools) << "Claude is not logged in to";
    actions.run(claude);
    EXPECT_THAT(script, HasSubstr("TOOL='/usr/bin/claude'"));
    make(claude, "?"); // the check says nothing; the reading will
    end({Stage::ended, 0});
    EXPECT_THAT(read, ElementsAre("antigravity", "claude"));
    EXPECT_EQ(model->content().step, SetupStep::finish);
    EXPECT_EQ(model->content().title, "Everything is ready");
    actions.next();
    EXPECT_EQ(preferences->boolean("SetupAssistantCompleted"), true);
    EXPECT_EQ(read.back(), "all");
}

// A login that comes to its end while the agent is still being asked about the time before.
TEST_F(SetupAssistantTest, AsksOnceMoreWhenTheAnswerOnItsWayIsOld) {
    begin(claude);
    actions.run(claude);
    traces[claude] = "changed";
    executor.advance(SetupAssistantModel::lookInterval);
    ASSERT_TRUE(isAsking(claude));
    run = {Stage::ended, 0};
    executor.advance(SetupAssistantModel::lookInterval);
    asked.clear(); // the old answer: nobody
    model->factsChanged();
    EXPECT_EQ(tool(claude).outcome, "") << "nothing is said before the new answer";
    make(claude, "yes");
    answer();
    EXPECT_EQ(tool(claude).status, "Ready");
    EXPECT_THAT(read, ElementsAre("claude"));
}

TEST_F(SetupAssistantTest, TellsWhatCameOfAScript) {
    begin(antigravity);
    std::set<std::string> told;
    const auto outcomeOf = [&](const AgentProviderID& id, const SetupRun::State& state) {
        actions.run(id);
        EXPECT_EQ(tool(id).outcome, "") << "the last one is over";
        end(state);
        const std::string outcome = tool(id).outcome;
        EXPECT_EQ(logged.back(), outcome);
        EXPECT_TRUE(told.insert(outcome).second) << outcome;
        EXPECT_NE(tool(id).run.title, "") << "it can be tried again";
        return outcome;
    };
    EXPECT_THAT(outcomeOf(antigravity, {Stage::ended, 6}), HasSubstr("could not be downloaded"));
    EXPECT_THAT(outcomeOf(antigravity, {Stage::ended, 1}), HasSubstr("failed (code 1)"));
    EXPECT_THAT(outcomeOf(antigravity, {Stage::ended, 130}), HasSubstr("cancelled"));
    EXPECT_THAT(outcomeOf(antigravity, {Stage::closed, 0}), HasSubstr("was closed before"));
    EXPECT_THAT(outcomeOf(antigravity, {Stage::noWindow, 0}), HasSubstr("No terminal"));
    EXPECT_THAT(outcomeOf(antigravity, {Stage::ended, 0}), HasSubstr("known places"));
    EXPECT_THAT(outcomeOf(claude, {Stage::ended, 130}), HasSubstr("login was cancelled"));
    EXPECT_THAT(outcomeOf(claude, {Stage::ended, 6}), HasSubstr("code 6"));
    EXPECT_THAT(outcomeOf(claude, {Stage::closed, 0}), HasSubstr("login was done"));
    EXPECT_THAT(outcomeOf(claude, {Stage::ended, 0}), HasSubstr("without anybody"));
    failure = std::make_error_code(std::errc::no_space_on_device);
    actions.run(claude);
    EXPECT_THAT(tool(claude).outcome, HasSubstr("No space left"));

    // Whatever a script said: an agent that is ready is ready.
    failure.reset();
    actions.run(claude);
    make(claude, "yes");
    end({Stage::closed, 0});
    EXPECT_EQ(tool(claude).status, "Ready");
    EXPECT_EQ(tool(claude).outcome, "");
}

TEST_F(SetupAssistantTest, LooksAgainWithTheKeyboardButAsksOnlyWhomThereIsReasonTo) {
    begin(claude);
    executor.setNow(executor.now() + Seconds(60));
    questions.clear();
    actions.lookAgain();
    EXPECT_EQ(questions[codex], 0) << "ready, and nothing has changed";
    EXPECT_EQ(questions[claude] + questions[antigravity], 2);
    actions.lookAgain();
    answer();
    actions.lookAgain();
    EXPECT_EQ(questions[claude], 1) << "just asked";
    traces[codex] = "gone";
    make(codex, "-");
    actions.lookAgain();
    answer();
    EXPECT_EQ(tool(codex).status, "Not installed");
    EXPECT_THAT(read, IsEmpty());
}

TEST_F(SetupAssistantTest, ComesByItselfUntilItWasFinishedOrPutOff) {
    EXPECT_EQ(firstRun(), true);
    begin();
    EXPECT_EQ(model->content().step, SetupStep::welcome);
    actions.next();
    actions.enableAgent(antigravity, false);
    actions.later();
    EXPECT_EQ(preferences->boolean("SetupAssistantCompleted").value_or(false), false);
    EXPECT_EQ(firstRun(), false) << "put off, and nothing is worse";
    begin();
    EXPECT_EQ(model->content().step, SetupStep::agents) << "where it was left";
    EXPECT_FALSE(model->content().agents.back().isEnabled);
    model->closed();

    make(claude, "-");
    EXPECT_EQ(firstRun(), true) << "a program has gone";
    begin();
    model->closed();
    make(claude, "no");
    EXPECT_EQ(firstRun(), false) << "better than before";
    make(codex, "no");
    EXPECT_EQ(firstRun(), true);
    make(codex, "?");
    make(claude, "yes");
    EXPECT_EQ(firstRun(), false);
    EXPECT_EQ(preferences->boolean("SetupAssistantCompleted"), true) << "nothing is left to do";
    make(codex, "-");
    EXPECT_EQ(firstRun(), std::nullopt);
    begin();
    EXPECT_EQ(model->content().step, SetupStep::tools) << "what is left to do";
}

// Somebody comes because a reading says that nobody is logged in, and the check says that somebody
// is.
TEST_F(SetupAssistantTest, BelievesNeitherACheckNorAReadingThatSayOtherwise) {
    denied = codex;
    begin(codex);
    EXPECT_EQ(tool(codex).status, "Cannot be verified");
    EXPECT_EQ(tool(codex).run.title, "Log in in Terminal");
    actions.run(codex);
    end({Stage::ended, 0});
    EXPECT_EQ(tool(codex).status, "Ready") << "the login is newer than the reading";
    actions.check();
    answer();
    EXPECT_EQ(tool(codex).status, "Cannot be verified");
    denied.reset();
    EXPECT_EQ(tool(codex).status, "Ready") << "it could be read after all";
}

TEST_F(SetupAssistantTest, FollowsAScriptWhileItIsClosedAndLeavesNoTimerBehind) {
    begin(claude);
    actions.run(claude);
    actions.later();
    make(claude, "yes");
    end({Stage::ended, 0});
    EXPECT_THAT(read, ElementsAre("claude"));
    make(claude, "no");
    begin(claude);
    actions.run(claude);
    EXPECT_EQ(executor.timerCount(), 1U);
    model.reset();
    EXPECT_EQ(executor.timerCount(), 0U);
}

TEST_F(SetupAssistantTest, AsksAtTheEndAboutNoticesAndClaudesStatusLine) {
    const auto file = claudeSettingsFile(machine);
    fs::create_directories(file.parent_path());
    begin();
    const auto rows = [&] {
        std::vector<std::string> names;
        for (const SettingRowContent& row : model->content().settings) {
            names.push_back(row.name + (row.button.title.empty() ? "" : ": " + row.button.title));
        }
        return names;
    };
    for (int step = 0; step < 3; ++step) {
        actions.next();
    }
    EXPECT_THAT(rows(),
                ElementsAre("notices", "status-line: Set up …", "launch-at-login", "language"));
    EXPECT_THAT(model->content().statusLineQuestion.text, HasSubstr("statusline"));
    actions.press("status-line");
    EXPECT_TRUE(fs::exists(file));
    EXPECT_THAT(rows(),
                ElementsAre("notices", "status-line: Remove …", "launch-at-login", "language"));

    // What cannot be kept is told here too.
    fs::remove(file);
    fs::create_directory(file);
    actions.press("status-line");
    EXPECT_THAT(model->content().trouble, HasSubstr("settings.json"));
    actions.enableAgent(claude, false);
    EXPECT_THAT(rows(), ElementsAre("notices", "launch-at-login", "language"));

    delivery = NoticeDelivery::unasked;
    actions.change("notices", "off");
    actions.next();
    EXPECT_EQ(allowances, 0) << "nobody wants any";
    actions.change("notices", "on");
    actions.next();
    EXPECT_EQ(allowances, 1) << "the system asks now, not in the middle of the work";
}

} // namespace
} // namespace vellmark::tests
