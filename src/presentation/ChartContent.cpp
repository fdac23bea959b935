#include "presentation/ChartContent.h"

#include "model/UsageRules.h"
#include "model/UsageTexts.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/AgentStanding.h"
#include "presentation/CalendarHours.h"
#include "store/HistoryThinning.h"
#include "text/Formatting.h"

#include <algorithm>
#include <cmath>

namespace vellmark {

namespace {

/// Where now stands in a chart that looks ahead.
constexpr double shareOfPast = 0.72;
/// Of the same figures a sample comes so often.
constexpr Seconds recordingStep(35 * 60);
/// More verticals would be a ground of their own.
constexpr std::size_t mostResets = 70;

/// What all parts of a chart are made from.
struct Making {
    const UsageState& state;
    const UsageHistory& history;
    const ChartRequest& request;
    const AgentUsageSnapshot& snapshot;
    const AgentStanding& standing;
    Instant now;
    const Localization& words;
};

struct ShownWindow {
    const UsageWindow& window;
    const WindowStanding& standing;
};

std::optional<ShownWindow> shownWindow(const Making& making, const std::string& windowID) {
    const auto& windows = making.snapshot.windows;
    const auto found = std::ranges::find(windows, windowID, &UsageWindow::id);
    if (found == windows.end()) {
        return std::nullopt;
    }
    const auto index = static_cast<std::size_t>(found - windows.begin());
    return ShownWindow{*found, making.standing.windows[index]};
}

double left(const UsageWindow& window) {
    return std::clamp(remainingPercent(window), 0.0, fullPercent);
}

/// A line would go up and down too often to be followed.
bool isShownByDays(const UsageWindow& window, ChartRange range) {
    return window.windowDurationMinutes && *window.windowDurationMinutes < oneDay / oneMinute &&
           range >= ChartRange::month;
}

bool wasRead(const AgentUsageSnapshot& agent, const UsageHistory& history, Instant begin,
             Instant end) {
    return std::ranges::any_of(agent.windows, [&](const UsageWindow& window) {
        const auto last = history.last({agent.id, window.id}, end);
        return last && last->capturedAt > begin && last->capturedAt < end;
    });
}

/// Why a window has no figures in a gap; nothing where its agent was read and did not tell of it.
std::optional<ChartSpan::Kind> kindOf(const ChartStretch& gap, const Making& making,
                                      const ChartScale& scale) {
    const Instant begin = scale.instant(gap.begin) + recordingStep;
    const Instant end = scale.instant(gap.end) - recordingStep;
    if (wasRead(making.snapshot, making.history, begin, end)) {
        return std::nullopt;
    }
    const bool wereOthersRead =
        std::ranges::any_of(making.state.snapshots, [&](const AgentUsageSnapshot& agent) {
            return wasRead(agent, making.history, begin, end);
        });
    return wereOthersRead ? ChartSpan::Kind::stale : ChartSpan::Kind::unread;
}

ChartSpan span(ChartSpan::Kind kind, ChartStretch stretch, const Localization& words) {
    return {kind, stretch,
            words.text(kind == ChartSpan::Kind::stale ? "chart.stale" : "chart.unread")};
}

/// The lowest and the highest of every day on which something was read.
std::vector<ChartDay> daysOf(std::span<const HistoryPoint> points, const ChartScale& scale,
                             const TimeZone& zone) {
    std::vector<ChartDay> days;
    CalendarHours hours(zone);
    std::optional<std::int64_t> day;
    const HistoryPoint* before = nullptr;
    for (const HistoryPoint& point : points) {
        if (point.capturedAt < scale.from) {
            continue;
        }
        if (const CalendarHour& hour = hours.at(point.capturedAt); hour.day != day) {
            const double begin = scale.x(beginOfDay(point.capturedAt, zone));
            const double end = scale.x(beginOfDay(point.capturedAt, 1, zone));
            days.push_back({{std::max(begin, 0.0), std::min(end, 1.0)}, fullPercent, 0});
            day = hour.day;
            before = nullptr;
        }
        const double value = std::clamp(fullPercent - point.usedPercent, 0.0, fullPercent);
        const bool wasReset = before && before->resetsAtSeconds != point.resetsAtSeconds &&
                              resetBetween(*before, point);
        days.back().lowest = std::min(days.back().lowest, value);
        days.back().highest = std::max(days.back().highest, wasReset ? fullPercent : value);
        before = &point;
    }
    return days;
}

/// Through a time in which only this agent could not be read its last figure stays, until a reset.
void goOnWhereStale(ChartCurve& curve, const Making& making, const ChartScale& scale) {
    for (std::size_t index = 0; index < curve.gaps.size(); ++index) {
        const ChartStretch& gap = curve.gaps[index];
        if (kindOf(gap, making, scale) != ChartSpan::Kind::stale) {
            continue;
        }
        const auto reset = std::ranges::lower_bound(curve.resets, gap.begin);
        const double end = reset != curve.resets.end() ? std::min(*reset, gap.end) : gap.end;
        std::vector<ChartPoint>& before = curve.pieces[index]; // every gap ends a piece
        before.push_back({end, before.back().y});
    }
}

/// The first line tells of resets, pauses and the latest value.
void addMarks(ChartContent& content, const Making& making, const ShownWindow& shown,
              const ChartCurve& curve) {
    const ChartScale& scale = content.scale;
    if (curve.resets.size() <= mostResets) {
        content.resets = curve.resets;
    }
    for (const ChartStretch& gap : curve.gaps) {
        if (const auto kind = kindOf(gap, making, scale)) {
            content.spans.push_back(span(*kind, gap, making.words));
        }
    }
    const double readX = scale.x(shown.standing.readAt);
    if (shown.standing.isOld && readX < content.nowX) {
        content.spans.push_back(
            span(ChartSpan::Kind::stale, {std::max(readX, 0.0), content.nowX}, making.words));
    }
    if (shown.standing.kind != WindowStanding::Kind::due) {
        content.latest = ChartPoint{content.nowX, left(shown.window)};
    }
}

/// The latest figure counts until now, or until the reset after which nobody knows.
void goOnUntilNow(ChartCurve& curve, const ChartContent& content, const ShownWindow& shown) {
    if (curve.pieces.empty()) {
        return;
    }
    double end = content.nowX;
    if (shown.standing.kind == WindowStanding::Kind::due && shown.window.resetsAt) {
        end = std::min(end, content.scale.x(*shown.window.resetsAt));
    }
    std::vector<ChartPoint>& last = curve.pieces.back();
    if (last.back().x < end) {
        last.push_back({end, last.back().y});
    }
}

void addLine(ChartContent& content, const Making& making, const ShownWindow& shown) {
    const WindowKey key(making.snapshot.id, shown.window.id);
    const HistoryPoint latest(shown.standing.readAt, shown.window.usedPercent,
                              shown.window.resetsAt);
    ChartLine line{.role = chartRole(content.lines.size()),
                   .name = windowLabel(shown.window, making.words, true),
                   .pieces = {},
                   .days = {}};
    ChartCurve curve;
    making.history.read(key, content.scale.from, making.now,
                        [&](std::span<const HistoryPoint> points) {
                            curve = chartCurve(points, latest, content.scale);
                            if (isShownByDays(shown.window, making.request.range)) {
                                line.days = daysOf(points, content.scale, making.words.timeZone());
                            }
                        });
    goOnWhereStale(curve, making, content.scale);
    goOnUntilNow(curve, content, shown);
    if (content.lines.empty()) {
        addMarks(content, making, shown, curve);
    }
    if (line.days.empty()) {
        line.pieces = std::move(curve.pieces);
    }
    content.lines.push_back(std::move(line));
}

/// The first window in the time of the same length before.
void addEarlier(ChartContent& content, const Making& making, const ShownWindow& shown) {
    ChartScale scale = content.scale;
    const Seconds back = making.now - scale.from;
    scale.from -= back;
    scale.to -= back;
    ChartLine line{.role = ChartLine::Role::earlier,
                   .name = making.words.format("chart.earlier",
                                               {rangeText(making.request.range, making.words)}),
                   .pieces = {},
                   .days = {}};
    making.history.read({making.snapshot.id, shown.window.id}, scale.from, scale.to,
                        [&](std::span<const HistoryPoint> points) {
                            line.pieces = chartCurve(points, std::nullopt, scale).pieces;
                        });
    content.lines.push_back(std::move(line));
}

/// What the one window of the chart should and will do until its reset.
void addOutlook(ChartContent& content, const Making& making, const ShownWindow& shown) {
    const UsageWindow& window = shown.window;
    if (!window.resetsAt || *window.resetsAt <= making.now) {
        return;
    }
    const Instant reset = *window.resetsAt;
    const ChartScale& scale = content.scale;
    const bool isByDays = !content.lines.front().days.empty();
    if (!isByDays && window.windowDurationMinutes && *window.windowDurationMinutes > 0) {
        content.evenPace = {
            ChartPoint{scale.x(reset - Seconds(*window.windowDurationMinutes * 60)), fullPercent},
            ChartPoint{scale.x(reset), 0}};
        content.evenPaceName = making.words.text("chart.evenPace");
    }
    if (!making.request.looksAhead) {
        return;
    }
    if (scale.x(reset) <= 1) {
        content.resets.push_back(scale.x(reset));
        content.timeLabels.push_back(
            {scale.x(reset), instantText(reset, making.now, making.words), false});
    }
    const auto recent = making.state.recentPointsOf(making.snapshot.id, window.id);
    const auto rate = expectedRate(window, shown.standing.judgedAt, recent);
    if (shown.standing.kind != WindowStanding::Kind::counts || shown.standing.isOld || !rate) {
        return;
    }
    const double rest = left(window);
    const double atReset = rest - *rate * (reset - making.now).count();
    const bool isEmpty = atReset < 0;
    const Instant end = isEmpty ? making.now + Seconds(rest / *rate) : reset;
    content.forecast = ChartForecast{.from = {content.nowX, rest},
                                     .to = {scale.x(end), std::max(atReset, 0.0)},
                                     .isEmpty = isEmpty,
                                     .health = shown.standing.health};
}

// --- axes

/// Where a chart that has room for it tells the time: on the hours, days or months of the calendar.
std::vector<ChartTimeLabel> calendarLabels(const ChartScale& scale, ChartRange range, Instant now,
                                           const Localization& words) {
    const TimeZone zone = words.timeZone();
    std::vector<ChartTimeLabel> labels;
    const auto add = [&](Instant instant, const std::string& text) {
        if (instant >= scale.from && instant < now) {
            labels.push_back({scale.x(instant), text, false});
        }
    };
    const CalendarDate today = zone.calendarDate(now);
    const auto midnight = [&](int daysAgo) { return beginOfDay(now, -daysAgo, zone); };
    switch (range) {
    case ChartRange::day:
        for (int hour = -24; hour < 24; hour += 6) {
            CalendarDate date = today;
            date.hour = hour;
            date.minute = date.second = 0;
            const Instant instant = zone.instant(date);
            add(instant, instantText(instant, now, words));
        }
        break;
    case ChartRange::week:
        for (int days = 7; days >= 0; --days) {
            add(midnight(days), dateText(midnight(days), DateForm::weekdayAndDay, words));
        }
        break;
    case ChartRange::month:
    case ChartRange::quarter: {
        const int step = range == ChartRange::month ? 7 : 14;
        for (int days = 13 * 7; days > 0; --days) {
            if (days % step == 0) {
                add(midnight(days), dateText(midnight(days), DateForm::day, words));
            }
        }
        break;
    }
    case ChartRange::year:
        for (int months = 12; months >= 0; --months) {
            CalendarDate date{.year = today.year, .month = today.month - months, .day = 1};
            if (date.month < 1) {
                date.month += 12;
                --date.year;
            }
            const Instant instant = zone.instant(date);
            add(instant,
                dateText(instant, date.month == 1 ? DateForm::monthAndYear : DateForm::month,
                         words));
        }
        break;
    }
    return labels;
}

void addAxes(ChartContent& content, const Making& making) {
    const bool looksAhead = making.request.looksAhead;
    const double step = looksAhead ? 50 : 25;
    for (double y = fullPercent; y >= 0; y -= step) {
        content.heightLabels.push_back({y, percentText(y, making.words)});
    }
    content.timeLabels.push_back({content.nowX, making.words.text("chart.now"), true});
    if (looksAhead) {
        content.timeLabels.push_back(
            {0,
             making.request.range == ChartRange::day
                 ? instantText(content.scale.from, making.now, making.words)
                 : dateText(content.scale.from, DateForm::weekdayAndDay, making.words),
             false});
        return;
    }
    const auto labels =
        calendarLabels(content.scale, making.request.range, making.now, making.words);
    content.timeLabels.insert(content.timeLabels.end(), labels.begin(), labels.end());
}

std::string accessibilityText(const Making& making) {
    std::string text = making.words.format("chart.accessibility",
                                           {agentShortName(making.snapshot.id, making.words),
                                            longRangeText(making.request.range, making.words)});
    for (const std::string& windowID : making.request.windowIDs) {
        if (const auto shown = shownWindow(making, windowID)) {
            text += " " +
                    making.words.format("chart.accessibility.window",
                                        {windowLabel(shown->window, making.words),
                                         percentText(std::max(remainingPercent(shown->window), 0.0),
                                                     making.words)});
        }
    }
    return text;
}

} // namespace

ChartLine::Role chartRole(std::size_t index) {
    switch (index) {
    case 0:
        return ChartLine::Role::main;
    case 1:
        return ChartLine::Role::second;
    default:
        return ChartLine::Role::further;
    }
}

ChartContent chartContent(const UsageState& state, const UsageHistory& history,
                          const ChartRequest& request, Instant now, const Localization& words) {
    ChartContent content{.agent = request.agent};
    content.words = words;
    const Seconds past = length(request.range);
    content.nowX = request.looksAhead ? shareOfPast : 1;
    content.scale = {.from = now - past,
                     .to = now - past + past / content.nowX,
                     .columns = request.looksAhead ? 400 : 500,
                     .wholeSince = HistoryThinning::keptWholeSince(now)};
    const auto snapshot =
        std::ranges::find(state.snapshots, request.agent, &AgentUsageSnapshot::id);
    if (snapshot == state.snapshots.end()) {
        return content;
    }
    const AgentStanding standing = standingOf(*snapshot, state, now);
    const Making making{state, history, request, *snapshot, standing, now, words};
    addAxes(content, making);
    std::optional<ShownWindow> first;
    for (const std::string& windowID : request.windowIDs) {
        if (const auto shown = shownWindow(making, windowID)) {
            addLine(content, making, *shown);
            if (!first) {
                first.emplace(*shown);
            }
        }
    }
    if (first && content.lines.size() == 1) {
        addOutlook(content, making, *first);
    }
    if (first && request.comparesEarlier) {
        addEarlier(content, making, *first);
    }
    content.accessibilityText = accessibilityText(making);
    return content;
}

} // namespace vellmark
