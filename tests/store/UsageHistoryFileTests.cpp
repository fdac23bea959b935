#include "store/UsageHistory.h"
#include "store/UsageHistoryFile.h"
#include "store/UsageHistoryRecorder.h"
#include "support/HistoryDocument.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

constexpr double firstInstant = 786'000'000;

Instant at(double seconds) {
    return Instant(Seconds(firstInstant + seconds));
}

/// So many seconds after the first instant.
UsageHistorySample sample(double seconds, double used, const std::string& window = "session") {
    auto made = historySample(AgentProviderID::claude(), window, at(seconds), used);
    made.resetsAt = at(seconds + 3600.25);
    return made;
}

/// One a second.
std::vector<UsageHistorySample> samples(int count) {
    std::vector<UsageHistorySample> made;
    for (int index = 0; index < count; ++index) {
        made.push_back(sample(index, index % 100));
    }
    return made;
}

std::string line(const UsageHistorySample& sample) {
    return serialized(toJSON(sample), -1);
}

AgentUsageSnapshot reading(double seconds, double used) {
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::claude();
    snapshot.windows = {{"session", used, 300, at(1e6)}};
    snapshot.updatedAt = at(seconds);
    return snapshot;
}

/// A program that has started and read the file.
struct Program {
    std::shared_ptr<UsageHistory> history = std::make_shared<UsageHistory>();
    UsageHistoryRecorder recorder;

    /// Reads `used` percent as well, so many seconds after the first instant.
    explicit Program(const fs::path& file, std::optional<double> used = {})
        : recorder(file, history) {
        recorder.load(at(0));
        if (used) {
            record(*used, *used);
        }
    }
    bool record(double seconds, double used) { return recorder.record(reading(seconds, used)); }
    std::size_t count() const { return history->sampleCount(); }
};

class HistoryFile : public testing::Test {
protected:
    TemporaryDirectory directory;
    const fs::path path = directory / "Vellmark/usage-history.json";
    const fs::path waiting = directory / "Vellmark/usage-history.waiting";
    const fs::path damaged = directory / "Vellmark/usage-history.damaged.json";

    std::string text() const { return contentOf(path); }
    void write(const std::string& contents) {
        directory.write("Vellmark/usage-history.json", contents);
    }

    /// The lock, with the file caught up with.
    FileLock ready(UsageHistoryFile& file) {
        std::error_code error;
        auto held = file.lock(error);
        EXPECT_TRUE(held) << error.message();
        file.catchUp(&held.value(), silent);
        return std::move(held.value());
    }
    void append(UsageHistoryFile& file, const std::vector<UsageHistorySample>& samples) {
        const FileLock held = ready(file);
        ASSERT_FALSE(file.append(held, samples));
    }

    std::vector<UsageHistorySample> decoded() const { return samplesOf(text()); }
    /// What a file of these samples holds.
    std::string intactTextOf(const std::vector<UsageHistorySample>& samples) {
        fs::remove(path);
        UsageHistoryFile file(path);
        append(file, samples);
        return text();
    }

    struct Told {
        UsageHistoryFile::Status status;
        std::vector<double> captured;
    };
    Told open(UsageHistoryFile& file) {
        Told told;
        std::error_code error;
        const auto held = file.lock(error);
        told.status = file.catchUp(
            held ? &*held : nullptr,
            {.restart = [&] { told.captured.clear(); },
             .sample =
                 [&](const StoredHistorySample& s) { told.captured.push_back(s.capturedAt); }});
        return told;
    }
    /// Opens a file of these contents, of which nothing is kept aside yet.
    Told openFileOf(const std::string& contents) {
        fs::remove(damaged);
        fs::remove(path);
        write(contents);
        UsageHistoryFile file(path);
        return open(file);
    }

    Program recordOnce(double used) { return Program(path, used); }

    const UsageHistoryFile::Listener silent{.restart = [] {},
                                            .sample = [](const StoredHistorySample&) {}};
};

