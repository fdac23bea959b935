#include "platform/RegularFile.h"
#include "store/HistoryImport.h"
#include "store/OrderedHistory.h"
#include "support/FileSizeLimit.h"
#include "support/HistoryDocument.h"
#include "support/Matchers.h"
#include "support/TemporaryDirectory.h"

#include <algorithm>
#include <fcntl.h>
#include <random>
#include <tuple>

namespace vellmark::tests {
namespace {

constexpr Instant now(Seconds(800'000'000));

/// Samples by their place in time; more than are held in memory at once.
struct ShuffledSamples {
    std::vector<StoredHistorySample> samples;

    explicit ShuffledSamples(std::size_t count) {
        static const std::string text(150, 'x');
        for (std::size_t index = 0; index < count; ++index) {
            StoredHistorySample one;
            one.provider = index % 3 == 0 ? "codex" : "claude";
            one.windowID = index % 2 == 0 ? "session" : "weekly";
            // Two of each moment.
            one.capturedAt = static_cast<double>(index / 2);
            one.text = text;
            samples.push_back(one);
        }
        std::shuffle(samples.begin(), samples.end(), std::mt19937(7));
        for (std::size_t index = 0; index < count; ++index) {
            samples[index].offset = index;
        }
    }
};

TEST(OrderedHistory, OrdersMoreThanItHolds) {
    const ShuffledSamples shuffled(45'000);
    int passes = 0;
    const HistorySource source = [&](const UsageHistoryReader::Visitor& visit) {
        ++passes;
        std::ranges::for_each(shuffled.samples, visit);
    };
    using Place = std::tuple<std::string, std::string, double, std::uint64_t>;
    const auto visited = [&](HistoryOrder order) {
        std::vector<Place> places;
        visitInOrder(source, order, [&](const StoredHistorySample& one) {
            const bool byWindow = order == HistoryOrder::windowAndTime;
            places.emplace_back(byWindow ? one.provider : "", byWindow ? one.windowID : "",
                                one.capturedAt, one.offset);
        });
        return places;
    };
    for (const HistoryOrder order : {HistoryOrder::time, HistoryOrder::windowAndTime}) {
        const auto places = visited(order);
        EXPECT_EQ(places.size(), 45'000u);
        EXPECT_TRUE(std::ranges::is_sorted(places));
        EXPECT_EQ(std::ranges::adjacent_find(places), places.end()) << "none twice";
    }
    EXPECT_LE(passes, 1 + 3 + 3) << "a look at the order, then 20,000 at a time";
}

class Import : public testing::Test {
protected:
    const TemporaryDirectory directory;
    const fs::path history = directory / "Vellmark/usage-history.json";

    UsageHistorySample sample(double ago, double used = 10) {
        return historySample(AgentProviderID::claude(), "session", now - Seconds(ago), used);
    }
    HistoryImport import(const std::string& input) {
        directory.write("input.json", input);
        return takeIn();
    }
    HistoryImport takeIn() {
        std::error_code error;
        const Descriptor opened = openRegularFile(directory / "input.json", O_RDONLY, error);
        return importHistory(history, opened.get(), now);
    }
};

TEST_F(Import, ARunningRecorderKeepsWhatItWritesMeanwhile) {
    UsageHistoryFile running(history);
    std::vector<double> told;
    const UsageHistoryFile::Listener listener{
        .restart = [&] { told.clear(); },
        .sample = [&](const StoredHistorySample& one) { told.push_back(one.usedPercent); }};
    const auto record = [&](double used, double ago) {
        std::error_code error;
        const auto held = running.lock(error);
        ASSERT_TRUE(held);
        running.catchUp(&*held, listener);
        ASSERT_FALSE(running.append(*held, std::vector{sample(ago, used)}));
    };
    record(1, 300);
    EXPECT_EQ(import(historyDocument({sample(400, 2), sample(100, 3)})).taken, 2u);
    record(4, 50);
    running.catchUp(nullptr, listener);
    EXPECT_THAT(told, UnorderedElementsAre(1, 2, 3)) << "its own it knows";
    EXPECT_EQ(samplesOf(contentOf(history)).size(), 4u);
    // Whatever the input looked like, each sample has its line.
    const std::string text = contentOf(history);
    EXPECT_EQ(std::ranges::count(text, '\n'), 6);
}

TEST_F(Import, UnknownFieldsStayAndADamagedHistoryIsRepairedFirst) {
    const auto kept = sample(500);
    directory.write("Vellmark/usage-history.json",
                    "[\n" + serialized(toJSON(kept), -1) + ",\n{\"id");
    JSON newer = toJSON(sample(100));
    newer["model"] = "opus";
    const HistoryImport result = import(serialized(JSON::array({newer, newer})));
    EXPECT_EQ(result.state, HistoryImport::State::done);
    EXPECT_EQ(result.taken, 1u);
    EXPECT_EQ(result.known, 1u);
    EXPECT_TRUE(fs::exists(result.aside));
    EXPECT_THAT(contentOf(history), HasSubstr("\"model\":\"opus\""));
    EXPECT_EQ(samplesOf(contentOf(history)).front(), kept);
}

TEST_F(Import, AFullDiskLeavesTheHistoryAsItWas) {
    const std::string before = historyDocument({sample(500)});
    directory.write("Vellmark/usage-history.json", before);
    std::vector<UsageHistorySample> many;
    for (int index = 0; index < 2'000; ++index) {
        many.push_back(sample(1'000 + index));
    }
    // The input is larger than what may still be written, so it is there already.
    const std::string input = historyDocument(many);
    directory.write("input.json", input);
    const auto result = [&] {
        const FileSizeLimit limit(100'000);
        return takeIn();
    }();
    EXPECT_EQ(result.state, HistoryImport::State::notWritten);
    EXPECT_EQ(result.error, std::errc::file_too_large);
    EXPECT_EQ(result.taken, 0u);
    EXPECT_EQ(contentOf(history), before);
    EXPECT_EQ(import(input).taken, 2'000u);
}

} // namespace
} // namespace vellmark::tests
