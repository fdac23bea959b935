#include "AgentNames.h"
#include "presentation/ChartReadout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

constexpr double hour = 3600;
constexpr double day = 24 * hour;

class Charts : public testing::Test {
protected:
    /// `ago` in seconds before noon.
    void add(const AgentProviderID& agent, const std::string& window, double ago, double used,
             double resetsIn) {
        history.add(sampleOf(agent, window, ago, used, resetsIn));
    }
    /// One sample every half hour, from `from` to `to` seconds ago.
    void addSteadily(const AgentProviderID& agent, const std::string& window, double from,
                     double to, double used, double resetsIn) {
        for (double ago = from; ago >= to; ago -= hour / 2) {
            add(agent, window, ago, used, resetsIn);
        }
    }
    ChartContent draw(ChartRequest request) const {
        return chartContent(state, history, request, noon, Localization("en", "en_US", "UTC"));
    }

    UsageState state = stateOf({live(claude, {window("weekly", 40, 7 * 24 * 60, 2 * 24 * 60)}),
                                live(codex, {window("weekly", 10, 7 * 24 * 60, 3 * 24 * 60)})});
    UsageHistory history;
};

TEST_F(Charts, ReductionDrawsWhatAllPointsWouldDraw) {
    std::vector<HistoryPoint> points;
    for (int index = 0; index < 200'000; ++index) {
        points.emplace_back(noon + Seconds(index), 50 + 40 * std::sin(index / 7'000.0),
                            noon + Seconds(1e6));
    }
    points[123'456].usedPercent = 100; // a single peak and a single dip are not lost
    points[77'777].usedPercent = 0;
    const ChartScale scale{noon, noon + Seconds(199'999), 500, noon};
    const ChartCurve curve = chartCurve(points, std::nullopt, scale);
    ASSERT_EQ(curve.pieces.size(), 1u);
    const auto& piece = curve.pieces.front();
    EXPECT_LE(piece.size(), 4u * 501u);
    EXPECT_TRUE(std::ranges::is_sorted(piece, {}, &ChartPoint::x));
    EXPECT_EQ(piece.front(), (ChartPoint{0, 50}));
    EXPECT_EQ(piece.back().x, 1);
    const auto [lowest, highest] = std::ranges::minmax(piece, {}, &ChartPoint::y);
    EXPECT_EQ(lowest.y, 0);
    EXPECT_EQ(highest.y, 100);
    EXPECT_NEAR(lowest.x, 123'456 / 199'999.0, 1e-9) << "at its own place";
    for (double x = 0.05; x < 1; x += 0.1) {
        EXPECT_NEAR(*valueAt(curve.pieces, x), 50 - 40 * std::sin(x * 199'999 / 7'000.0), 1) << x;
    }
}

TEST_F(Charts, AResetIsAStepUpAndAPauseBreaksTheLine) {
    addSteadily(claude, "weekly", 6 * day, 5 * day, 70, -5 * day + 600);
    addSteadily(claude, "weekly", 5 * day - hour, 3 * day, 20, 2 * day);
    addSteadily(claude, "weekly", 1 * day, 600, 40, 2 * day);
    const ChartContent chart = draw({.agent = claude, .windowIDs = {"weekly"}});
    ASSERT_EQ(chart.lines.size(), 1u);
    ASSERT_EQ(chart.lines[0].pieces.size(), 2u);
    ASSERT_EQ(chart.resets.size(), 1u);
    const double reset = chart.resets.front();
    EXPECT_NEAR(reset, 1 - 5.0 / 7 + 600 / (7 * day), 1e-9);
    EXPECT_NEAR(*valueAt(chart.lines[0].pieces, reset - 1e-6), 30, 0.1);
    EXPECT_NEAR(*valueAt(chart.lines[0].pieces, reset), 100, 0.1);
    EXPECT_FALSE(valueAt(chart.lines[0].pieces, 1 - 2.0 / 7)) << "nobody read";
    ASSERT_EQ(chart.spans.size(), 1u);
    EXPECT_EQ(chart.spans[0].kind, ChartSpan::Kind::unread);
    EXPECT_EQ(chart.latest, (ChartPoint{1, 60})) << "as it was read last";
}

TEST_F(Charts, APauseOfThisAgentAloneKeepsItsOldFigure) {
    addSteadily(claude, "weekly", 6 * day, 4 * day, 30, 2 * day);
    addSteadily(claude, "weekly", 2 * day, 600, 40, 2 * day);
    addSteadily(codex, "weekly", 6 * day, 0, 10, 3 * day);
    const ChartContent chart = draw({.agent = claude, .windowIDs = {"weekly"}});
    ASSERT_EQ(chart.spans.size(), 1u);
    EXPECT_EQ(chart.spans[0].kind, ChartSpan::Kind::stale);
    const auto readout = chartReadout(chart, 1 - 3.0 / 7);
    ASSERT_TRUE(readout);
    ASSERT_EQ(readout->rows.size(), 1u);
    EXPECT_EQ(readout->rows[0].value, "70% left");
    EXPECT_EQ(readout->note, "Old figures: could not be read");
    const ChartContent other = draw({.agent = codex, .windowIDs = {"weekly"}});
    EXPECT_TRUE(other.spans.empty());

    // A window that its agent did not tell of is neither old nor unread.
    state.snapshots[0].windows.push_back(window("session", 10, 5 * 60, 60));
    addSteadily(claude, "session", 6 * day, 0, 10, 3 * day);
    const ChartContent untold = draw({.agent = claude, .windowIDs = {"weekly"}});
    EXPECT_TRUE(untold.spans.empty());
    ASSERT_EQ(untold.lines.size(), 1u);
    EXPECT_FALSE(valueAt(untold.lines[0].pieces, 1 - 3.0 / 7));
}

TEST_F(Charts, OldFiguresEndTheLineAsOld) {
    state.snapshots[0].error = UsageProviderError::timeout("claude");
    state.snapshots[0].source = SnapshotSource::stale;
    state.lastSuccess[claude] = noon - Seconds(20 * hour);
    addSteadily(claude, "weekly", 6 * day, 20 * hour, 40, 2 * day);
    const ChartContent chart = draw({.agent = claude, .windowIDs = {"weekly"}});
    ASSERT_FALSE(chart.spans.empty());
    EXPECT_EQ(chart.spans.back().kind, ChartSpan::Kind::stale);
    EXPECT_EQ(chart.spans.back().stretch.end, 1);
    EXPECT_FALSE(chart.forecast);
    EXPECT_EQ(chartReadout(chart, 1)->note, "Old figures: could not be read");
}

TEST_F(Charts, LooksAheadToTheResetAndToTheEnd) {
    // Five of seven days are over: 40 % used lasts, 90 % does not.
    for (const double used : {40.0, 90.0}) {
        state.snapshots[0].windows[0].usedPercent = used;
        const ChartContent chart = draw({.agent = claude,
                                         .windowIDs = {"weekly"},
                                         .range = ChartRange::week,
                                         .looksAhead = true});
        const double reset = chart.scale.x(noon + Seconds(2 * day));
        EXPECT_EQ(chart.resets, std::vector{reset});
        ASSERT_TRUE(chart.evenPace);
        EXPECT_EQ(chart.evenPace->second, (ChartPoint{reset, 0}));
        EXPECT_EQ(chart.evenPaceName, "even pace");
        ASSERT_TRUE(chart.forecast);
        EXPECT_EQ(chart.forecast->from, (ChartPoint{chart.nowX, 100 - used}));
        EXPECT_EQ(chart.forecast->isEmpty, used == 90);
        if (used == 40) {
            EXPECT_NEAR(chart.forecast->to.x, reset, 1e-12);
            EXPECT_NEAR(chart.forecast->to.y, 44, 0.01);
        } else {
            const Instant empty = noon + Seconds(10 / 90.0 * 5 * day);
            EXPECT_NEAR(chart.forecast->to.x, chart.scale.x(empty), 1e-9);
            EXPECT_EQ(chart.forecast->to.y, 0);
        }
        EXPECT_TRUE(std::ranges::any_of(chart.timeLabels, [](const ChartTimeLabel& label) {
            return label.text == "Sat 1:48 PM"; // the reset's own time
        }));
    }
}

TEST_F(Charts, ASessionOverAMonthIsABandOfDays) {
    state.snapshots[0].windows = {window("session", 20, 300, 60)};
    add(claude, "session", 5 * day, 10, -5 * day + hour);
    add(claude, "session", 5 * day - hour / 2, 80, -5 * day + hour);
    add(claude, "session", 3 * day, 35, -3 * day + hour);
    const ChartContent month =
        draw({.agent = claude, .windowIDs = {"session"}, .range = ChartRange::month});
    ASSERT_EQ(month.lines.size(), 1u);
    EXPECT_TRUE(month.lines[0].pieces.empty());
    ASSERT_EQ(month.lines[0].days.size(), 2u);
    EXPECT_EQ(month.lines[0].days[0].lowest, 20);
    EXPECT_EQ(month.lines[0].days[0].highest, 90);
    EXPECT_EQ(chartReadout(month, month.scale.x(noon - Seconds(5 * day)))->rows.at(0).value,
              "20% to 90% left");
    const ChartContent week = draw({.agent = claude, .windowIDs = {"session"}});
    EXPECT_TRUE(week.lines[0].days.empty());
}

TEST_F(Charts, TheEarlierTimeLiesUnderTheSameAxis) {
    add(claude, "weekly", 7 * day + 6 * hour, 90, -7 * day + hour);
    addSteadily(claude, "weekly", 2 * day, 600, 40, 2 * day);
    const ChartContent chart =
        draw({.agent = claude, .windowIDs = {"weekly"}, .comparesEarlier = true});
    ASSERT_EQ(chart.lines.size(), 2u);
    EXPECT_EQ(chart.lines[1].role, ChartLine::Role::earlier);
    EXPECT_EQ(chart.lines[1].name, "7 d before");
    ASSERT_EQ(chart.lines[1].pieces.size(), 1u);
    EXPECT_NEAR(chart.lines[1].pieces[0][0].x, 1 - 6.0 / (7 * 24), 1e-9);
    EXPECT_EQ(chart.lines[1].pieces[0][0].y, 10);
}

TEST_F(Charts, ArrowKeysGoFromReadingToReading) {
    addSteadily(claude, "weekly", 6 * day, 5 * day, 30, 2 * day);
    addSteadily(claude, "weekly", 1 * day, 600, 40, 2 * day);
    const ChartContent chart = draw({.agent = claude, .windowIDs = {"weekly"}});
    int steps = 0;
    bool sawPause = false;
    for (double x = 1; x > 0 && steps < 500; ++steps) {
        const double next = chartPlaceBeside(chart, x, -1);
        ASSERT_LT(next, x) << "no key goes nowhere";
        x = next;
        const auto readout = chartReadout(chart, x);
        ASSERT_TRUE(readout);
        sawPause = sawPause || readout->note == "Not read";
    }
    EXPECT_LE(steps, 245);
    EXPECT_TRUE(sawPause);
    EXPECT_GT(chartPlaceBeside(chart, 0, 1), 0);
    EXPECT_EQ(chartPlaceBeside(chart, 1, 1), 1);
}

TEST_F(Charts, WithoutASnapshotThereIsNothingToRead) {
    EXPECT_FALSE(
        draw({.agent = AgentProviderID::antigravity(), .windowIDs = {"weekly"}}).hasCourse());
    EXPECT_FALSE(chartReadout(draw({.agent = claude, .windowIDs = {"no such"}}), 0.5));
}

TEST(ChartRanges, AreStoredAndReadBack) {
    for (const ChartRange range : allChartRanges) {
        EXPECT_EQ(chartRange(storedText(range)), range);
    }
    EXPECT_FALSE(chartRange("12h"));
    EXPECT_FALSE(chartRange(""));
}

} // namespace
} // namespace vellmark::tests
