#include "AgentNames.h"
#include "presentation/HistoryExport.h"
#include "presentation/HistoryPageContent.h"
#include "presentation/HistoryStatistics.h"
#include "text/Dates.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <numeric>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

constexpr double hour = 3600;
constexpr double day = 24 * hour;

Instant at(const std::string& text) {
    return parseISO8601(text, false).value();
}

double sum(const std::array<std::array<double, 24>, 7>& cells) {
    double all = 0;
    for (const auto& row : cells) {
        all = std::accumulate(row.begin(), row.end(), all);
    }
    return all;
}

class Statistics : public testing::Test {
protected:
    void add(const std::string& when, double used, const std::string& resets) {
        points.emplace_back(at(when), used, at(resets));
    }
    HistoryStatistics statistics(const std::string& from, const std::string& to) const {
        return historyStatistics(points, std::nullopt,
                                 {at(from), at(to), at(from), *TimeZone::named("Europe/Berlin")});
    }
    std::vector<HistoryPoint> points;
};

TEST_F(Statistics, OfTwoPeriods) {
    const char* first = "2025-11-03T10:00:00Z";
    const char* second = "2025-11-10T10:00:00Z";
    add("2025-11-03T08:00:00Z", 80, first);
    add("2025-11-03T09:00:00Z", 90, first);
    add("2025-11-03T09:50:00Z", 100, first);
    add("2025-11-03T10:10:00Z", 5, second);
    add("2025-11-03T11:00:00Z", 15, second);
    add("2025-11-04T11:00:00Z", 40, second); // after a night that nobody read
    add("2025-11-10T09:30:00Z", 70, second);
    add("2025-11-10T10:30:00Z", 0, "2025-11-17T10:00:00Z");
    const HistoryStatistics result = statistics("2025-11-03T08:00:00Z", "2025-11-11T08:00:00Z");
    EXPECT_EQ(result.peak->usedPercent, 100);
    EXPECT_EQ(result.peak->at, at("2025-11-03T09:50:00Z"));
    EXPECT_DOUBLE_EQ(result.used, 20 + 70);
    EXPECT_DOUBLE_EQ(*result.usedADay(), 90.0 / 8);
    EXPECT_EQ(result.timesUsedUp, 1);
    EXPECT_EQ(result.endsSeen, 2);
    EXPECT_EQ(result.endsWithRest, 1);
    EXPECT_DOUBLE_EQ(result.rest, 30);
    EXPECT_EQ(result.periodsInUse, 2);
    // What came after the night and in the days without readings belongs to no hour.
    EXPECT_DOUBLE_EQ(sum(result.usedByHour), 20 + 15);
    EXPECT_DOUBLE_EQ(result.usedByHour[0][9], 10) << "Monday, 9 to 10 in Berlin";
    EXPECT_EQ(result.busiestHour()->hour, 11);
}

TEST_F(Statistics, AClockThatJumpsCountsNothingTwice) {
    const char* reset = "2025-11-10T10:00:00Z";
    add("2025-11-05T08:00:00Z", 20, reset);
    add("2025-11-05T08:30:00Z", 30, reset);
    add("2025-11-05T08:31:00Z", 21, reset); // recorded under a clock that was set back
    add("2025-11-05T09:00:00Z", 31, reset);
    add("2025-11-05T09:30:00Z", 30.5, reset); // the agent's rounding
    add("2025-11-05T10:00:00Z", 31, reset);
    const HistoryStatistics result = statistics("2025-11-05T08:00:00Z", "2025-11-05T12:00:00Z");
    EXPECT_DOUBLE_EQ(result.used, 11);
    EXPECT_EQ(result.endsSeen, 0);
    EXPECT_FALSE(result.usedADay()) << "not a day yet";
}

TEST_F(Statistics, AnEndThatNobodySawTellsNothingOfTheRest) {
    add("2025-11-03T08:00:00Z", 40, "2025-11-04T10:00:00Z");
    add("2025-11-05T08:00:00Z", 10, "2025-11-11T10:00:00Z");
    const HistoryStatistics result = statistics("2025-11-03T00:00:00Z", "2025-11-06T00:00:00Z");
    EXPECT_EQ(result.endsSeen, 0);
    EXPECT_DOUBLE_EQ(result.used, 10);
    EXPECT_DOUBLE_EQ(sum(result.usedByHour), 0);
}

