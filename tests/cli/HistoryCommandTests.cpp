#include "cli/CommandTest.h"
#include "platform/FileLock.h"
#include "support/HistoryDocument.h"

#include <sys/stat.h>

namespace vellmark::tests {
namespace {

using testing::AllOf;
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

TEST_F(StoredFilesCommands, HistoryGivesTheSamplesOldestFirst) {
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

TEST_F(StoredFilesCommands, HistoryTellsWhatItCannotRead) {
    const auto empty = run({"history"});
    EXPECT_EQ(empty.status, 0) << "no file is an empty history";
    EXPECT_EQ(empty.output + empty.errors, "Nothing recorded.\n");
    EXPECT_EQ(empty.output, "");
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

TEST_F(StoredFilesCommands, TheWayOutOfAForeignHistoryIsNamedAndWorks) {
    const auto first = sample("codex", "session", 3, 10);
    const auto second = sample("claude", "weekly", 2, 33.25);
    const std::string foreign = R"({"version":2,"samples":[)" + serialized(toJSON(first)) + "," +
                                serialized(toJSON(second), -1) + R"(,{"odd":{}}]})";
    writeFile(support / "usage-history.json", foreign);
    const auto usage = run({"usage", "--agent", "codex"});
    EXPECT_EQ(usage.status, 0);
    EXPECT_THAT(usage.errors, AllOf(HasSubstr("vellmark history export"),
                                    HasSubstr((support / "usage-history.json").string())));
    EXPECT_THAT(run({"log"}).output, HasSubstr("vellmark history export"));
    EXPECT_THAT(run({"history"}).errors, HasSubstr("vellmark history export"));

    const auto exported = run({"history", "export"});
    EXPECT_EQ(exported.status, 0);
    EXPECT_EQ(samplesOf(exported.output), (std::vector{first, second}));
    EXPECT_EQ(contentOf(support / "usage-history.json"), foreign) << "untouched";

    std::filesystem::rename(support / "usage-history.json", support / "aside.json");
    EXPECT_EQ(run({"usage", "--agent", "codex"}).errors, "");
    EXPECT_FALSE(samplesOf(run({"history", "export"}).output).empty());
    EXPECT_EQ(run({"history", "import"}).status, 2);

    writeFile(support / "usage-history.json", "nothing of ours");
    const auto nothing = run({"history", "export"});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_EQ(nothing.output, "[\n]\n");
}

TEST_F(StoredFilesCommands, FilesThatCannotBeWrittenAreToldOnceOnStandardError) {
    // The agent that can do without the folder.
    setPreferences(R"({"DisabledProviders":["claude","codex"]})");
    writeFile(support, "a file where the folder should be");
    for (const char* command : {"usage", "status"}) {
        const auto result = run({command});
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_THAT(result.output, HasSubstr("% left"));
        EXPECT_EQ(result.errors.find("Files cannot be written"),
                  result.errors.rfind("Files cannot be written"))
            << result.errors;
        EXPECT_THAT(result.errors, HasSubstr("Files cannot be written")) << command;
    }
    ProgramRun watch(setting({"watch"}, 90));
    ASSERT_TRUE(watch.shows("% left"));
    EXPECT_TRUE(watch.shows("Files cannot be written")) << "on the page";
    watch.type("q");
    const std::string after = watch.wait().output;
    EXPECT_NE(after.find("Files cannot be written", after.rfind("\033[?1049l")), std::string::npos)
        << "and when it is gone";
}

TEST_F(StoredFilesCommands, NothingIsWaitedForWhateverStandsInAFilesPlace) {
    namespace fs = std::filesystem;
    const fs::path settings = sandbox.machine().configuration / "Vellmark/preferences.json";
    for (const fs::path& file :
         {support / "last-snapshots.json", support / "usage-history.json", support / "activity.log",
          support / "usage-history.lock", settings}) {
        for (const bool isPipe : {true, false}) {
            fs::create_directories(file.parent_path());
            if (isPipe) {
                ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
            } else {
                fs::create_symlink("/dev/zero", file);
            }
            SCOPED_TRACE(file.string() + (isPipe ? " is a pipe" : " never ends"));
            const auto usage = run({"usage", "--agent", "codex"});
            EXPECT_EQ(usage.status, 0);
            EXPECT_THAT(usage.output, HasSubstr("% left"));
            EXPECT_THAT(usage.errors, HasSubstr(file.string()));
            const auto cached = run({"status", "--cached"});
            EXPECT_EQ(cached.status, 0);
            const bool isShown = file == settings || file.filename() == "last-snapshots.json";
            EXPECT_EQ(isShown, cached.errors.find(file.string()) != std::string::npos);
            run({"log"});
            run({"history"});
            fs::remove(file);
            fs::remove_all(support);
        }
    }
}

TEST_F(StoredFilesCommands, WhatAStoppedProcessKeepsOutIsThereLater) {
    std::error_code error;
    {
        std::vector<std::optional<FileLock>> held;
        for (const char* name : {"usage-history.lock", "activity.lock", "last-snapshots.lock"}) {
            held.push_back(FileLock::acquire(support / name, Seconds(1), error));
            ASSERT_TRUE(held.back());
        }
        EXPECT_EQ(run({"usage", "--agent", "codex"}).status, 0);
        EXPECT_THAT(run({"log"}).output, HasSubstr("info Codex: Session"));
        EXPECT_FALSE(std::filesystem::exists(support / "usage-history.json"));
    }
    EXPECT_EQ(run({"usage", "--agent", "claude"}).status, 0);
    EXPECT_EQ(samplesOf(run({"history", "export", "--agent", "codex"}).output).size(), 2u);
    EXPECT_THAT(contentOf(support / "activity.log"), HasSubstr("info codex: Session"));
}

} // namespace
} // namespace vellmark::tests
