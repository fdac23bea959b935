#include "store/ActivityLines.h"
#include "store/ActivityLog.h"
#include "store/HistoryThinning.h"
#include "store/RecordedDays.h"
#include "store/StoreFixture.h"
#include "support/HistoryDocument.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

constexpr Seconds hour{3'600};
constexpr Seconds day{86'400};

/// A program that has run for a while, on a machine whose clock jumps.
class WrongClock : public StoreFixture {
protected:
    const Instant today = Instant(Seconds(800'000'000));

    void SetUp() override { executor.setNow(today); }

    /// Four samples and a log line a day, of as many days before today.
    void writeHistory(int days) {
        std::vector<UsageHistorySample> history;
        std::string log;
        for (int age = days; age > 0; --age) {
            for (int part = 0; part < 4; ++part) {
                history.push_back(historySample(codex->id(), "session",
                                                today - age * day + part * Seconds(600), part));
            }
            log += ActivityLines::text(
                       {.text = "day " + std::to_string(age), .time = today - age * day},
                       TimeZone::utc()) +
                   "\n";
        }
        writeFile(machine.usageHistoryFile(), historyDocument(history));
        writeFile(machine.activityLogFile(), log);
    }

    std::vector<UsageHistorySample> stored() const {
        return samplesOf(contentOf(machine.usageHistoryFile()));
    }
    std::vector<UsageHistorySample> removed() const {
        const std::string text =
            contentOf(machine.supportDirectory() / "usage-history.removed.json");
        return text.empty() ? std::vector<UsageHistorySample>() : samplesOf(text);
    }
    static bool holdsAll(const std::vector<UsageHistorySample>& all,
                         const std::vector<UsageHistorySample>& some) {
        return std::ranges::all_of(some, [&](const UsageHistorySample& one) {
            return std::ranges::find(all, one) != all.end();
        });
    }
    /// How many days the log tells of.
    std::ptrdiff_t loggedDays() const {
        const auto entries = ActivityLog(machine.activityLogFile()).entries({}, TimeZone::utc());
        return std::ranges::count_if(
            entries, [](const ActivityEntry& entry) { return entry.text.starts_with("day "); });
    }

    /// A run of the program that starts at `now`, reads once, and trims as it does once a day.
    void run(Instant now, double used) {
        executor.setNow(now);
        makeStore();
        codex->answersUsed(used, now);
        refresh(RefreshTrigger::launch, {codex->id()});
        store->trimLog();
        settle();
        store.reset();
    }
};

TEST_F(WrongClock, ARunAheadOfTimeCostsNothingAndBindsNothing) {
    for (const double daysAhead : {3'650.0, 40.0, 20.0, 8.0}) {
        writeHistory(25);
        const auto before = stored();
        run(today + daysAhead * day, 50);
        run(today + daysAhead * day + hour, 51);
        run(today + Seconds(60), 52);
        const auto after = stored();
        ASSERT_EQ(after.size(), before.size() + 3) << daysAhead << " days ahead";
        EXPECT_TRUE(std::equal(before.begin(), before.end(), after.begin())) << daysAhead;
        EXPECT_EQ(after.back().capturedAt, today + Seconds(60)) << "the right date again";
        EXPECT_EQ(loggedDays(), 25) << daysAhead;
        fs::remove_all(machine.supportDirectory());
    }
}

TEST_F(WrongClock, WhatIsStampedInTheFutureTakesNoPartInTheForecast) {
    writeHistory(1);
    run(today + 3'650 * day, 99);
    executor.setNow(today);
    makeStore();
    codex->answersUsed(10, today);
    refresh(RefreshTrigger::manual, {codex->id()});
    settle();
    const auto points = state().recentPoints.at({codex->id(), "session"});
    ASSERT_FALSE(points.empty());
    EXPECT_EQ(points.back().capturedAt, today);
    EXPECT_EQ(points.back().usedPercent, 10);
}

TEST_F(WrongClock, WhatGoesComesBackUnlessALaterDayAgrees) {
    writeHistory(20);
    const auto before = stored();
    // Long enough ahead for its days to count.
    const Instant ahead = today + 1'000 * day;
    for (int index = 0; index < 7; ++index) {
        run(ahead + index * day, index);
    }
    EXPECT_EQ(loggedDays(), 0);
    run(today + Seconds(30), 30);
    EXPECT_EQ(loggedDays(), 20);
    run(ahead + 7 * day, 7);
    EXPECT_EQ(stored().size() + removed().size(), before.size() + 9) << "on the day it counts";
    EXPECT_EQ(removed().size(), before.size() + 1);

    run(today + Seconds(60), 60);
    auto after = stored();
    EXPECT_EQ(after.size(), before.size() + 10);
    EXPECT_TRUE(holdsAll(after, before));
    EXPECT_TRUE(removed().empty());
    EXPECT_EQ(loggedDays(), 20);
}

TEST_F(WrongClock, WhatIsReallyOldGoesTheDayAfter) {
    writeHistory(420);
    run(today, 50);
    // 35 days of four samples and a bit, one of each day before, until the 400th.
    const auto kept = stored().size();
    EXPECT_GE(kept, 35u * 4 + 365);
    EXPECT_LE(kept, 36u * 4 + 366);
    EXPECT_EQ(stored().size() + removed().size(), 420u * 4 + 1);
    EXPECT_LE(loggedDays(), 31);
    run(today + hour, 51);
    EXPECT_EQ(stored().size() + removed().size(), 420u * 4 + 2) << "on the same day";
    const auto before = removed();
    run(today + 400 * day, 53);
    EXPECT_TRUE(holdsAll(removed(), before)) << "a clock is no later day";
    run(today + day, 52);
    EXPECT_LT(removed().size(), 10u) << "but for those that went today";
    EXPECT_LT(contentOf(machine.supportDirectory() / "activity.removed.log").size(), 100u);
}

TEST_F(WrongClock, ARemovalThatWasInterruptedLosesNothing) {
    writeHistory(60);
    const auto before = stored();
    // What is removed was written, the history was not: all of it is in both.
    writeFile(machine.supportDirectory() / "usage-history.removed.json",
              contentOf(machine.usageHistoryFile()));
    writeFile(machine.supportDirectory() / "activity.removed.log",
              contentOf(machine.activityLogFile()));
    run(today, 50);
    std::vector<UUID> ids;
    for (const UsageHistorySample& one : stored()) {
        ids.push_back(one.id);
    }
    std::ranges::sort(ids, {}, [](const UUID& id) { return id.text(); });
    EXPECT_EQ(std::ranges::adjacent_find(ids), ids.end()) << "nothing is there twice";
    EXPECT_GE(stored().size(), 35u * 4);
    EXPECT_LE(loggedDays(), 31);
    EXPECT_GE(loggedDays(), 29);
}

TEST(RecordedDays, CountAgeFromWhatTheyBearOut) {
    const Instant start(Seconds(800'000'000));
    std::vector<double> month;
    for (int number = 0; number < 30; ++number) {
        month.push_back(number);
    }
    const auto with = [&](std::vector<double> more) {
        more.insert(more.begin(), month.begin(), month.end());
        return more;
    };
    // The days recorded, now, and the reference to the end of its day.
    const std::tuple<const char*, std::vector<double>, double, double> cases[] = {
        {"nothing recorded", {}, 5, 5},
        {"as usual", month, 29.5, 29.5},
        {"after a week off", month, 36, 36},
        {"the clock is behind", month, 3, 3},
        {"the clock is ahead", month, 3'650, 30},
        {"it was ahead for a day", with({3'650}), 3'650.5, 30},
        {"it was ahead and is right again", with({3'650}), 30.5, 30.5},
        {"holidays", with({60, 61, 62}), 62, 30},
        {"a week after the holidays", with({60, 61, 62, 63, 64, 65, 66}), 66, 66},
        {"nothing but jumps", {0, 100, 200}, 200, 1},
    };
    for (const auto& [what, recorded, now, expected] : cases) {
        RecordedDays days;
        for (const double number : recorded) {
            days.add(start + number * day);
        }
        const double found = (days.reference(start + now * day) - start) / day;
        EXPECT_NEAR(found, expected, 1) << what;
    }
    RecordedDays absurd;
    for (const double seconds : {1e300, -1e300, 5e-324}) {
        absurd.add(Instant(Seconds(seconds)));
    }
    EXPECT_LE(absurd.reference(start), start);
}

TEST(HistoryThinning, KeepsTheHighestOfAnHourAndForgetsAfter400Days) {
    const double now = 800'000'000;
    const double wholeHour = std::floor((now - 100 * day.count()) / 3600) * 3600;
    const std::tuple<double, double, const char*, bool> cases[] = {
        {now - 401 * day.count(), 50, "session", true},
        {now - 399 * day.count(), 50, "session", false},
        {wholeHour, 10, "session", true},
        {wholeHour + 1, 10, "weekly", false},
        {wholeHour + 600, 90, "session", false},
        {wholeHour + 1'200, 20, "session", true},
        {wholeHour + 1'800, 90, "session", true},
        {wholeHour + 3'600, 5, "session", false},
        {now - 34 * day.count(), 6, "session", false},
        {now - 34 * day.count() + 1, 7, "session", false},
        {now + 1'000 * day.count(), 7, "session", false},
    };
    HistoryThinning thinning{Instant(Seconds(now))};
    std::vector<std::uint64_t> expected;
    StoredHistorySample sample;
    sample.provider = "claude";
    for (const auto& [captured, used, window, isExpendable] : cases) {
        sample.windowID = window;
        sample.capturedAt = captured;
        sample.usedPercent = used;
        thinning.add(sample);
        if (isExpendable) {
            expected.push_back(sample.offset);
        }
        ++sample.offset;
    }
    EXPECT_EQ(thinning.expendable(), expected);
}

} // namespace
} // namespace vellmark::tests
