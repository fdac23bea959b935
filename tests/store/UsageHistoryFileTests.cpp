#include "model/UsageJSON.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryFile.h"
#include "store/UsageHistoryRecorder.h"
#include "support/HistoryDocument.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>
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
    const fs::path damaged = directory / "Vellmark/usage-history.damaged.json";

    std::string text() const { return contentOf(path); }
    void write(const std::string& contents) {
        directory.write("Vellmark/usage-history.json", contents);
    }

    /// The lock, with the file caught up with.
    FileLock ready(UsageHistoryFile& file) {
        std::error_code error;
        auto held = file.lock(Seconds(1), error);
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
        const auto held = file.lock(Seconds(1), error);
        told.status = file.catchUp(
            held ? &*held : nullptr,
            {.restart = [&] { told.captured.clear(); },
             .sample =
                 [&](const StoredHistorySample& s) { told.captured.push_back(s.capturedAt); }});
        return told;
    }

    const UsageHistoryFile::Listener silent{.restart = [] {},
                                            .sample = [](const StoredHistorySample&) {}};
};

TEST_F(HistoryFile, isAValidDocumentAfterEveryAppend) {
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

TEST_F(HistoryFile, anAppendWritesTheNewSamplesAlone) {
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

TEST_F(HistoryFile, tornAnywhereItKeepsEveryCompleteSample) {
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

TEST_F(HistoryFile, damageCostsItsLinesAlone) {
    UsageHistoryFile whole(path);
    std::vector<UsageHistorySample> samples;
    for (int index = 0; index < 100; ++index) {
        samples.push_back(sample(firstInstant + index, index));
    }
    append(whole, samples);
    const std::string intact = text();
    const auto middle = intact.find("\n{", intact.size() / 2);
    const auto name = intact.find("\"session\"", middle);
    std::string spoilt;
    for (const auto& [where, damage] :
         {std::pair(name + 1, std::string("\xFF")), std::pair(middle + 5, std::string(20, '\0')),
          std::pair(intact.find('"'), std::string("x")),
          std::pair(std::size_t{0}, std::string(20, '\0'))}) {
        fs::remove(damaged);
        spoilt = std::string(intact).replace(where, damage.size(), damage);
        write(spoilt);
        UsageHistoryFile file(path);
        EXPECT_EQ(open(file).captured.size(), 99u) << where;
        EXPECT_EQ(decoded().size(), 99u) << where;
    }

    // What is kept aside first stays.
    write(text().substr(0, 500));
    UsageHistoryFile again(path);
    open(again);
    EXPECT_EQ(contentOf(damaged), spoilt);
}

TEST_F(HistoryFile, behindALinkItIsKeptAsideAllTheSame) {
    const std::string torn = "[\n" + serialized(toJSON(sample(firstInstant, 1)), -1) + ",\n{\"id";
    fs::create_directories(path.parent_path());
    fs::create_symlink(directory.write("elsewhere.json", torn), path);
    UsageHistoryFile file(path);
    EXPECT_EQ(open(file).status.state, UsageHistoryFile::State::repaired);
    EXPECT_EQ(contentOf(damaged), torn);
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(decoded().size(), 1u);
}

TEST_F(HistoryFile, anotherFormIsNeverOverwritten) {
    const std::string good = serialized(toJSON(sample(firstInstant, 1)), -1);
    const std::vector<std::string> forms = {
        R"({"version":2,"samples":[]})",
        "[1,2,3]",
        "[nor this",
        "[" + good + ",\n" + good.substr(0, good.size() - 1) + R"(,"cost":3}])",
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
    }
}

TEST_F(HistoryFile, anotherLayoutOfTheSameFormIsReadAndContinued) {
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

TEST_F(HistoryFile, numbersSurviveExactly) {
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

TEST_F(HistoryFile, followsWhatAnotherProcessDoesToIt) {
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
    EXPECT_TRUE(we.record(reading(firstInstant + 200, 13)));
    EXPECT_EQ(ours->sampleCount(), 4u);
    const auto samples = decoded();
    ASSERT_EQ(samples.size(), 4u);
    EXPECT_EQ(samples.back().capturedAt, samples[2].capturedAt) << "time never goes back";

    // A replacement, as compaction makes it, and then one by hand.
    they.compact(Instant(Seconds(firstInstant + 36 * 86'400)));
    EXPECT_EQ(decoded().size(), 1u);
    we.record(reading(firstInstant + 36 * 86'400, 20));
    EXPECT_EQ(ours->sampleCount(), 2u);
    fs::remove(path);
    we.record(reading(firstInstant + 36 * 86'400 + 60, 21));
    EXPECT_EQ(decoded().size(), 1u);
}

TEST_F(HistoryFile, whoCannotHaveTheLockReadsAndWritesLater) {
    auto history = std::make_shared<UsageHistory>();
    UsageHistoryRecorder recorder(path, history);
    recorder.load(Instant(Seconds(firstInstant)));
    recorder.record(reading(firstInstant, 10));
    {
        UsageHistoryFile other(path);
        const FileLock held = ready(other);
        ASSERT_FALSE(other.append(held, std::vector{sample(firstInstant + 10, 30)}));
        recorder.record(reading(firstInstant + 20, 40));
        EXPECT_EQ(history->last({AgentProviderID::claude(), "session"})->usedPercent, 40);
        EXPECT_EQ(decoded().size(), 2u);
        EXPECT_EQ(recorder.heldBackCount(), 1u);
        EXPECT_FALSE(recorder.trouble().takeNews()) << "waiting is no trouble";
    }
    recorder.record(reading(firstInstant + 30, 50));
    EXPECT_EQ(decoded().size(), 4u);
    EXPECT_EQ(recorder.heldBackCount(), 0u);
    EXPECT_EQ(history->sampleCount(), 4u);
}

TEST_F(HistoryFile, compactionKeepsAHighestPerHourAndForgetsAfter400Days) {
    constexpr double day = 86'400;
    const double now = 800'000'000;
    const double hour = std::floor((now - 100 * day) / 3600) * 3600;
    UsageHistoryFile file(path);
    append(file,
           {sample(now - 401 * day, 50), sample(hour, 10), sample(hour + 1, 10, "weekly"),
            sample(hour + 600, 90), sample(hour + 1200, 20), sample(hour + 1800, 90),
            sample(hour + 3600, 5), sample(now - 34 * day, 6), sample(now - 34 * day + 1, 7)});
    const FileLock held = ready(file);
    std::vector<double> kept;
    const UsageHistoryFile::Listener listener{
        .restart = [&] { kept.clear(); },
        .sample = [&](const StoredHistorySample& s) { kept.push_back(s.capturedAt); }};
    ASSERT_FALSE(file.compact(held, Instant(Seconds(now)), listener));
    EXPECT_EQ(kept, (std::vector<double>{hour + 1, hour + 600, hour + 3600, now - 34 * day,
                                         now - 34 * day + 1}));
    EXPECT_EQ(decoded().size(), 5u);

    // Once a day at most, whoever asks.
    ASSERT_FALSE(file.append(held, std::vector{sample(now - 401 * day, 1, "old")}));
    UsageHistoryFile other(path);
    other.catchUp(&held, silent);
    ASSERT_FALSE(other.compact(held, Instant(Seconds(now + day - 1)), listener));
    EXPECT_EQ(decoded().size(), 6u);
    ASSERT_FALSE(other.compact(held, Instant(Seconds(now + day)), listener));
    EXPECT_EQ(decoded().size(), 5u);
}

} // namespace
} // namespace vellmark::tests
