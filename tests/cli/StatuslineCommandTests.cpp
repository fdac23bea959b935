#include "cli/CommandTest.h"
#include "model/UsageJSON.h"
#include "platform/FileLock.h"
#include "presentation/AgentNames.h"
#include "support/ProjectDirectories.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

using nlohmann::json;

constexpr double hour = 3600;

/// Minutes after noon, as the program takes it.
std::string moment(double minutes) {
    return std::to_string(std::llround(unixSeconds(noon) + minutes * 60));
}

class Statusline : public CommandTest {
protected:
    Statusline()
        : input(json::parse(
              contentOf(sourceFile("tests/probes/claude/data/statusline-first.json")))) {
        input["cost"]["total_api_duration_ms"] = 1200;
        input["rate_limits"] = {{"five_hour", window(34, 2.1)}, {"seven_day", window(91.5, 90)}};
    }

    static json window(double used, double hoursLeft) {
        return {{"used_percentage", used},
                {"resets_at", std::llround(unixSeconds(noon) + hoursLeft * hour)}};
    }

    std::string line(const std::string& text, double minutes = 0) {
        const auto result = run({"statusline", "--now", moment(minutes)}, text);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.errors, "");
        return result.output;
    }
    std::string line(double minutes = 0) { return line(input.dump(), minutes); }

    json cached(double minutes, std::vector<std::string> more = {}) {
        std::vector<std::string> arguments{"status",        "--cached", "--json", "--now",
                                           moment(minutes), "--agent",  "claude"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return json::parse(run(arguments).output);
    }

    /// What the last reading of all agents has left, so many minutes before noon.
    void readBefore(double minutes) {
        AgentUsageSnapshot reading =
            live(claude, {tests::window("session", 10, 300, 126),
                          tests::window("weekly", 20, 10'080, 5'400),
                          tests::window("fable-weekly", 50, 10'080, 5'400)});
        reading.updatedAt = noon - Seconds(minutes * 60);
        writeFile(support / "last-snapshots.json", snapshotsDocument({reading}));
    }

    std::string stored() const { return contentOf(support / "status-line.json"); }

    json input;
};

TEST_F(Statusline, ShowsWhatIsLeftAndHandsItOver) {
    readBefore(8);
    EXPECT_EQ(line(), "Session 66% left ↻ 2 h 6 min | Week 8.5% left ↻ 3 d 18 h | "
                      "Week · Fable 50% left ↻ 3 d 18 h\n");
    // Everywhere else, too, and what it did not tell stays.
    const json week = cached(1, {"--window", "weekly"});
    EXPECT_EQ(week["window"]["usedPercent"], 91.5);
    EXPECT_EQ(week["window"]["age"], 60.0);
    const json model = cached(1, {"--window", "fable-weekly"});
    EXPECT_EQ(model["window"]["usedPercent"], 50.0);
    EXPECT_EQ(model["window"]["age"], 9 * 60.0);
    EXPECT_THAT(run({"--language", "de", "statusline", "--now", moment(0)}, input.dump()).output,
                HasSubstr("Sitzung 66\u00a0% übrig ↻ 2 Std. 6 Min. | Woche"));
}

TEST_F(Statusline, FitsTheWidth) {
    const auto fitted = [&](const char* columns) {
        ProgramRun::Setting wanted = setting({"statusline", "--now", moment(0)});
        wanted.input = input.dump();
        wanted.environment["COLUMNS"] = columns;
        return ProgramRun::of(wanted).output;
    };
    EXPECT_EQ(fitted("120"), "Session 66% left ↻ 2 h 6 min | Week 8.5% left ↻ 3 d 18 h\n");
    EXPECT_EQ(fitted("50"), "Session 66% ↻ 2 h 6 min | Week 8.5% ↻ 3 d 18 h\n");
    EXPECT_EQ(fitted("24"), "Session 66% | Week 8.5%\n");
    EXPECT_EQ(fitted("10"), "66% | 8.5%\n");
    EXPECT_EQ(fitted("2"), "6…\n");
}

/// An open session goes on telling the figures of its last answer.
TEST_F(Statusline, DatesFiguresByWhenTheyChanged) {
    json idle = input;
    idle["session_id"] = "another";
    idle["rate_limits"] = {{"five_hour", window(40, -9)}, {"seven_day", window(80, 90)}};
    line(idle.dump(), -600);
    line(0);
    EXPECT_THAT(line(40), HasSubstr("40 min old"));
    line(idle.dump(), 41);
    EXPECT_EQ(cached(41)["window"]["usedPercent"], 91.5);
    EXPECT_EQ(cached(41)["window"]["age"], 41 * 60.0);
    input["cost"]["total_api_duration_ms"] = 1300; // the same figures, told anew
    line(41);
    EXPECT_EQ(cached(41)["window"]["age"], 0.0);
}

