#include "cli/CommandTest.h"
#include "platform/FileLock.h"
#include "support/HistoryDocument.h"

#include <sys/stat.h>

namespace vellmark::tests {
namespace {

constexpr Seconds day{86'400};

using StoredFilesCommands = CommandTest;

UsageHistorySample sample(const char* provider, const char* window, double daysAgo, double used) {
    return historySample(AgentProviderID(provider), window, ReferenceClock::now() - daysAgo * day,
                         used);
}

TEST_F(StoredFilesCommands, HistoryGivesTheSamplesOldestFirst) {
    const auto first = sample("codex", "session", 3, 10);
    const auto second = sample("claude", "weekly,\"odd\"", 2, 33.25);
    const auto third = sample("codex", "session", 1, 60);
    writeFile(support / "usage-history.json", historyDocument({third, first, second}));

    const auto samples = [&](std::vector<std::string> choice) {
        choice.insert(choice.begin(), {"history", "--format", "json"});
        return samplesOf(run(std::move(choice)).output);
    };
    EXPECT_EQ(samples({}), (std::vector{first, second, third}));
    EXPECT_EQ(samples({"--agent", "codex", "--days", "2"}), std::vector{third});
    EXPECT_EQ(samples({"--window", "no such"}).size(), 0u);
    const auto csv = run({"history", "--format", "csv"}).output;
    EXPECT_THAT(csv, StartsWith("capturedAt,provider,windowID,usedPercent,resetsAt\n"));
    EXPECT_THAT(csv, HasSubstr("Z,claude,\"weekly,\"\"odd\"\"\",33.25,\n"));
    const auto table = run({"history"}).output;
    EXPECT_THAT(table, HasSubstr("40% left"));
    EXPECT_THAT(table, HasSubstr("▄")) << "a course that ends at 40% left";
}

TEST_F(StoredFilesCommands, HistoryIsCutByDatesAsPeopleWriteThem) {
    // 10 January 2026, 13:48 UTC, and the five days before.
    const Instant last(Seconds(789'745'680.0));
    std::vector<UsageHistorySample> daily;
    for (int ago = 5; ago >= 0; --ago) {
        daily.push_back(
            historySample(AgentProviderID::codex(), "session", last - ago * day, 10.0 * ago));
    }
    writeFile(support / "usage-history.json", historyDocument(daily));
    const auto days = [&](std::vector<std::string> span) {
        ProgramRun::Setting wanted =
            setting({"history", "export", "--now", "2026-01-10T14:00:00Z"});
        wanted.arguments.insert(wanted.arguments.end(), span.begin(), span.end());
        wanted.environment = {{"TZ", "America/Los_Angeles"}};
        std::string ago;
        for (const UsageHistorySample& one : samplesOf(ProgramRun::of(wanted).output)) {
            ago += std::to_string(static_cast<int>(one.usedPercent) / 10);
        }
        return ago;
    };
    EXPECT_EQ(days({"--since", "2026-01-08"}), "210");
    EXPECT_EQ(days({"--until", "2026-01-08"}), "5432") << "the whole day, there";
    EXPECT_EQ(days({"--since", "2026-01-08 05:48", "--until", "2026-01-09T05:48"}), "2");
    EXPECT_EQ(days({"--since", "05:47"}), "0") << "today";
    EXPECT_EQ(days({"--since", "36h"}), "10");
    EXPECT_EQ(days({"--since", "2d", "--until", "1767967679"}), "1") << "seconds since 1970";
    for (const char* wrong : {"yesterday", "2026-02-30", "25:00", "-3d", "m", "2026-01-08 5"}) {
        EXPECT_EQ(run({"history", "--since", wrong}).status, 2) << wrong;
    }
    EXPECT_EQ(run({"history", "--since", "1d", "--days", "2"}).status, 2);
}

TEST_F(StoredFilesCommands, AnotherHistoryIsTakenIn) {
    const auto ours = sample("codex", "session", 3, 10);
    auto sameMoment = ours;
    sameMoment.id = UUID::make();
    const auto theirs = sample("claude", "weekly", 2, 33.25);
    const auto future = sample("claude", "weekly", -2, 5);
    const auto impossible = sample("claude", "weekly", 1, -50);
    writeFile(support / "usage-history.json", historyDocument({ours}));
    const auto file = sandbox.machine().home / "other.json";
    writeFile(file, historyDocument({theirs, ours, sameMoment, future, impossible}));
    const auto all = [&] { return samplesOf(contentOf(support / "usage-history.json")); };

    const auto first = run({"history", "import", file.string()});
    EXPECT_EQ(first.status, 0) << first.errors;
    EXPECT_THAT(first.output, HasSubstr("Taken: 1. Already there: 2. Refused: 2.\n"));
    EXPECT_EQ(all(), (std::vector{ours, theirs}));
    EXPECT_THAT(run({"history", "import", "-"}, contentOf(file)).output,
                HasSubstr("Taken: 0. Already there: 3."));
    EXPECT_EQ(all(), (std::vector{ours, theirs}));

    const auto cutOff = sample("codex", "weekly", 1, 70);
    const auto damaged =
        run({"history", "import", "-"}, "[\n" + serialized(toJSON(cutOff), -1) + ",\n{\"id\":\"A");
    EXPECT_THAT(damaged.output, HasSubstr("Taken: 1."));
    EXPECT_THAT(damaged.errors, HasSubstr("standard input is damaged"));
    const std::string before = contentOf(support / "usage-history.json");
    for (const std::string foreign : {"", "hello", "{\"version\":2}", "capturedAt,provider\n"}) {
        const auto refused = run({"history", "import", "-"}, foreign);
        EXPECT_EQ(refused.output.find("Taken: 1"), std::string::npos);
        EXPECT_EQ(refused.status, foreign.empty() ? 0 : 1) << foreign;
        EXPECT_EQ(contentOf(support / "usage-history.json"), before);
    }
    EXPECT_EQ(run({"history", "import"}).status, 2);
    EXPECT_EQ(run({"history", "import", (file.string() + ".gone")}).status, 1);
    EXPECT_EQ(run({"history", "import", file.string(), "--agent", "codex"}).status, 2);
    {
        std::error_code error;
        const auto held = FileLock::acquire(support / "usage-history.lock", Seconds(1), error);
        const auto busy = run({"history", "import", file.string()});
        EXPECT_EQ(busy.status, 1);
        EXPECT_THAT(busy.errors, HasSubstr("Another program is holding on to the history"));
    }
    writeFile(support / "usage-history.json", R"({"version":2})");
    EXPECT_EQ(run({"history", "import", file.string()}).status, 1);
    EXPECT_EQ(contentOf(support / "usage-history.json"), R"({"version":2})") << "untouched";
}

TEST_F(StoredFilesCommands, MetricsTellTheLastReadingsAndAreReplacedAtOnce) {
    const std::string readings = R"([{"id":"codex","accountLabel":"me@example.org","plan":"Plus",
        "windows":[{"id":"session","usedPercent":40,"windowDurationMinutes":300,"resetsAt":7200}],
        "balances":[],"notes":[],"source":"live","updatedAt":0,"isIncomplete":false}])";
    writeFile(support / "last-snapshots.json", readings);
    const auto file = sandbox.machine().home / "vellmark.prom";
    const auto written =
        run({"metrics", "--output", file.string(), "--now", "2001-01-01T00:10:00Z"});
    EXPECT_EQ(written.status, 0) << written.errors;
    EXPECT_EQ(written.output, "");
    const std::string text = contentOf(file);
    EXPECT_EQ(text, run({"metrics", "--now", "2001-01-01T00:10:00Z"}).output);
    EXPECT_THAT(text, AllOf(HasSubstr("vellmark_window_left_ratio{agent=\"codex\",window="
                                      "\"session\"} 0.6\n"),
                            Not(HasSubstr("example.org"))));
    EXPECT_THAT(run({"metrics", "--accounts"}).output, HasSubstr("account=\"me@example.org\""));
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0644u) << "a collector is another user";
    EXPECT_EQ(run({"metrics", "-o", (file.parent_path() / "none/x.prom").string()}).status, 1);
    expectNothingLeft();
}