TEST_F(HistoryFile, IsAValidDocumentAfterEveryAppend) {
    UsageHistoryFile file(path);
    std::vector<UsageHistorySample> written;
    for (int round = 0; round < 5; ++round) {
        std::vector<UsageHistorySample> samples;
        for (int index = 0; index <= round; ++index) {
            samples.push_back(sample(1000 * round + index + 1.0 / 3, 12.5 * round));
        }
        append(file, samples);
        written.insert(written.end(), samples.begin(), samples.end());
        EXPECT_EQ(decoded(), written);
    }
    EXPECT_EQ(std::ranges::count(text(), '\n'), 2 + static_cast<int>(written.size()))
        << "one sample a line";
}

TEST_F(HistoryFile, AnAppendWritesTheNewSamplesAlone) {
    if (!fs::exists("/proc/thread-self/io")) {
        GTEST_SKIP() << "no /proc/thread-self/io to count the bytes with";
    }
#ifdef VELLMARK_ADDRESS_SANITIZER
    GTEST_SKIP() << "the sanitizer looks at memory by writing it to a pipe, which is counted too";
#endif
    const auto writtenByThread = [] {
        std::ifstream io("/proc/thread-self/io");
        std::string name;
        std::uint64_t value = 0;
        while (io >> name >> value && name != "wchar:") {
        }
        return value;
    };
    UsageHistoryFile file(path);
    append(file, samples(1'000));
    const FileLock held = ready(file);
    const std::vector added = {sample(2'000, 1), sample(2'000, 2, "weekly")};
    const std::uint64_t before = writtenByThread();
    ASSERT_FALSE(file.append(held, added));
    EXPECT_EQ(writtenByThread() - before, line(added[0]).size() + line(added[1]).size() + 4 + 3)
        << "with commas and line ends, and the closing bracket on its line";
    EXPECT_EQ(decoded().size(), 1'002u);
}

TEST_F(HistoryFile, TornAnywhereItKeepsEveryCompleteSample) {
    const std::string intact = intactTextOf(samples(3));
    std::vector<std::size_t> ends; // of the samples
    for (auto at = intact.find('}'); at != std::string::npos; at = intact.find('}', at + 1)) {
        ends.push_back(at + 1);
    }
    // Every byte of the last sample and the bracket, and now and then one before.
    const std::size_t lastSample = ends[ends.size() - 2];
    for (std::size_t length = 0; length < intact.size(); length += length < lastSample ? 13 : 1) {
        const auto complete = static_cast<std::size_t>(
            std::ranges::count_if(ends, [&](std::size_t end) { return end <= length; }));
        const Told told = openFileOf(intact.substr(0, length));
        ASSERT_EQ(told.captured.size(), complete) << "cut at " << length;
        // The document is complete once its bracket is there, and an empty file is none.
        const bool isWhole = length == 0 || length >= intact.size() - 1;
        ASSERT_EQ(told.status.state == UsageHistoryFile::State::writable, isWhole) << length;
        if (!isWhole) {
            ASSERT_EQ(contentOf(damaged), intact.substr(0, length));
            ASSERT_EQ(decoded().size(), complete) << "repaired";
        }
        UsageHistoryFile file(path);
        append(file, {sample(3, 4)});
        ASSERT_EQ(decoded().size(), complete + 1);
    }
}

TEST_F(HistoryFile, DamageCostsItsLinesAlone) {
    const std::string intact = intactTextOf(samples(100));
    const auto middle = intact.find("\n{", intact.size() / 2);
    const auto name = intact.find("\"session\"", middle);
    for (const auto& [where, damage] :
         {std::pair(name + 1, std::string("\xFF")), std::pair(middle + 5, std::string(20, '\0')),
          std::pair(intact.find('"'), std::string("x")),
          std::pair(std::size_t{0}, std::string(20, '\0'))}) {
        const auto told = openFileOf(std::string(intact).replace(where, damage.size(), damage));
        EXPECT_EQ(told.captured.size(), 99u) << where;
        EXPECT_EQ(decoded().size(), 99u) << where;
    }
}

TEST_F(HistoryFile, ALinkInItsPlaceIsReadButNeverWritten) {
    const std::string good = line(sample(0, 1));
    fs::create_directories(path.parent_path());
    for (const std::string& content : {"[\n" + good + "\n]\n", "[\n" + good + ",\n{\"id"}) {
        const fs::path elsewhere = directory.write("elsewhere.json", content);
        fs::remove(path);
        fs::create_symlink(elsewhere, path);
        EXPECT_EQ(recordOnce(10).count(), 2u) << "and what was read now";
        EXPECT_EQ(contentOf(elsewhere), content);
        EXPECT_TRUE(fs::is_symlink(path));
    }
    fs::remove(path);
    fs::create_symlink(directory / "nowhere.json", path);
    const auto news = recordOnce(20).recorder.trouble().takeNews();
    EXPECT_TRUE(fs::is_symlink(path)) << "also one that leads nowhere";
    EXPECT_FALSE(fs::exists(directory / "nowhere.json"));
    ASSERT_TRUE(news);
    EXPECT_EQ(news->kind, StorageTrouble::Kind::inTheWay);
    EXPECT_EQ(news->file, path);

    // The user makes room: nothing of what was read meanwhile is lost.
    fs::remove(path);
    recordOnce(30);
    EXPECT_EQ(decoded().size(), 3u);
}

TEST_F(HistoryFile, ThatCanBeReadAgainIsNoTroubleAnyMoreThoughThereIsNothingToWrite) {
    Program running = recordOnce(10);
    fs::rename(path, directory / "aside");
    fs::create_directory(path);
    EXPECT_FALSE(running.record(20, 10));
    EXPECT_TRUE(running.recorder.trouble().takeNews());
    fs::remove(path);
    fs::rename(directory / "aside", path);
    EXPECT_FALSE(running.record(30, 10));
    const auto news = running.recorder.trouble().takeNews();
    ASSERT_TRUE(news);
    EXPECT_EQ(news->kind, StorageTrouble::Kind::recovered);
}

TEST_F(HistoryFile, TheUsersModeStays) {
    UsageHistoryFile file(path);
    append(file, samples(1));
    fs::permissions(path, fs::perms(0640));
    recordOnce(10);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
    write(text() + "trailing damage");
    recordOnce(20);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640)) << "through a replacement";
    fs::permissions(path, fs::perms(0440));
    const std::string before = text();
    recordOnce(30);
    EXPECT_EQ(text(), before) << "read-only is read-only";
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0440));
}

