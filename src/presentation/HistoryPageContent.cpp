#include "presentation/HistoryPageContent.h"

#include "model/UsageRules.h"
#include "model/UsageTexts.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/AgentStanding.h"
#include "presentation/CalendarHours.h"
#include "presentation/HistoryStatistics.h"
#include "store/HistoryThinning.h"
#include "text/Formatting.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ranges>

namespace vellmark {

namespace {

constexpr int hourStep = 6;

bool isShort(const UsageWindow& window) {
    return window.windowDurationMinutes && *window.windowDurationMinutes < oneDay / oneMinute;
}

const AgentUsageSnapshot* snapshotOf(const UsageState& state, const HistoryPageChoice& choice) {
    const auto found = std::ranges::find(state.snapshots, choice.agent, &AgentUsageSnapshot::id);
    if (found != state.snapshots.end()) {
        return &*found;
    }
    return state.snapshots.empty() ? nullptr : &state.snapshots.front();
}

/// Over more than a day the longer windows tell most.
std::vector<const UsageWindow*> orderedWindows(const AgentUsageSnapshot& snapshot,
                                               ChartRange range) {
    std::vector<const UsageWindow*> windows;
    for (const UsageWindow& window : snapshot.windows) {
        windows.push_back(&window);
    }
    if (range != ChartRange::day) {
        std::ranges::stable_partition(windows,
                                      [](const UsageWindow* one) { return !isShort(*one); });
    }
    return windows;
}

bool isShown(const AgentUsageSnapshot& snapshot, const UsageWindow& window,
             const HistoryPageChoice& choice) {
    if (const auto wish = choice.shown.find({snapshot.id, window.id}); wish != choice.shown.end()) {
        return wish->second;
    }
    const bool hasLonger = std::ranges::any_of(
        snapshot.windows, [](const UsageWindow& other) { return !isShort(other); });
    return choice.range == ChartRange::day || !isShort(window) || !hasLonger;
}

std::vector<const UsageWindow*> shownWindows(const AgentUsageSnapshot& snapshot,
                                             const HistoryPageChoice& choice) {
    const auto all = orderedWindows(snapshot, choice.range);
    std::vector<const UsageWindow*> shown;
    for (const UsageWindow* window : all) {
        if (isShown(snapshot, *window, choice)) {
            shown.push_back(window);
        }
    }
    if (shown.empty() && !all.empty()) {
        shown.push_back(all.front());
    }
    return shown;
}

std::string nowText(const UsageWindow& window, const WindowStanding& standing,
                    const Localization& words) {
    if (standing.kind == WindowStanding::Kind::due) {
        return words.text("health.due");
    }
    return words.format(standing.isOld ? "usage.remaining" : "history.legend.now",
                        {percentText(std::max(remainingPercent(window), 0.0), words)});
}

void addLegend(HistoryPageContent& content, const AgentUsageSnapshot& snapshot,
               const UsageState& state, const HistoryPageChoice& choice, Instant now,
               const Localization& words) {
    const auto shown = shownWindows(snapshot, choice);
    const AgentStanding standing = standingOf(snapshot, state, now);
    const std::string hidden = words.text("history.legend.hidden");
    for (const UsageWindow* window : orderedWindows(snapshot, choice.range)) {
        const auto place = std::ranges::find(shown, window);
        HistoryLegendItem item{.windowID = window->id,
                               .name = windowLabel(*window, words, true),
                               .value = hidden,
                               .role = ChartLine::Role::further,
                               .isShown = place != shown.end(),
                               .canChange = true,
                               .accessibilityText = {}};
        if (item.isShown) {
            const auto index = static_cast<std::size_t>(window - snapshot.windows.data());
            item.value = nowText(*window, standing.windows[index], words);
            item.role = chartRole(static_cast<std::size_t>(place - shown.begin()));
            item.canChange = shown.size() > 1;
        }
        content.legend.push_back(std::move(item));
    }
    if (!shown.empty()) {
        content.legend.push_back(
            {.windowID = {},
             .name = words.format("chart.earlier", {rangeText(choice.range, words)}),
             .value = {},
             .role = ChartLine::Role::earlier,
             .isShown = choice.comparesEarlier,
             .canChange = true,
             .accessibilityText = {}});
    }
    for (HistoryLegendItem& item : content.legend) {
        const std::string& value = item.value.empty() && !item.isShown ? hidden : item.value;
        item.accessibilityText = value.empty() ? item.name : item.name + ", " + value;
    }
    content.resetWord = words.text("history.legend.reset");
}

// --- the heat map

/// An instant of the hour, to be written; the day is one on which no clock changes.
Instant someInstant(int weekday, int hour, const TimeZone& zone) {
    return zone.instant(
        {.year = 2025, .month = 1, .day = 6 + weekday, .hour = hour, .minute = 0, .second = 0});
}

void fillHeatMap(HeatMapContent& heat, const HistoryStatistics& statistics,
                 const Localization& words) {
    const TimeZone zone = words.timeZone();
    const int first = firstWeekday(words);
    double most = 0;
    for (int day = 0; day < HeatMapContent::days; ++day) {
        for (int hour = 0; hour < HeatMapContent::hours; ++hour) {
            most = std::max(most, statistics.usedAt(day, hour));
        }
    }
    std::array<std::string, HeatMapContent::hours> hourTexts;
    for (int hour = 0; hour < HeatMapContent::hours; ++hour) {
        hourTexts[static_cast<std::size_t>(hour)] =
            dateText(someInstant(0, hour, zone), DateForm::hour, words);
        if (hour % hourStep == 0) {
            heat.hourNames[hour] = hourTexts[static_cast<std::size_t>(hour)];
        }
    }
    for (std::size_t row = 0; row < HeatMapContent::days; ++row) {
        const int weekday = (first + static_cast<int>(row)) % HeatMapContent::days;
        heat.dayNames[row] = dateText(someInstant(weekday, 12, zone), DateForm::weekday, words);
        for (std::size_t hour = 0; hour < HeatMapContent::hours; ++hour) {
            const double used = statistics.usedAt(weekday, static_cast<int>(hour));
            heat.level[row][hour] =
                used > 0 ? std::clamp(static_cast<int>(
                                          std::ceil(used / most * (HeatMapContent::levels - 1))),
                                      1, HeatMapContent::levels - 1)
                         : 0;
            heat.words[row][hour] =
                words.format("history.heat.cell",
                             {heat.dayNames[row], hourTexts[hour], percentText(used, words)});
        }
    }
}

HeatMapContent heatMap(const AgentProviderID& agent, const HistoryStatistics& statistics,
                       const Localization& words) {
    HeatMapContent heat;
    heat.agent = agent;
    heat.title = words.text("history.heat.title");
    heat.less = words.text("history.heat.less");
    heat.more = words.text("history.heat.more");
    heat.accessibilityText = heat.title;
    fillHeatMap(heat, statistics, words);
    return heat;
}

// --- figures

std::string countWord(std::string_view one, std::string_view many, int count,
                      const Localization& words) {
    return words.text(words.takesSingular(count) ? one : many);
}

/// What is used a day beside what would be even; of a window shorter than a day, what is used of
/// each.
std::optional<HistoryFigure> averageFigure(const UsageWindow& window,
                                           const HistoryStatistics& statistics,
                                           const Localization& words) {
    const std::string used = words.text("history.used");
    if (isShort(window)) {
        if (statistics.periodsInUse == 0) {
            return std::nullopt;
        }
        return HistoryFigure{percentText(statistics.usedInPeriods / statistics.periodsInUse, words),
                             used, words.text("history.average.period")};
    }
    const auto aDay = statistics.usedADay();
    if (!aDay) {
        return std::nullopt;
    }
    HistoryFigure figure{percentText(*aDay, words), used, words.text("history.average.day")};
    if (window.windowDurationMinutes && *window.windowDurationMinutes > 0) {
        const double even = fullPercent / (*window.windowDurationMinutes / (oneDay / oneMinute));
        figure.caption =
            words.format("history.average.even", {percentText(std::round(even), words)});
    }
    return figure;
}

void addFigures(HistoryPageContent& content, const UsageWindow& window,
                const HistoryStatistics& statistics, const Localization& words) {
    const auto add = [&](HistoryFigure figure) { content.figures.push_back(std::move(figure)); };
    if (statistics.peak) {
        add({percentText(statistics.peak->usedPercent, words), words.text("history.used"),
             words.format("history.peak", {dateText(statistics.peak->at, DateForm::day, words)})});
    }
    if (auto average = averageFigure(window, statistics, words)) {
        add(std::move(*average));
    }
    if (statistics.peak) {
        add({integerText(statistics.timesUsedUp, words),
             countWord("history.usedUp.once", "history.usedUp.times", statistics.timesUsedUp,
                       words),
             words.text("history.usedUp")});
    }
    if (statistics.endsSeen > 0) {
        add({percentText(fullPercent * statistics.endsWithRest / statistics.endsSeen, words),
             words.format(words.takesSingular(statistics.endsSeen) ? "history.unused.reset"
                                                                   : "history.unused.resets",
                          {static_cast<std::int64_t>(statistics.endsSeen)}),
             words.format(
                 "history.unused",
                 {percentText(std::round(statistics.rest / statistics.endsSeen), words)})});
    }
    if (const auto busiest = statistics.busiestHour()) {
        const TimeZone zone = words.timeZone();
        add({dateText(someInstant(0, busiest->hour, zone), DateForm::hour, words),
             words.format(
                 "history.busiest.until",
                 {dateText(someInstant(0, (busiest->hour + 1) % 24, zone), DateForm::hour, words)}),
             words.format("history.busiest",
                          {percentText(std::round(fullPercent * busiest->share), words)})});
    }
}

void addStatistics(HistoryPageContent& content, const AgentUsageSnapshot& snapshot,
                   const UsageWindow& window, const UsageState& state, const UsageHistory& history,
                   const HistoryPageChoice& choice, Instant now, const Localization& words) {
    const AgentStanding standing = standingOf(snapshot, state, now);
    const auto index = static_cast<std::size_t>(&window - snapshot.windows.data());
    const HistoryPoint latest(standing.windows[index].readAt, window.usedPercent, window.resetsAt);
    const StatisticsSpan span{now - length(choice.range), now, HistoryThinning::keptWholeSince(now),
                              words.timeZone()};
    HistoryStatistics statistics;
    std::optional<Instant> since;
    history.read({snapshot.id, window.id}, span.from, now,
                 [&](std::span<const HistoryPoint> points) {
                     statistics = historyStatistics(points, latest, span);
                     if (!points.empty()) {
                         since = points.front().capturedAt;
                     }
                 });
    content.figuresTitle =
        words.format("history.figures.title",
                     {windowLabel(window, words, true), longRangeText(choice.range, words)});
    addFigures(content, window, statistics, words);
    content.heat = heatMap(snapshot.id, statistics, words);
    if (!since) {
        content.figuresNote = words.text("history.nothingYet");
    } else if (!statistics.usedADay() && *since > span.from) {
        content.figuresNote = words.format("history.firstDay", {instantText(*since, now, words)});
    }
}

} // namespace

std::optional<AgentProviderID> shownAgent(const UsageState& state,
                                          const HistoryPageChoice& choice) {
    const AgentUsageSnapshot* snapshot = snapshotOf(state, choice);
    return snapshot ? std::optional(snapshot->id) : std::nullopt;
}

std::vector<std::string> shownWindowIDs(const UsageState& state, const HistoryPageChoice& choice) {
    std::vector<std::string> windowIDs;
    if (const AgentUsageSnapshot* snapshot = snapshotOf(state, choice)) {
        for (const UsageWindow* window : shownWindows(*snapshot, choice)) {
            windowIDs.push_back(window->id);
        }
    }
    return windowIDs;
}

HistoryPageContent historyPageContent(const UsageState& state, const UsageHistory& history,
                                      const HistoryPageChoice& choice, Instant now,
                                      const Localization& words) {
    HistoryPageContent content;
    content.head = refreshablePageHead({"nav.history", "history.subtitle"}, state, words);
    content.head.age.clear(); // every reading has its own time here
    const AgentUsageSnapshot* snapshot = snapshotOf(state, choice);
    if (!snapshot) {
        content.noAgents = noAgentsContent(words);
        return content;
    }
    content.exportButton = {words.text("history.export"), "square.and.arrow.down",
                            words.text("history.export.help")};
    content.agentsTitle = words.text("nav.section.agents");
    for (const AgentUsageSnapshot& shown : state.snapshots) {
        if (&shown == snapshot) {
            content.agent = static_cast<int>(content.agents.size());
        }
        content.agents.push_back({shown.id, agentShortName(shown.id, words)});
    }
    content.rangesTitle = words.text("history.ranges");
    for (const ChartRange range : allChartRanges) {
        content.ranges.push_back(rangeText(range, words));
    }
    content.range = static_cast<int>(choice.range);
    addLegend(content, *snapshot, state, choice, now, words);
    content.chart = chartContent(state, history,
                                 {.agent = snapshot->id,
                                  .windowIDs = shownWindowIDs(state, choice),
                                  .range = choice.range,
                                  .looksAhead = false,
                                  .comparesEarlier = choice.comparesEarlier},
                                 now, words);
    const auto shown = shownWindows(*snapshot, choice);
    if (shown.empty()) {
        content.chartNote = words.text("history.nothingYet");
        content.heat = heatMap(snapshot->id, {}, words);
        content.figuresTitle = agentShortName(snapshot->id, words);
        content.figuresNote = content.chartNote;
        return content;
    }
    addStatistics(content, *snapshot, *shown.front(), state, history, choice, now, words);
    return content;
}

} // namespace vellmark
