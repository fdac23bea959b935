#include "cli/ProgramRun.h"
#include "model/UsageJSON.h"
#include "support/AgentSandbox.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr Seconds day{86'400};

class StoredFilesCommands : public testing::Test {
protected:
    StoredFilesCommands() { std::filesystem::create_directories(support); }

    ProgramResult run(std::vector<std::string> arguments) {
        const std::string directory = sandbox.machine().home.parent_path().string();
        arguments.insert(arguments.begin(), {"--sandbox", directory});
        return ProgramRun::of({.arguments = std::move(arguments)});
    }

    static UsageHistorySample sample(const char* provider, const char* window, double daysAgo,
                                     double used) {
        UsageHistorySample made;
        made.id = UUID::make();
        made.provider = AgentProviderID(provider);
        made.windowID = window;
        made.capturedAt = ReferenceClock::now() - daysAgo * day;
        made.usedPercent = used;
        return made;
    }
    void write(const char* name, const std::string& text) {
        std::ofstream(support / name, std::ios::binary) << text;
    }

    AgentSandbox sandbox;
    const std::filesystem::path support = sandbox.machine().supportDirectory();
};

TEST_F(StoredFilesCommands, historyGivesTheSamplesOldestFirst) {
    const auto first = sample("codex", "session", 3, 10);
    const auto second = sample("claude", "weekly,\"odd\"", 2, 33.25);
    const auto third = sample("codex", "session", 1, 60);
    write("usage-history.json", historyDocument({third, first, second}));

    EXPECT_EQ(historyFromDocument(run({"history", "--format", "json"}).output),
              (std::vector{first, second, third}));
    EXPECT_EQ(historyFromDocument(
                  run({"history", "--format", "json", "--agent", "codex", "--days", "2"}).output),
              std::vector{third});
    EXPECT_EQ(
        historyFromDocument(run({"history", "--format", "json", "--window", "no such"}).output)
            .size(),
        0u);
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
    write("usage-history.json", R"({"version":2})");
    const auto foreign = run({"history"});
    EXPECT_EQ(foreign.status, 1);
    EXPECT_THAT(foreign.errors, HasSubstr("usage-history.json"));
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
    const std::string directory = sandbox.machine().home.parent_path().string();
    for (const std::string_view key : {"q", "\x03"}) {
        ProgramRun watch(
            {.arguments = {"--sandbox", directory, "watch", "--interval", "1"}, .columns = 90});
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