TEST_F(HistoryFile, AnotherFormIsNeverOverwritten) {
    const std::string object =
        R"({"at":"2025-06-01T14:00:00Z","agent":"claude","window":"session","used":3})";
    const std::vector<std::string> forms = {
        R"({"version":2,"samples":[]})",
        "[1,2,3]",
        "[nor this",
        "[\n" + object + ",\n" + object + "\n]\n",
        "[" + object + "]",
        R"([{"id":"2C0B8C3E-8E4B-4E7F-9D48-0F2B6C6D3A11","provider":"claude","windowID":"session",)"
        R"("capturedAt":"2025-06-01T14:00:00Z","usedPercent":3}])",
    };
    for (const std::string& form : forms) {
        write(form);
        Program run(path);
        run.record(0, 10);
        run.record(300, 11);
        run.recorder.compact(at(1e8));
        EXPECT_EQ(text(), form);
        EXPECT_FALSE(fs::exists(damaged)) << form;
        EXPECT_GE(run.count(), 2u) << "this run's readings are shown all the same";
        const auto news = run.recorder.trouble().takeNews();
        ASSERT_TRUE(news) << form;
        EXPECT_EQ(news->kind, StorageTrouble::Kind::foreign);
        EXPECT_EQ(news->file, path);

        // Moved aside, as the user is told to: a new one holds what was read since.
        fs::rename(path, directory / "aside.json");
        UsageHistoryRecorder(path, run.history).record(reading(600, 12));
        EXPECT_EQ(decoded().size(), 3u);
        fs::remove_all(path.parent_path());
    }
}

