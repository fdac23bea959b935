#include "cli/CommandTest.h"
#include "support/HistoryDocument.h"

namespace vellmark::tests {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr Seconds day{86'400};

using StoredFilesCommands = CommandTest;

UsageHistorySample sample(const char* provider, const char* window, double daysAgo, double used) {
    UsageHistorySample made;
    made.id = UUID::make();
    made.provider = AgentProviderID(provider);
    made.windowID = window;
    made.capturedAt = ReferenceClock::now() - daysAgo * day;
    made.usedPercent = used;
    return made;
}

TEST_F(StoredFilesCommands, historyGivesTheSamplesOldestFirst) {
    const auto first = sample("codex", "session", 3, 10);
    const auto second = sample("claude", "weekly,\"odd\"", 2, 33.25);
    const auto third = sample("codex", "session", 1, 60);
    JSON document = JSON::array();
    for (const UsageHistorySample& one : {third, first, second}) {
        document.push_back(toJSON(one));
    }
    writeFile(support / "usage-history.json", serialized(document));

    const auto samples = [&](std::vector<std::string> choice) {
        choice.insert(choice.begin(), {"history", "--format", "json"});
        return samplesOf(run(std::move(choice)).output);
    };
    EXPECT_EQ(samples({}), (std::vector{first, second, third}));
    EXPECT_EQ(samples({"--agent", "codex", "--days", "2"}), std::vector{third});
    EXPECT_EQ(samples({"--window", "no such"}).size(), 0u);
    const auto csv = run({"history", "--format", "csv"}).output;
    EXPECT_THAT(csv, testing::StartsWith("capturedAt,provider,windowID,usedPercent,resetsAt\n"));
    EXPECT_THAT(csv, HasSubstr("Z,claude,\"weekly,\"\"odd\"\"\",33.25,\n"));
    const auto table = run({"history"}).output;
    EXPECT_THAT(table, HasSubstr("40% left"));
    EXPECT_THAT(table, HasSubstr("▄")) << "a course that ends at 40% left";
}

TEST_F(StoredFilesCommands, historyTellsWhatItCannotRead) {
    EXPECT_EQ(run({"history"}).status, 0) << "no file is an empty history";
    EXPECT_EQ(run({"history", "--format", "json"}).output, "[\n]\n");
    writeFile(support / "usage-history.json", R"({"version":2})");
    const auto foreign = run({"history"});
    EXPECT_EQ(foreign.status, 1);
    EXPECT_THAT(foreign.errors, HasSubstr("usage-history.json"));
    EXPECT_EQ(foreign.output, "") << "not that nothing is recorded";
    EXPECT_EQ(run({"history", "--format", "xml"}).status, 2);
    EXPECT_EQ(run({"history", "--agent", "nobody"}).status, 2);
    EXPECT_EQ(run({"history", "--days", "-1"}).status, 2);
}

TEST_F(StoredFilesCommands, logTellsWhatRefreshesDid) {
    EXPECT_EQ(run({"log"}).output, "");
    sandbox.uninstall("codex");
    run({"usage"});
    const auto log = run({"log", "--days", "1"});
    EXPECT_EQ(log.status, 0);
    EXPECT_THAT(log.output, HasSubstr("info vellmark: Refresh started (manual)"));
    EXPECT_THAT(log.output, HasSubstr("error codex: "));
    EXPECT_THAT(log.output, HasSubstr("info claude: Session "));
    EXPECT_THAT(log.output, HasSubstr("2 of 3 agents read in "));
    EXPECT_THAT(log.output, Not(HasSubstr("\033")));
}

TEST_F(StoredFilesCommands, watchShowsTheAgentsAndLeavesTheTerminalAsItWas) {
    for (const std::string_view key : {"q", "\x03"}) {
        ProgramRun watch(setting({"watch", "--interval", "1"}, 90));
        ASSERT_TRUE(watch.shows("% left"));
        watch.type(key);
        const ProgramResult result = watch.wait();
        EXPECT_EQ(result.status, key == "q" ? 0 : 130);
        EXPECT_THAT(result.output, testing::EndsWith("\033[?25h\033[?1049l"));
        EXPECT_THAT(sandbox.survivors(), testing::IsEmpty());
    }
}

} // namespace
} // namespace vellmark::tests