TEST_F(Statistics, CountsTheHoursOfDaysOfChangingClocks) {
    // On 26 October 2025 the hour from 2 to 3 came twice in Berlin, on 30 March it was left out.
    const std::tuple<const char*, const char*, double, double> cases[] = {
        {"2025-10-25T22:00:00Z", "2025-10-26T23:00:00Z", 2, 25},
        {"2025-03-29T23:00:00Z", "2025-03-30T22:00:00Z", 0, 23}};
    for (const auto& [from, to, hoursAtTwo, all] : cases) {
        points.clear();
        add(from, 10, "2025-12-01T00:00:00Z");
        const HistoryStatistics result = statistics(from, to);
        EXPECT_DOUBLE_EQ(result.hoursObserved[6][2], hoursAtTwo) << from;
        EXPECT_DOUBLE_EQ(sum(result.hoursObserved), all) << from;
    }
    points.clear();
    add("2025-10-26T00:30:00Z", 10, "2025-12-01T00:00:00Z");
    add("2025-10-26T01:30:00Z", 20, "2025-12-01T00:00:00Z");
    EXPECT_DOUBLE_EQ(statistics("2025-10-26T00:00:00Z", "2025-10-26T02:00:00Z").usedByHour[6][2],
                     10)
        << "both of them";
}

TEST_F(Statistics, OfWhatLiesPartlyBeforeOnlyThePartWithinCounts) {
    add("2025-11-03T08:00:00Z", 10, "2025-11-09T10:00:00Z");
    add("2025-11-03T09:00:00Z", 30, "2025-11-09T10:00:00Z");
    const HistoryStatistics result = statistics("2025-11-03T08:45:00Z", "2025-11-03T12:00:00Z");
    EXPECT_DOUBLE_EQ(result.used, 5);
    EXPECT_EQ(result.peak->usedPercent, 30);
}

// --- the page

class Page : public testing::Test {
protected:
    void add(const std::string& window, double ago, double used, double resetsIn) {
        history.add(sampleOf(claude, window, ago, used, resetsIn));
    }
    HistoryPageContent draw(const HistoryPageChoice& choice = {.agent = claude},
                            const std::string& locale = "en_US") const {
        return historyPageContent(state, history, choice, noon,
                                  Localization("en", locale, "Europe/Berlin"));
    }

    UsageState state = stateOf(
        {live(claude, {window("session", 54, 300, 132), window("weekly", 71, 7 * 24 * 60, 43 * 60),
                       window("fable-weekly", 84, 7 * 24 * 60, 43 * 60)})});
    UsageHistory history;
};

TEST_F(Page, TheLegendPutsWhatLastsLongerFirst) {
    const HistoryPageContent month = draw();
    ASSERT_EQ(month.legend.size(), 4u);
    EXPECT_EQ(month.legend[0].name, "Week");
    EXPECT_EQ(month.legend[0].value, "29% left now");
    EXPECT_EQ(month.legend[0].role, ChartLine::Role::main);
    EXPECT_EQ(month.legend[1].role, ChartLine::Role::second);
    EXPECT_EQ(month.legend[2].name, "Session");
    EXPECT_EQ(month.legend[2].value, "hidden");
    EXPECT_EQ(month.legend[3].name, "30 d before");
    EXPECT_EQ(month.figuresTitle, "Week, last 30 days");

    const HistoryPageContent today = draw({.agent = claude, .range = ChartRange::day});
    EXPECT_EQ(today.legend[0].name, "Session");
    EXPECT_TRUE(today.legend[0].isShown);

    HistoryPageChoice one{.agent = claude};
    one.shown = {{{claude, "weekly"}, false}};
    const HistoryPageContent fable = draw(one);
    EXPECT_EQ(fable.figuresTitle, "Week · Fable, last 30 days");
    EXPECT_EQ(fable.chart.lines.size(), 1u);
    EXPECT_FALSE(fable.legend[1].canChange) << "the last one stays";
    one.shown[{claude, "fable-weekly"}] = false;
    EXPECT_EQ(draw(one).chart.lines.size(), 1u) << "never empty";
}