TEST_F(HistoryFile, WhatCannotBeKeptOnDiskIsKeptInMemoryWithinBounds) {
    write(R"({"version":2})");
    fs::create_directories(waiting); // so that nothing can wait there
    Program run(path);
    AgentUsageSnapshot many = reading(0, 10);
    many.windows.clear();
    for (int index = 0; index < 3'000; ++index) {
        many.windows.push_back({"window" + std::to_string(index), 0, 300, std::nullopt});
    }
    for (int round = 1; round <= 5; ++round) {
        many.updatedAt += Seconds(60);
        for (UsageWindow& window : many.windows) {
            window.usedPercent = round;
        }
        run.recorder.record(many);
    }
    EXPECT_EQ(run.count(), 15'000u);
    EXPECT_EQ(run.recorder.heldBackCount(), UsageHistoryRecorder::mostHeldBack);
}

// --- lines of a newer form

TEST_F(HistoryFile, LinesOfANewerFormStayAsTheyAre) {
    const std::string good = line(sample(-60, 1));
    // With a field more it is a sample all the same; without ours it is not, but there are more.
    const std::string richer = good.substr(0, good.size() - 1) + R"(, "cost" : 3})";
    const std::string other = R"({"at":786000000,"agent":"claude","used": 3})";
    const std::string another = R"({"at":786000001,"agent":"codex","used": 4})";
    const auto expectAllThere = [&](const char* when) {
        const std::string now = text();
        for (const std::string& line : {good, richer, other, another}) {
            EXPECT_NE(now.find("\n" + line), std::string::npos) << when << ": " << line << now;
        }
        EXPECT_NO_THROW(parsedJSON(now)) << when;
    };
    write("[\n" + good + ",\n" + richer + ",\n" + other + ",\n" + another + "\n]\n");
    EXPECT_EQ(recordOnce(50).count(), 3u);
    expectAllThere("after an append");
    EXPECT_FALSE(fs::exists(damaged));

    write(text() + "spoilt");
    recordOnce(60);
    EXPECT_TRUE(fs::exists(damaged));
    expectAllThere("after a repair");

    UsageHistoryFile file(path);
    std::vector<UsageHistorySample> days;
    for (int day = 0; day < 50; ++day) {
        days.push_back(sample(day * 86'400.0, 1));
        days.push_back(sample(day * 86'400.0 + 1, 2));
    }
    append(file, days);
    const std::size_t before = text().size();
    const FileLock held = ready(file);
    ASSERT_FALSE(file.compact(held, at(50 * 86'400.0), silent));
    EXPECT_LT(text().size(), before);
    // The first sample goes, being old and no hour's highest.
    EXPECT_NE(text().find("\n" + richer), std::string::npos);
    EXPECT_NE(text().find("\n" + other), std::string::npos);
    EXPECT_NE(text().find("\n" + another), std::string::npos);
}

// --- damage

TEST_F(HistoryFile, AFlippedBitCostsOneSampleAtMostAndRecordingGoesOn) {
    const std::string intact = intactTextOf(samples(6));
    const std::size_t third = intact.find("\n{", intact.find("\n{", 5) + 1);
    std::vector<std::size_t> bytes = {
        0, 1, 2, intact.size() - 3, intact.size() - 2, intact.size() - 1};
    for (std::size_t at = third; at < intact.find("\n{", third + 1); ++at) {
        bytes.push_back(at);
    }
    int repairs = 0;
    for (const std::size_t at : bytes) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string flipped = intact;
            flipped[at] = static_cast<char>(flipped[at] ^ (1 << bit));
            const Told told = openFileOf(flipped);
            ASSERT_TRUE(told.status.state == UsageHistoryFile::State::writable ||
                        told.status.state == UsageHistoryFile::State::repaired)
                << "byte " << at << " bit " << bit << ": " << flipped.substr(at, 40);
            ASSERT_GE(told.captured.size(), 5u) << "byte " << at << " bit " << bit;
            if (told.status.state == UsageHistoryFile::State::repaired) {
                ++repairs;
                ASSERT_EQ(told.status.aside, damaged);
                ASSERT_EQ(contentOf(damaged), flipped) << "kept byte for byte";
            }
            UsageHistoryFile file(path);
            append(file, {sample(10, 50)});
            ASSERT_GE(decoded().size(), 6u) << "byte " << at << " bit " << bit;
        }
    }
    EXPECT_GT(repairs, 200);
}

TEST_F(HistoryFile, AFileWithASingleSampleIsOursAlsoWhenThatIsSpoilt) {
    const std::string intact = intactTextOf(samples(1));
    for (const char* name : {"provider", "\"id\"", "\":\"", "{", "usedPercent"}) {
        std::string flipped = intact;
        flipped[intact.find(name) + 1] ^= 4;
        EXPECT_EQ(openFileOf(flipped).status.state, UsageHistoryFile::State::repaired) << flipped;
        EXPECT_EQ(contentOf(damaged), flipped);
    }
}

TEST_F(HistoryFile, SpoiltIdentifiersAreDamageHoweverManyThereAre) {
    for (const int intactOnes : {0, 3}) {
        const auto recorded = samples(2 + intactOnes);
        std::string spoilt = intactTextOf(recorded);
        for (const std::size_t index : {0u, 1u}) {
            spoilt.replace(spoilt.find(recorded[index].id.text()), 1, "z");
        }
        EXPECT_EQ(openFileOf(spoilt).status.state, UsageHistoryFile::State::repaired) << intactOnes;
        EXPECT_EQ(decoded().size(), static_cast<std::size_t>(intactOnes));
    }
}

TEST_F(HistoryFile, EveryRepairKeepsItsDamagedFileUpToFive) {
    const auto asideOf = [&](int number) {
        return number == 1 ? damaged
                           : directory / ("Vellmark/usage-history.damaged-" +
                                          std::to_string(number) + ".json");
    };
    std::vector<std::string> written;
    for (int number = 1; number <= 7; ++number) {
        fs::remove(path);
        written.push_back("[\n" + line(sample(number, 1)) + ",\n{torn " + std::to_string(number));
        write(written.back());
        UsageHistoryFile file(path);
        const Told told = open(file);
        ASSERT_EQ(told.status.state, UsageHistoryFile::State::repaired);
        EXPECT_EQ(told.status.aside, asideOf(std::min(number, 5)));
        EXPECT_EQ(contentOf(told.status.aside), written.back());
    }
    for (int number = 1; number < 5; ++number) {
        EXPECT_EQ(contentOf(asideOf(number)), written[static_cast<std::size_t>(number) - 1]);
    }
}

TEST_F(HistoryFile, AnotherLayoutOfTheSameFormIsReadAndContinued) {
    const auto first = sample(0, 1);
    auto second = sample(1, 2, "pool:\"quoted\"\n|weekly");
    second.resetsAt.reset();
    for (const int indent : {-1, 4}) {
        const JSON array = {toJSON(first), toJSON(second)};
        write("\n " + array.dump(indent) + "  \n\n\n\n");
        UsageHistoryFile file(path);
        EXPECT_EQ(open(file).captured.size(), 2u);
        const auto third = sample(2, 3);
        append(file, {third});
        EXPECT_EQ(decoded(), (std::vector{first, second, third}));
    }
}

TEST_F(HistoryFile, NumbersSurviveExactly) {
    UsageHistoryFile file(path);
    std::vector<UsageHistorySample> samples;
    const std::vector odd = {
        1.0 / 3, 786123456.78901234, 99.999999999999986, 1e-7, 1e22, 123456789012345678.,
        5e-324,  33.300000000000004};
    for (std::size_t index = 0; index < odd.size(); ++index) {
        samples.push_back(sample(static_cast<double>(index), odd[index]));
        samples.back().resetsAt = Instant(Seconds(odd[odd.size() - 1 - index]));
    }
    append(file, samples);
    std::vector<double> used;
    UsageHistoryFile again(path);
    again.catchUp(nullptr, {.restart = [] {},
                            .sample = [&](const auto& s) { used.push_back(s.usedPercent); }});
    EXPECT_EQ(used, odd);
}

TEST_F(HistoryFile, FollowsWhatAnotherProcessDoesToIt) {
    Program we(path);
    Program they(path);
    EXPECT_TRUE(we.record(0, 10));
    EXPECT_TRUE(they.record(60, 10)) << "theirs is known now";
    EXPECT_EQ(decoded().size(), 1u) << "the other one has recorded that";
    EXPECT_FALSE(they.record(70, 10));
    EXPECT_TRUE(they.record(120, 11));
    EXPECT_TRUE(we.record(180, 12));
    EXPECT_TRUE(they.record(90, 13)) << "a clock that runs behind";
    EXPECT_TRUE(we.record(200, 12)) << "theirs is known now";
    EXPECT_EQ(we.count(), 4u);
    ASSERT_EQ(decoded().size(), 4u);
    EXPECT_EQ(decoded().back().capturedAt, at(90));

    // A replacement, as a repair makes it, and then one by hand.
    write(text() + "spoilt");
    they.record(300, 20);
    we.record(400, 21);
    EXPECT_EQ(we.count(), 6u);
    EXPECT_EQ(decoded().size(), 6u);
    fs::remove(path);
    we.record(500, 22);
    EXPECT_EQ(decoded().size(), 1u);
}

TEST_F(HistoryFile, WhoCannotHaveTheLockReadsAndWritesLater) {
    {
        Program run(path);
        run.record(0, 10);
        UsageHistoryFile other(path);
        const FileLock held = ready(other);
        ASSERT_FALSE(other.append(held, std::vector{sample(10, 30)}));
        run.record(20, 40);
        EXPECT_EQ(run.history->last({AgentProviderID::claude(), "session"}, at(20))->usedPercent,
                  40);
        EXPECT_EQ(decoded().size(), 2u);
        EXPECT_FALSE(run.recorder.trouble().takeNews()) << "waiting is no trouble";
        EXPECT_EQ(run.recorder.heldBackCount(), 0u) << "it waits on disk";
        EXPECT_TRUE(fs::exists(waiting));
        EXPECT_EQ(Program(path).count(), 3u) << "who starts now knows it too";
    }
    // That run is over without having had the lock again.
    Program next(path);
    EXPECT_EQ(decoded().size(), 3u);
    EXPECT_FALSE(fs::exists(waiting));
    EXPECT_EQ(next.count(), 3u);
    next.record(30, 50);
    EXPECT_EQ(decoded().size(), 4u);
    EXPECT_EQ(next.count(), 4u);
}

TEST_F(HistoryFile, WhatWaitedIsTakenOverOnceAlsoAfterAnInterruption) {
    const std::string known = line(sample(0, 1));
    const std::string added = line(sample(1, 2));
    write("[\n" + known + "\n]\n");
    writeFile(waiting, known + "\n" + added + "\n" + R"({"torn)");
    EXPECT_EQ(recordOnce(20).count(), 3u);
    EXPECT_EQ(decoded().size(), 3u);
    EXPECT_FALSE(fs::exists(waiting));
}

TEST_F(HistoryFile, AStoppedProcessWithTheLockCostsOneWait) {
    UsageHistoryFile other(path);
    const FileLock held = ready(other);
    UsageHistoryRecorder recorder(path, std::make_shared<UsageHistory>());
    const auto start = std::chrono::steady_clock::now();
    for (int index = 0; index < 20; ++index) {
        recorder.record(reading(index, index));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

} // namespace
} // namespace vellmark::tests
