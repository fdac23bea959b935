#include "cli/CommandTest.h"
#include "store/ActivityLog.h"

#include <nlohmann/json.hpp>

#include <csignal>

namespace vellmark::tests {
namespace {

using Level = ActivityEntry::Level;

class LogCommand : public CommandTest {
protected:
    void SetUp() override { fs::create_directories(support); }

    void add(Level level, std::optional<AgentProviderID> agent, const char* text) {
        ActivityLog log(support / "activity.log");
        ASSERT_FALSE(log.append({level, agent, text, ReferenceClock::now()}, TimeZone::system()));
    }
};

TEST_F(LogCommand, TellsWhatRefreshesDid) {
    const ProgramResult empty = run({"log"});
    EXPECT_EQ(empty.output, "");
    EXPECT_EQ(empty.errors, "No entries.\n");
    EXPECT_EQ(empty.status, 0);
    sandbox.uninstall("codex");
    run({"usage"});
    const auto log = run({"log", "--days", "1"});
    EXPECT_EQ(log.status, 0);
    EXPECT_THAT(log.output, AllOf(HasSubstr("info vellmark: Refresh started (manual)"),
                                  HasSubstr("error Codex: "), HasSubstr("info Claude Code: "),
                                  HasSubstr("2 of 3 agents read in "), Not(HasSubstr("\033"))));
}

TEST_F(LogCommand, PicksByAgentAndLevel) {
    add(Level::info, std::nullopt, "of the program");
    add(Level::notice, AgentProviderID::codex(), "a notice");
    add(Level::error, AgentProviderID::claude(), "an error");
    EXPECT_THAT(run({"log", "--agent", "codex"}).output,
                AllOf(HasSubstr("notice Codex: a notice\n"), Not(HasSubstr("error"))));
    EXPECT_THAT(run({"log", "--agent", "vellmark"}).output,
                AllOf(HasSubstr("of the program"), Not(HasSubstr("notice"))));
    EXPECT_THAT(run({"log", "--level", "notice"}).output,
                AllOf(HasSubstr("a notice"), HasSubstr("an error"), Not(HasSubstr("program"))));
    EXPECT_EQ(run({"log", "--agent", "nobody"}).status, 2);
    const auto list = nlohmann::json::parse(run({"log", "--level", "error", "--json"}).output);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].at("text"), "an error");
    EXPECT_EQ(run({"log", "--json", "--agent", "antigravity"}).output, "[]\n");
}

TEST_F(LogCommand, FollowsAlsoWhenOldEntriesAreDropped) {
    add(Level::info, std::nullopt, "before");
    ProgramRun log(setting({"log", "--follow", "--level", "notice"}, 100));
    add(Level::error, std::nullopt, "the first");
    ASSERT_TRUE(log.shows("the first"));
    add(Level::info, std::nullopt, "not asked for");
    add(Level::notice, std::nullopt, "the second");
    ASSERT_TRUE(log.shows("the second"));
    // As trimming does it: another file, without the oldest lines.
    const auto file = support / "activity.log";
    const std::string lines = contentOf(file);
    writeFile(support / "trimmed", lines.substr(lines.find('\n') + 1));
    fs::rename(support / "trimmed", file);
    add(Level::notice, std::nullopt, "the third");
    ASSERT_TRUE(log.shows("the third"));
    kill(log.pid(), SIGINT);
    const ProgramResult result = log.wait();
    EXPECT_EQ(result.status, 128 + SIGINT);
    for (const char* once : {"the first", "the second", "the third"}) {
        EXPECT_EQ(result.output.find(once), result.output.rfind(once)) << once;
    }
    EXPECT_THAT(result.output, AllOf(Not(HasSubstr("before")), Not(HasSubstr("not asked"))));
}

} // namespace
} // namespace vellmark::tests