TEST_F(Statusline, SurvivesAnyInput) {
    EXPECT_EQ(line("", -1), "Vellmark: no figures yet\n");
    const std::string good = line();
    const std::string before = stored();
    json noLimits = input;
    noLimits.erase("rate_limits");
    std::vector<std::string> inputs{"",
                                    "{",
                                    "[1]",
                                    "\xff\xfe",
                                    noLimits.dump(),
                                    std::string(20'000'000, '{'),
                                    std::string(20'000'000, 'x'),
                                    input.dump() + std::string(2'000'000, ' ')};
    json strange = input;
    for (const json& limits :
         {json(7), json({{"five_hour", 3}, {"seven_day", {{"used_percentage", "91"}}}}),
          json({{"five_hour", window(-1, 2)}, {"seven_day", window(1e9, 90)}}),
          json({{"five_hour", window(50, -1)}, {"seven_day", window(50, 9000)}})}) {
        strange["rate_limits"] = limits;
        inputs.push_back(strange.dump());
    }
    strange = input;
    strange["session_id"] = std::string(5000, 'a');
    inputs.push_back(strange.dump());
    for (const std::string& text : inputs) {
        EXPECT_EQ(line(text), good) << text.substr(0, 200);
        EXPECT_EQ(stored(), before) << text.substr(0, 200);
    }
    writeFile(support / "status-line.json", "[{\"session\":1}]");
    EXPECT_EQ(line(), good) << "what cannot be understood is told again";
}

/// Programs that have been stopped hold locks for ever.
TEST_F(Statusline, WaitsForNobody) {
    readBefore(8);
    std::vector<FileLock> held;
    for (const char* name : {"usage-history.lock", "last-snapshots.lock", "status-line.lock"}) {
        std::error_code error;
        held.push_back(*FileLock::acquire(support / name, FileLock::Seconds(5), error));
    }
    EXPECT_THAT(line(), HasSubstr("Session 66% left")) << "shown though it cannot be kept";
    EXPECT_EQ(cached(0, {"--window", "session"})["window"]["usedPercent"], 10.0);
    held.clear();
    line();
    EXPECT_EQ(cached(0, {"--window", "session"})["window"]["usedPercent"], 34.0);
}

TEST_F(Statusline, SaysNothingInTheSessionsOfItsOwnReadings) {
    input["cwd"] = (support / "ClaudeWorkspace").string();
    EXPECT_EQ(line(), "");
    EXPECT_FALSE(fs::exists(support / "status-line.json"));
}

TEST_F(Statusline, GoesIntoClaudesSettingsAndOutAgain) {
    const auto file = sandbox.machine().home / ".claude/settings.json";
    const std::string original =
        R"({ "env" : {"A": "}{\""},
    "statusLine": {"type": "command", "command": "wc -c; echo 'it''s mine'", "padding": 0},
    "model": "opus"
})";
    writeFile(file, original);
    const auto asked = run({"statusline", "--install"});
    EXPECT_EQ(asked.status, 1) << "nobody can be asked";
    EXPECT_THAT(asked.output, HasSubstr("\n+ "));
    EXPECT_EQ(contentOf(file), original);

    EXPECT_EQ(run({"statusline", "--install", "--yes"}).status, 0);
    EXPECT_EQ(contentOf(file.string() + ".before-vellmark"), original);
    const json settings = json::parse(contentOf(file));
    EXPECT_THAT(run({"statusline", "--install", "--yes"}).errors, HasSubstr("already"));

    // What was there is run with the same input, after ours.
    const std::string command = settings["statusLine"]["command"];
    EXPECT_THAT(command, HasSubstr(builtProgram("vellmark")));
    // As the shell would have it.
    EXPECT_THAT(command, EndsWith("--then 'wc -c; echo '\\''it'\\'''\\''s mine'\\'''"));
    const auto chained = run({"statusline", "--then", "wc -c; echo mine"}, input.dump());
    EXPECT_THAT(chained.output, EndsWith(std::to_string(input.dump().size()) + "\nmine\n"));

    EXPECT_EQ(run({"statusline", "--remove", "--yes"}).status, 0);
    EXPECT_EQ(json::parse(contentOf(file)), json::parse(original));
    writeFile(file, "{ // mine\n}");
    EXPECT_EQ(run({"statusline", "--install", "--yes"}).status, 1);
    EXPECT_EQ(contentOf(file), "{ // mine\n}");
}

} // namespace
} // namespace vellmark::tests
