#include "model/UsageJSON.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryFile.h"
#include "store/UsageHistoryRecorder.h"
#include "support/HistoryDocument.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

namespace fs = std::filesystem;

constexpr double firstInstant = 786'000'000;

UsageHistorySample sample(double seconds, double used, const std::string& window = "session") {
    UsageHistorySample made;
    made.id = UUID::make();
    made.provider = AgentProviderID::claude();
    made.windowID = window;
    made.capturedAt = Instant(Seconds(seconds));
    made.usedPercent = used;
    made.resetsAt = Instant(Seconds(seconds + 3600.25));
    return made;
}

AgentUsageSnapshot reading(double seconds, double used) {
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::claude();
    snapshot.windows = {{"session", used, 300, Instant(Seconds(firstInstant + 1e6))}};
    snapshot.updatedAt = Instant(Seconds(seconds));
    return snapshot;
}

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

    /// What one run of the program does that reads `used` percent, and what it knows then.
    std::shared_ptr<UsageHistory> recordOnce(double used) {
        auto history = std::make_shared<UsageHistory>();
        lastRecorder = std::make_unique<UsageHistoryRecorder>(path, history);
        lastRecorder->load(at(used));
        lastRecorder->record(reading(firstInstant + used, used));
        return history;
    }
    static Instant at(double seconds) { return Instant(Seconds(firstInstant + seconds)); }

    std::unique_ptr<UsageHistoryRecorder> lastRecorder;
    const UsageHistoryFile::Listener silent{.restart = [] {},
                                            .sample = [](const StoredHistorySample&) {}};
};

