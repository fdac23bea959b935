#include "platform/FileLock.h"
#include "store/ActivityLines.h"
#include "store/ActivityLog.h"
#include "store/ActivityTexts.h"
#include "support/FileSizeLimit.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace vellmark::tests {
namespace {

const TimeZone zone = *TimeZone::named("Europe/Zurich");
const Instant noon = *parseISO8601("2026-11-20T12:00:00Z", false);
constexpr Seconds day{86'400};

ActivityEntry entry(std::string text, Instant time = noon) {
    return {.level = ActivityEntry::Level::notice,
            .agent = AgentProviderID::codex(),
            .text = std::move(text),
            .time = time};
}

class Log : public testing::Test {
protected:
    TemporaryDirectory directory;
    const fs::path path = directory / "Vellmark/activity.log";
    const fs::path removed = directory / "Vellmark/activity.removed.log";
    ActivityLog log{path};

    /// An entry a day, so many days back.
    void fill(int days, ActivityEntry one = entry("a day")) {
        for (double age = days + 0.5; age > 0; --age) {
            one.time = noon - age * day;
            ASSERT_FALSE(log.append(one, zone));
        }
    }
    /// Another program has the file.
    std::optional<FileLock> hold() {
        std::error_code error;
        return FileLock::acquire(directory / "Vellmark/activity.lock", Seconds(1), error);
    }
    std::size_t keptCount() { return log.entries(noon - 400 * day, zone).size(); }
};

TEST_F(Log, WritesOneLineAnEntryInLocalTime) {
    ASSERT_FALSE(log.append(entry("Zeit überschritten"), zone));
    ActivityEntry program = entry("started");
    program.agent.reset();
    program.level = ActivityEntry::Level::error;
    ASSERT_FALSE(log.append(program, zone));
    EXPECT_EQ(contentOf(path), "2026-11-20 13:00:00 notice codex: Zeit überschritten\n"
                               "2026-11-20 13:00:00 error vellmark: started\n");
    EXPECT_EQ(log.entries(noon, zone), (std::vector{entry("Zeit überschritten"), program}));
}

TEST_F(Log, ATornLastLineCostsNoEntryAfterIt) {
    ASSERT_FALSE(log.append(entry("torn by a power loss"), zone));
    fs::resize_file(path, fs::file_size(path) - 12);
    ASSERT_FALSE(log.append(entry("next"), zone));
    EXPECT_EQ(contentOf(path), "2026-11-20 13:00:00 notice codex: torn by a\n"
                               "2026-11-20 13:00:00 notice codex: next\n");
}

TEST_F(Log, WritesOnAfterADiskThatTookHalfALine) {
    ASSERT_FALSE(log.append(entry("first"), zone));
    const std::string first = contentOf(path);
    {
        const FileSizeLimit limit(first.size() + 10);
        EXPECT_TRUE(log.append(entry("second"), zone));
        EXPECT_EQ(contentOf(path), first) << "half a line stays";
        EXPECT_TRUE(log.append(entry("third"), zone));
    }
    ASSERT_FALSE(log.append(entry("fourth"), zone));
    EXPECT_EQ(log.entries(noon, zone),
              (std::vector{entry("first"), entry("second"), entry("third"), entry("fourth")}));
}

TEST_F(Log, NoEntryCanHoldALineBreakOrControlCharacter) {
    ActivityEntry hostile = entry("one\ntwo\r\nthree\x1b[31mred\x1b]0;title\x07 four\x7f\x01"
                                  "\xC2\x85"
                                  "five\xE2\x80\xA8six\tseven\xff");
    hostile.agent = AgentProviderID("co\ndex: 2026-11-20");
    ASSERT_FALSE(log.append(hostile, zone));
    const std::string text = contentOf(path);
    EXPECT_EQ(std::ranges::count(text, '\n'), 1);
    for (const char character : text.substr(0, text.size() - 1)) {
        const auto byte = static_cast<unsigned char>(character);
        EXPECT_TRUE(byte >= 0x20 && byte != 0x7f) << static_cast<int>(byte);
    }
    EXPECT_EQ(text.find("\xC2\x85"), std::string::npos);
    EXPECT_EQ(text.find("\xE2\x80\xA8"), std::string::npos);
}

TEST_F(Log, TrimDropsWhatIsOlderThan30Days) {
    fill(40);
    ASSERT_FALSE(log.trim(noon, zone));
    ASSERT_EQ(keptCount(), 30u);
    EXPECT_EQ(log.entries({}, zone).front().time, noon - 29.5 * day);
    EXPECT_EQ(std::ranges::count(contentOf(removed), '\n'), 11) << "until tomorrow";

    struct stat before {};
    struct stat after {};
    ::stat(path.c_str(), &before);
    ASSERT_FALSE(log.trim(noon, zone));
    ::stat(path.c_str(), &after);
    EXPECT_EQ(before.st_ino, after.st_ino) << "nothing to drop, nothing written";
    ASSERT_FALSE(log.trim(noon + day, zone));
    EXPECT_EQ(std::ranges::count(contentOf(removed), '\n'), 1);
}

TEST_F(Log, IsTrimmedOnceTheOldestLineIsADayTooOld) {
    EXPECT_FALSE(log.trimWhenDue(noon, zone)) << "there is no file yet";
    fill(30);
    ASSERT_FALSE(log.trimWhenDue(noon, zone));
    EXPECT_EQ(keptCount(), 31u);
    ASSERT_FALSE(log.trimWhenDue(noon + day, zone));
    EXPECT_EQ(keptCount(), 29u);
}

TEST_F(Log, LinesOfOtherPeopleDoNoHarm) {
    directory.write("Vellmark/activity.log",
                    "garbage\n\n2026-11-31 12:00:00 info codex: odd\n2026-11-20 13:00:00\n"
                    "2026-13-20 13:00:00 info codex: odd\n2026-11-20 24:00:00 info codex: odd\n"
                    "2026-11-20 13:60:00 info codex: odd\n2026-11-20 13:00:60 info codex: odd\n"
                    "2026-11-20 13:00:00 loud codex: what\n2026-11-20 13:00:01 info codex: fine\n"
                    "2026-11-20 13:00:02 info codex: cut o");
    const auto entries = log.entries(noon, zone);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.front().text, "fine");
    ASSERT_FALSE(log.trim(noon, zone));
}

TEST_F(Log, SeveralWritersLoseNothing) {
    constexpr int each = 200;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 3; ++writer) {
        writers.emplace_back([this] {
            ActivityLog own(path);
            for (int index = 0; index < each; ++index) {
                own.append(entry("line"), zone);
                if (index % 50 == 0) {
                    own.trim(noon, zone);
                }
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    EXPECT_EQ(log.entries(noon, zone).size(), 3u * each);
}

TEST_F(Log, WaitsOnDiskWhileSomebodyElseHasTheFile) {
    {
        const auto held = hold();
        ASSERT_TRUE(held);
        ActivityLog run(path);
        EXPECT_FALSE(run.append(entry("first"), zone));
        EXPECT_FALSE(run.append(entry("second"), zone));
        EXPECT_EQ(run.entries(noon, zone).size(), 2u) << "shown, though not in the file";
        EXPECT_FALSE(fs::exists(path));
    }
    // That run is over.
    EXPECT_FALSE(log.append(entry("third"), zone));
    const auto entries = log.entries(noon, zone);
    EXPECT_EQ(entries, (std::vector{entry("first"), entry("second"), entry("third")}));
    EXPECT_EQ(std::ranges::count(contentOf(path), '\n'), 3);
}

/// One entry of each text, with everything in its arguments that a file must not take amiss.
std::vector<ActivityEntry> everyKind(const Localization& words) {
    AgentUsageSnapshot reading;
    reading.id = AgentProviderID::claude();
    reading.windows = {{.id = "session", .usedPercent = 9.4, .windowDurationMinutes = 300},
                       {.id = "limit:spark|weekly", .usedPercent = 98, .label = "Spark"}};
    reading.notes = {{SnapshotNote::ClaudeEndMarkerMissing{"line\nbreak\t\"\x1b[31m\xff"}},
                     {SnapshotNote::ClaudeTiming{1, 2, 3, 4, 5, 12'345}},
                     {SnapshotNote::ReadingWay{"query", 2100}},
                     {SnapshotNote::AgentSays{"Grüße"}}};
    auto entries = ActivityTexts::notes(reading, words);
    for (ActivityEntry& critical : ActivityTexts::turnedCritical(nullptr, reading, noon, words)) {
        entries.push_back(std::move(critical));
    }
    using News = StorageTrouble::News;
    for (ActivityEntry one :
         {ActivityTexts::refreshStarted(RefreshTrigger::wake, words),
          ActivityTexts::refreshFinished(RefreshTrigger::timer, 2, 3, Seconds(5.94), words),
          ActivityTexts::agentRead(reading, Seconds(1.25), words),
          ActivityTexts::agentRead({.id = AgentProviderID::codex()}, Seconds(1), words),
          ActivityTexts::agentFailed(AgentProviderID::codex(),
                                     UsageProviderError::claudeReadFailed(3, "no\nway"), words),
          ActivityTexts::agentFailed(AgentProviderID::codex(),
                                     UsageProviderError::other("in its own words"), words),
          ActivityTexts::agentRetried(AgentProviderID::codex(), Seconds(20), words),
          ActivityTexts::orderChanged({AgentProviderID::codex(), AgentProviderID("new")}, words),
          ActivityTexts::storageTrouble(
              News{.kind = StorageTrouble::Kind::undecoded, .file = "/a/b", .part = "codex"},
              words),
          ActivityTexts::entry(ActivityEntry::Level::info, std::nullopt,
                               "log.loginItemReregistered", {"/from", "/to"}, words)}) {
        entries.push_back(std::move(one));
    }
    return entries;
}

TEST_F(Log, TellsItsEntriesInAnotherLanguage) {
    const Localization german("de", "de_DE", "UTC");
    const Localization english("en", "en_US", "UTC");
    const auto written = everyKind(german);
    ASSERT_GE(written.size(), 14u);
    for (const ActivityEntry& one : written) {
        ASSERT_FALSE(log.append(one, zone));
    }
    auto read = log.entries(Instant(), zone);
    ASSERT_EQ(read.size(), written.size());
    ActivityTexts::tell(read, german);
    EXPECT_EQ(read[0].text,
              "Ende der Nutzungsseite nicht erkannt; sie endete mit „line break \"�“");
    ActivityTexts::tell(read, english);
    const auto expected = everyKind(english);
    for (std::size_t index = 0; index < read.size(); ++index) {
        EXPECT_EQ(ActivityLines::text(read[index], zone).substr(20),
                  ActivityLines::text(expected[index], zone).substr(20));
        EXPECT_EQ(read[index].message.language, "en") << read[index].text;
    }
}

TEST_F(Log, KeepsATextWhoseMessageIsNotKnown) {
    const std::string head = "2026-11-20 13:00:00 info codex: As it was written\n";
    const std::vector<std::string> seconds = {
        "",
        "\tlog.of.tomorrow de []\n",
        "\tlog.agent.retry de [{\"fortnights\":2}]\n",
        "\tlog.agent.retry de [{\"wholeSeconds\":\"x\"}]\n",
        "\tlog.agent.retry de [{\"figures\":[[\"session\"]]}]\n",
        "\tlog.agent.retry de {\"a\":1}\n",
        "\tlog.agent.retry de [\n", // torn
        "\tlog.agent.ret\n",
        "\t\n",
    };
    std::string text = "\tlog.agent.backAgain de []\n"; // its entry is gone
    for (const std::string& second : seconds) {
        text += head + second;
    }
    directory.write("Vellmark/activity.log", text);
    auto entries = log.entries(noon, zone);
    ActivityTexts::tell(entries, Localization("en"));
    ASSERT_EQ(entries.size(), seconds.size());
    for (const ActivityEntry& one : entries) {
        EXPECT_EQ(one.text, "As it was written") << one.message.arguments;
    }
}

TEST_F(Log, MessagesShareTheFateOfTheirEntries) {
    fill(40, ActivityTexts::refreshAborted(Localization("en")));
    ASSERT_FALSE(log.trim(noon, zone));
    EXPECT_EQ(std::ranges::count(contentOf(path), '\n'), 2 * 30);
    EXPECT_EQ(std::ranges::count(contentOf(removed), '\n'), 2 * 11);
    // What had gone comes back when the log's last days are gone, each with its own message.
    const std::string kept = contentOf(path);
    directory.write("Vellmark/activity.log", kept.substr(0, kept.size() / 2));
    ASSERT_FALSE(log.trim(noon - 20 * day, zone));
    const auto entries = log.entries(Instant(), zone);
    ASSERT_EQ(entries.size(), 26u);
    for (const ActivityEntry& one : entries) {
        EXPECT_EQ(one.message.key, "log.refreshAborted.terminated");
    }
}

TEST_F(Log, TellsWhatWasAddedSinceTheLastLook) {
    ActivityLog::Place place;
    const auto look = [&] { return log.news(place, noon - 30 * day, zone); };
    const auto texts = [](const ActivityLog::News& news) {
        std::string all = news.startsAnew ? "anew:" : "";
        for (const ActivityEntry& one : news.entries) {
            all += " " + one.text;
        }
        return all;
    };
    EXPECT_EQ(texts(look()), "anew:") << "there is no file yet";
    ASSERT_FALSE(log.append(entry("one"), zone));
    ASSERT_FALSE(log.append(entry("old", noon - 40 * day), zone));
    EXPECT_EQ(texts(look()), "anew: one");
    EXPECT_EQ(texts(look()), "");
    ActivityLog other(path);
    ASSERT_FALSE(other.append(entry("two"), zone));
    std::ofstream(path, std::ios::app) << "2026-11-20 13:00:00 notice codex: half";
    EXPECT_EQ(texts(look()), " two");
    std::ofstream(path, std::ios::app) << " a line\n";
    EXPECT_EQ(texts(look()), " half a line");
    // As trimming does it: another file.
    directory.write("Vellmark/trimmed", contentOf(path));
    fs::rename(directory / "Vellmark/trimmed", path);
    EXPECT_EQ(texts(look()), "anew: one two half a line");
    {
        const auto held = hold();
        EXPECT_FALSE(log.append(entry("waits"), zone));
        EXPECT_EQ(texts(look()), "anew: one two half a line waits");
    }
    ASSERT_FALSE(log.append(entry("three"), zone));
    EXPECT_EQ(texts(look()), "anew: one two half a line waits three");
}

} // namespace
} // namespace vellmark::tests