TEST_F(Page, AnAverageStandsBesideWhatWouldBeEven) {
    for (double ago = 5 * day; ago >= 0; ago -= hour / 2) {
        add("weekly", ago, 71 - ago / day * 11, 43 * hour);
    }
    const HistoryPageContent content = draw();
    ASSERT_GE(content.figures.size(), 3u);
    EXPECT_EQ(content.figures[0].figure, "71%");
    EXPECT_EQ(content.figures[0].caption, "at the peak, Nov 20");
    EXPECT_EQ(content.figures[1].figure, "11%");
    EXPECT_EQ(content.figures[1].word, "used");
    EXPECT_EQ(content.figures[1].caption, "a day; 14% would be even");
    EXPECT_EQ(content.figures[2].figure, "0");
    EXPECT_TRUE(content.figuresNote.empty());
}

TEST_F(Page, TheFirstDayHasSomethingToSay) {
    EXPECT_FALSE(draw().figuresNote.empty());
    EXPECT_TRUE(draw().chart.hasCourse()) << "what was just read";
    add("weekly", 3 * hour, 60, 43 * hour);
    add("weekly", 600, 71, 43 * hour);
    const HistoryPageContent content = draw();
    EXPECT_EQ(content.figuresNote, "Recorded since 11:48 AM. Averages come after a day.");
    ASSERT_FALSE(content.figures.empty());
    state.snapshots[0].windows.clear();
    EXPECT_FALSE(draw().chartNote.empty());
}

TEST_F(Page, TheHeatMapBeginsWithTheLocalesDay) {
    for (double ago = 2 * hour; ago >= 0; ago -= 600) {
        add("weekly", ago, 71 - ago / 600, 43 * hour);
    }
    const HeatMapContent american = draw().heat;
    const HeatMapContent british = draw({.agent = claude}, "en_GB").heat;
    EXPECT_EQ(american.dayNames.front(), "Sun");
    EXPECT_EQ(british.dayNames.front(), "Mon");
    EXPECT_EQ(american.level[4][13], 5) << "Thursday, 1 PM";
    EXPECT_EQ(british.level[3][13], 5);
    EXPECT_EQ(american.level[4][3], 0);
    EXPECT_EQ(american.words[4][13], "Thu, 1 PM: 6% used on average");
    EXPECT_EQ(american.hourNames.at(6), "6 AM");
}

TEST_F(Page, AnAgentThatIsNotShownGivesWay) {
    EXPECT_EQ(draw({.agent = AgentProviderID::codex()}).chart.agent, claude);
    state.snapshots.clear();
    EXPECT_TRUE(draw().noAgents);
}

TEST_F(Page, ExportsWhatIsShown) {
    add("weekly", 3 * day, 10.5, 43 * hour);
    add("fable-weekly", 2 * day, 20, 43 * hour);
    add("weekly", 40 * day, 99, -30 * day);
    const auto text = [&](HistoryExportFormat format) {
        return historyExportText(history, claude, {"weekly", "fable-weekly"},
                                 noon - Seconds(30 * day), noon, format);
    };
    EXPECT_EQ(text(HistoryExportFormat::csv),
              "capturedAt,provider,windowID,usedPercent,resetsAt\n"
              "2025-11-17T13:48:00Z,claude,weekly,10.5,2025-11-22T08:48:00Z\n"
              "2025-11-18T13:48:00Z,claude,fable-weekly,20.0,2025-11-22T08:48:00Z\n");
    const auto json = nlohmann::json::parse(text(HistoryExportFormat::json));
    ASSERT_EQ(json.size(), 2u);
    EXPECT_EQ(json[1]["windowID"], "fable-weekly");
    EXPECT_EQ(json[1]["usedPercent"], 20);
    EXPECT_EQ(historyExportName(AgentProviderID("../x"), noon, TimeZone::utc()),
              "Vellmark-Verlauf-x-2025-11-20");
    EXPECT_EQ(historyExportFormat("a.b/c.PNG"), HistoryExportFormat::png);
    EXPECT_EQ(historyExportFormat("name"), HistoryExportFormat::csv);
}

} // namespace
} // namespace vellmark::tests