TEST_F(HistoryFile, IsAValidDocumentAfterEveryAppend) {
    UsageHistoryFile file(path);
    std::vector<UsageHistorySample> written;
    for (int round = 0; round < 5; ++round) {
        std::vector<UsageHistorySample> samples;
        for (int index = 0; index <= round; ++index) {
            samples.push_back(sample(firstInstant + 1000 * round + index + 1.0 / 3, 12.5 * round));
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
    std::vector<UsageHistorySample> many;
    for (int index = 0; index < 1'000; ++index) {
        many.push_back(sample(firstInstant + index, index % 100));
    }
    UsageHistoryFile file(path);
    append(file, many);
    const FileLock held = ready(file);
    const std::vector<UsageHistorySample> added = {sample(firstInstant + 2'000, 1),
                                                   sample(firstInstant + 2'000, 2, "weekly")};
    std::size_t size = 0;
    for (const UsageHistorySample& one : added) {
        size += serialized(toJSON(one), -1).size() + 2; // comma and line end
    }
    const std::uint64_t before = writtenByThread();
    ASSERT_FALSE(file.append(held, added));
    EXPECT_EQ(writtenByThread() - before, size + 3) << "and the closing bracket on its line";
    EXPECT_EQ(decoded().size(), 1'002u);
}

TEST_F(HistoryFile, TornAnywhereItKeepsEveryCompleteSample) {
    UsageHistoryFile whole(path);
    append(whole,
           {sample(firstInstant, 1), sample(firstInstant + 1, 2), sample(firstInstant + 2, 3)});
    const std::string intact = text();
    std::vector<std::size_t> ends; // of the samples
    for (auto at = intact.find('}'); at != std::string::npos; at = intact.find('}', at + 1)) {
        ends.push_back(at + 1);
    }
    // Every byte of the last sample and the bracket, and now and then one before.
    const std::size_t lastSample = ends[ends.size() - 2];
    for (std::size_t length = 0; length < intact.size(); length += length < lastSample ? 13 : 1) {
        fs::remove(damaged);
        write(intact.substr(0, length));
        const auto complete = static_cast<std::size_t>(
            std::ranges::count_if(ends, [&](std::size_t end) { return end <= length; }));
        UsageHistoryFile file(path);
        const Told told = open(file);
        ASSERT_EQ(told.captured.size(), complete) << "cut at " << length;
        // The document is complete once its bracket is there, and an empty file is none.
        const bool isWhole = length == 0 || length >= intact.size() - 1;
        ASSERT_EQ(told.status.state == UsageHistoryFile::State::writable, isWhole) << length;
        if (!isWhole) {
            ASSERT_EQ(contentOf(damaged), intact.substr(0, length));
            ASSERT_EQ(decoded().size(), complete) << "repaired";
        }
        append(file, {sample(firstInstant + 3, 4)});
        ASSERT_EQ(decoded().size(), complete + 1);
    }
}

TEST_F(HistoryFile, DamageCostsItsLinesAlone) {
    UsageHistoryFile whole(path);
    std::vector<UsageHistorySample> samples;
    for (int index = 0; index < 100; ++index) {
        samples.push_back(sample(firstInstant + index, index));
    }
    append(whole, samples);
    const std::string intact = text();
    const auto middle = intact.find("\n{", intact.size() / 2);
    const auto name = intact.find("\"session\"", middle);
    for (const auto& [where, damage] :
         {std::pair(name + 1, std::string("\xFF")), std::pair(middle + 5, std::string(20, '\0')),
          std::pair(intact.find('"'), std::string("x")),
          std::pair(std::size_t{0}, std::string(20, '\0'))}) {
        fs::remove(damaged);
        const std::string spoilt = std::string(intact).replace(where, damage.size(), damage);
        write(spoilt);
        UsageHistoryFile file(path);
        EXPECT_EQ(open(file).captured.size(), 99u) << where;
        EXPECT_EQ(decoded().size(), 99u) << where;
    }
}

TEST_F(HistoryFile, ALinkInItsPlaceIsReadButNeverWritten) {
    const std::string good = serialized(toJSON(sample(firstInstant, 1)), -1);
    fs::create_directories(path.parent_path());
    for (const std::string& content : {"[\n" + good + "\n]\n", "[\n" + good + ",\n{\"id"}) {
        const fs::path elsewhere = directory.write("elsewhere.json", content);
        fs::remove(path);
        fs::create_symlink(elsewhere, path);
        const auto history = recordOnce(10);
        EXPECT_EQ(history->sampleCount(), 2u) << "and what was read now";
        EXPECT_EQ(contentOf(elsewhere), content);
        EXPECT_TRUE(fs::is_symlink(path));
    }
    fs::remove(path);
    fs::create_symlink(directory / "nowhere.json", path);
    recordOnce(20);
    EXPECT_TRUE(fs::is_symlink(path)) << "also one that leads nowhere";
    EXPECT_FALSE(fs::exists(directory / "nowhere.json"));
    const auto news = lastRecorder->trouble().takeNews();
    ASSERT_TRUE(news);
    EXPECT_EQ(news->kind, StorageTrouble::Kind::inTheWay);
    EXPECT_EQ(news->file, path);

    // The user makes room: nothing of what was read meanwhile is lost.
    fs::remove(path);
    recordOnce(30);
    EXPECT_EQ(decoded().size(), 3u);
}

TEST_F(HistoryFile, TheUsersModeStays) {
    UsageHistoryFile file(path);
    append(file, {sample(firstInstant, 1)});
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
        auto history = std::make_shared<UsageHistory>();
        UsageHistoryRecorder recorder(path, history);
        recorder.load(Instant(Seconds(firstInstant)));
        recorder.record(reading(firstInstant, 10));
        recorder.record(reading(firstInstant + 300, 11));
        recorder.compact(Instant(Seconds(firstInstant + 1e8)));
        EXPECT_EQ(text(), form);
        EXPECT_FALSE(fs::exists(damaged)) << form;
        EXPECT_GE(history->sampleCount(), 2u) << "this run's readings are shown all the same";
        const auto news = recorder.trouble().takeNews();
        ASSERT_TRUE(news) << form;
        EXPECT_EQ(news->kind, StorageTrouble::Kind::foreign);
        EXPECT_EQ(news->file, path);

        // Moved aside, as the user is told to: a new one holds what was read since.
        fs::rename(path, directory / "aside.json");
        UsageHistoryRecorder(path, history).record(reading(firstInstant + 600, 12));
        EXPECT_EQ(decoded().size(), 3u);
        fs::remove_all(path.parent_path());
    }
}

TEST_F(HistoryFile, WhatCannotBeKeptOnDiskIsKeptInMemoryWithinBounds) {
    write(R"({"version":2})");
    fs::create_directories(waiting); // so that nothing can wait there
    auto history = std::make_shared<UsageHistory>();
    UsageHistoryRecorder recorder(path, history);
    recorder.load(Instant(Seconds(firstInstant)));
    AgentUsageSnapshot many = reading(firstInstant, 10);
    many.windows.clear();
    for (int index = 0; index < 3'000; ++index) {
        many.windows.push_back({"window" + std::to_string(index), 0, 300, std::nullopt});
    }
    for (int round = 1; round <= 5; ++round) {
        many.updatedAt += Seconds(60);
        for (UsageWindow& window : many.windows) {
            window.usedPercent = round;
        }
        recorder.record(many);
    }
    EXPECT_EQ(history->sampleCount(), 15'000u);
    EXPECT_EQ(recorder.heldBackCount(), UsageHistoryRecorder::mostHeldBack);
}

// --- lines of a newer form

TEST_F(HistoryFile, LinesOfANewerFormStayAsTheyAre) {
    const std::string good = serialized(toJSON(sample(firstInstant - 60, 1)), -1);
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
    EXPECT_EQ(recordOnce(50)->sampleCount(), 3u);
    expectAllThere("after an append");
    EXPECT_FALSE(fs::exists(damaged));

    write(text() + "spoilt");
    recordOnce(60);
    EXPECT_TRUE(fs::exists(damaged));
    expectAllThere("after a repair");

    UsageHistoryFile file(path);
    std::vector<UsageHistorySample> days;
    for (int day = 0; day < 50; ++day) {
        days.push_back(sample(firstInstant + day * 86'400.0, 1));
        days.push_back(sample(firstInstant + day * 86'400.0 + 1, 2));
    }
    append(file, days);
    const std::size_t before = text().size();
    const FileLock held = ready(file);
    ASSERT_FALSE(file.compact(held, Instant(Seconds(firstInstant + 50 * 86'400.0)), silent));
    EXPECT_LT(text().size(), before);
    // The first sample goes, being old and no hour's highest.
    EXPECT_NE(text().find("\n" + richer), std::string::npos);
    EXPECT_NE(text().find("\n" + other), std::string::npos);
    EXPECT_NE(text().find("\n" + another), std::string::npos);
}

// --- damage

TEST_F(HistoryFile, AFlippedBitCostsOneSampleAtMostAndRecordingGoesOn) {
    UsageHistoryFile whole(path);
    std::vector<UsageHistorySample> samples;
    for (int index = 0; index < 6; ++index) {
        samples.push_back(sample(firstInstant + index, index));
    }
    append(whole, samples);
    const std::string intact = text();
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
            fs::remove(damaged);
            fs::remove(path);
            write(flipped);
            UsageHistoryFile file(path);
            const Told told = open(file);
            ASSERT_TRUE(told.status.state == UsageHistoryFile::State::writable ||
                        told.status.state == UsageHistoryFile::State::repaired)
                << "byte " << at << " bit " << bit << ": " << flipped.substr(at, 40);
            ASSERT_GE(told.captured.size(), 5u) << "byte " << at << " bit " << bit;
            if (told.status.state == UsageHistoryFile::State::repaired) {
                ++repairs;
                ASSERT_EQ(told.status.aside, damaged);
                ASSERT_EQ(contentOf(damaged), flipped) << "kept byte for byte";
            }
            const FileLock held = ready(file);
            ASSERT_FALSE(file.append(held, std::vector{sample(firstInstant + 10, 50)}));
            ASSERT_GE(decoded().size(), 6u) << "byte " << at << " bit " << bit;
        }
    }
    EXPECT_GT(repairs, 200);
}

TEST_F(HistoryFile, AFileWithASingleSampleIsOursAlsoWhenThatIsSpoilt) {
    UsageHistoryFile whole(path);
    append(whole, {sample(firstInstant, 1)});
    const std::string intact = text();
    for (const char* name : {"provider", "\"id\"", "\":\"", "{", "usedPercent"}) {
        fs::remove(path);
        fs::remove(damaged);
        std::string flipped = intact;
        flipped[intact.find(name) + 1] ^= 4;
        write(flipped);
        UsageHistoryFile file(path);
        EXPECT_EQ(open(file).status.state, UsageHistoryFile::State::repaired) << flipped;
        EXPECT_EQ(contentOf(damaged), flipped);
    }
}

TEST_F(HistoryFile, SpoiltIdentifiersAreDamageHoweverManyThereAre) {
    for (const int intactOnes : {0, 3}) {
        fs::remove(path);
        UsageHistoryFile whole(path);
        std::vector<UsageHistorySample> samples;
        for (int index = 0; index < 2 + intactOnes; ++index) {
            samples.push_back(sample(firstInstant + index, index));
        }
        append(whole, samples);
        std::string spoilt = text();
        for (int index = 0; index < 2; ++index) {
            spoilt.replace(spoilt.find(samples[static_cast<std::size_t>(index)].id.text()), 1, "z");
        }
        fs::remove(damaged);
        fs::remove(path);
        write(spoilt);
        UsageHistoryFile file(path);
        EXPECT_EQ(open(file).status.state, UsageHistoryFile::State::repaired) << intactOnes;
        EXPECT_EQ(decoded().size(), static_cast<std::size_t>(intactOnes));
    }
}

TEST_F(HistoryFile, EveryRepairKeepsItsDamagedFileUpToFive) {
    const auto asideOf = [&](int number) {
        return number == 1 ? damaged
                           : directory / ("Vellmark/usage-history.damaged-" +
                                          std::to_string(number) + ".json");
    };
    const auto spoilt = [](int number) {
        return "[\n" + serialized(toJSON(sample(firstInstant + number, 1)), -1) + ",\n{torn " +
               std::to_string(number);
    };
    std::vector<std::string> written;
    for (int number = 1; number <= 7; ++number) {
        fs::remove(path);
        written.push_back(spoilt(number));
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
    std::vector<UsageHistorySample> samples = {sample(firstInstant, 1),
                                               sample(firstInstant + 1, 2)};
    samples[1].windowID = "pool:\"quoted\"\n|weekly";
    samples[1].resetsAt.reset();
    for (const int indent : {-1, 4}) {
        JSON array = JSON::array();
        for (const UsageHistorySample& one : samples) {
            array.push_back(toJSON(one));
        }
        write("\n " + array.dump(indent) + "  \n\n\n\n");
        UsageHistoryFile file(path);
        EXPECT_EQ(open(file).captured.size(), 2u);
        const auto third = sample(firstInstant + 2, 3);
        append(file, {third});
        EXPECT_EQ(decoded(), (std::vector{samples[0], samples[1], third}));
    }
}

TEST_F(HistoryFile, NumbersSurviveExactly) {
    UsageHistoryFile file(path);
    std::vector<UsageHistorySample> samples;
    const std::vector odd = {
        1.0 / 3, 786123456.78901234, 99.999999999999986, 1e-7, 1e22, 123456789012345678.,
        5e-324,  33.300000000000004};
    for (std::size_t index = 0; index < odd.size(); ++index) {
        samples.push_back(sample(firstInstant + static_cast<double>(index), odd[index]));
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
    auto ours = std::make_shared<UsageHistory>();
    auto theirs = std::make_shared<UsageHistory>();
    UsageHistoryRecorder we(path, ours);
    UsageHistoryRecorder they(path, theirs);
    we.load(Instant(Seconds(firstInstant)));
    they.load(Instant(Seconds(firstInstant)));
    EXPECT_TRUE(we.record(reading(firstInstant, 10)));
    EXPECT_TRUE(they.record(reading(firstInstant + 60, 10))) << "theirs is known now";
    EXPECT_EQ(decoded().size(), 1u) << "the other one has recorded that";
    EXPECT_FALSE(they.record(reading(firstInstant + 70, 10)));
    EXPECT_TRUE(they.record(reading(firstInstant + 120, 11)));
    EXPECT_TRUE(we.record(reading(firstInstant + 180, 12)));
    EXPECT_TRUE(they.record(reading(firstInstant + 90, 13))) << "a clock that runs behind";
    EXPECT_TRUE(we.record(reading(firstInstant + 200, 12))) << "theirs is known now";
    EXPECT_EQ(ours->sampleCount(), 4u);
    const auto samples = decoded();
    ASSERT_EQ(samples.size(), 4u);
    EXPECT_EQ(samples.back().capturedAt, Instant(Seconds(firstInstant + 90)));

    // A replacement, as a repair makes it, and then one by hand.
    write(text() + "spoilt");
    they.record(reading(firstInstant + 300, 20));
    we.record(reading(firstInstant + 400, 21));
    EXPECT_EQ(ours->sampleCount(), 6u);
    EXPECT_EQ(decoded().size(), 6u);
    fs::remove(path);
    we.record(reading(firstInstant + 500, 22));
    EXPECT_EQ(decoded().size(), 1u);
}

TEST_F(HistoryFile, WhoCannotHaveTheLockReadsAndWritesLater) {
    auto history = std::make_shared<UsageHistory>();
    {
        UsageHistoryRecorder recorder(path, history);
        recorder.load(Instant(Seconds(firstInstant)));
        recorder.record(reading(firstInstant, 10));
        UsageHistoryFile other(path);
        const FileLock held = ready(other);
        ASSERT_FALSE(other.append(held, std::vector{sample(firstInstant + 10, 30)}));
        recorder.record(reading(firstInstant + 20, 40));
        EXPECT_EQ(history->last({AgentProviderID::claude(), "session"}, at(20))->usedPercent, 40);
        EXPECT_EQ(decoded().size(), 2u);
        EXPECT_FALSE(recorder.trouble().takeNews()) << "waiting is no trouble";
        EXPECT_EQ(recorder.heldBackCount(), 0u) << "it waits on disk";
        EXPECT_TRUE(fs::exists(waiting));

        // Who starts now knows it too.
        auto theirs = std::make_shared<UsageHistory>();
        UsageHistoryRecorder(path, theirs).load(Instant(Seconds(firstInstant)));
        EXPECT_EQ(theirs->sampleCount(), 3u);
    }
    // That run is over without having had the lock again.
    UsageHistoryRecorder next(path, history = std::make_shared<UsageHistory>());
    next.load(Instant(Seconds(firstInstant)));
    EXPECT_EQ(decoded().size(), 3u);
    EXPECT_FALSE(fs::exists(waiting));
    EXPECT_EQ(history->sampleCount(), 3u);
    next.record(reading(firstInstant + 30, 50));
    EXPECT_EQ(decoded().size(), 4u);
    EXPECT_EQ(history->sampleCount(), 4u);
}

TEST_F(HistoryFile, WhatWaitedIsTakenOverOnceAlsoAfterAnInterruption) {
    const std::string known = serialized(toJSON(sample(firstInstant, 1)), -1);
    const std::string added = serialized(toJSON(sample(firstInstant + 1, 2)), -1);
    write("[\n" + known + "\n]\n");
    writeFile(waiting, known + "\n" + added + "\n" + R"({"torn)");
    EXPECT_EQ(recordOnce(20)->sampleCount(), 3u);
    EXPECT_EQ(decoded().size(), 3u);
    EXPECT_FALSE(fs::exists(waiting));
}

TEST_F(HistoryFile, AStoppedProcessWithTheLockCostsOneWait) {
    UsageHistoryFile other(path);
    const FileLock held = ready(other);
    UsageHistoryRecorder recorder(path, std::make_shared<UsageHistory>());
    const auto start = std::chrono::steady_clock::now();
    for (int index = 0; index < 20; ++index) {
        recorder.record(reading(firstInstant + index, index));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

} // namespace
} // namespace vellmark::tests