TEST_F(StoredFilesCommands, HistoryTellsWhatItCannotRead) {
    const auto empty = run({"history"});
    EXPECT_EQ(empty.status, 0) << "no file is an empty history";
    EXPECT_EQ(empty.errors, "Nothing recorded.\n");
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

    fs::rename(support / "usage-history.json", support / "aside.json");
    EXPECT_EQ(run({"usage", "--agent", "codex"}).errors, "");
    EXPECT_FALSE(samplesOf(run({"history", "export"}).output).empty());

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
    const fs::path settings = sandbox.machine().configuration / "Vellmark/preferences.json";
    for (const fs::path& file : {support / "last-snapshots.json", support / "usage-history.json",
                                 support / "activity.log", settings}) {
        SCOPED_TRACE(file);
        fs::create_directories(file.parent_path());
        ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
        const auto usage = run({"usage", "--agent", "codex"});
        EXPECT_EQ(usage.status, 0);
        EXPECT_THAT(usage.output, HasSubstr("% left"));
        EXPECT_THAT(usage.errors, HasSubstr(file.string()));
        const bool isRead = file == settings || file.filename() == "last-snapshots.json";
        EXPECT_EQ(isRead,
                  run({"status", "--cached"}).errors.find(file.string()) != std::string::npos);
        run({"log"});
        run({"history"});
        fs::remove(file);
        fs::remove_all(support);
    }
}

} // namespace
} // namespace vellmark::tests
