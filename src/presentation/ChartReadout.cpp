#include "presentation/ChartReadout.h"

#include "text/Formatting.h"

#include <algorithm>
#include <cmath>

namespace vellmark {

namespace {

/// Readings that lie closer are one for the arrow keys: so many are in a chart.
constexpr double leastStep = 1.0 / 240;

using Pieces = std::vector<std::vector<ChartPoint>>;

/// The point that lies closest to `x`, if any.
const ChartPoint* closestPoint(const Pieces& pieces, double x) {
    const ChartPoint* closest = nullptr;
    const auto consider = [&](const ChartPoint& point) {
        if (!closest || std::abs(point.x - x) < std::abs(closest->x - x)) {
            closest = &point;
        }
    };
    const auto next =
        std::ranges::upper_bound(pieces, x, {}, [](const auto& piece) { return piece.front().x; });
    if (next != pieces.end()) {
        consider(next->front());
    }
    if (next != pieces.begin()) {
        const std::vector<ChartPoint>& points = *std::prev(next);
        const auto above = std::ranges::upper_bound(points, x, {}, &ChartPoint::x);
        consider(*std::prev(above));
        if (above != points.end()) {
            consider(*above);
        }
    }
    return closest;
}

const ChartDay* dayAt(const ChartLine& line, double x) {
    const auto found = std::ranges::find_if(line.days, [x](const ChartDay& day) {
        return x >= day.stretch.begin && x < day.stretch.end;
    });
    return found != line.days.end() ? &*found : nullptr;
}

const ChartSpan* spanAt(const ChartContent& content, double x) {
    const auto found = std::ranges::find_if(content.spans, [&](const ChartSpan& span) {
        const bool isLast = span.stretch.end >= content.nowX;
        return x > span.stretch.begin && (x < span.stretch.end || isLast);
    });
    return found != content.spans.end() ? &*found : nullptr;
}

std::optional<ChartReadout::Row> rowOf(const ChartLine& line, double x, const Localization& words) {
    ChartReadout::Row row{.name = line.name, .value = {}, .y = {}, .role = line.role};
    if (const ChartDay* day = dayAt(line, x)) {
        row.value = words.format("chart.readout.day", {percentText(day->lowest, words),
                                                       percentText(day->highest, words)});
        return row;
    }
    row.y = valueAt(line.pieces, x);
    if (!row.y) {
        return std::nullopt;
    }
    row.value = words.format("usage.remaining", {percentText(std::round(*row.y), words)});
    return row;
}

} // namespace

std::optional<ChartReadout> chartReadout(const ChartContent& content, double x) {
    if (!content.hasCourse()) {
        return std::nullopt;
    }
    const Localization& words = content.words;
    ChartReadout readout;
    readout.x = std::clamp(x, 0.0, content.nowX);
    const ChartSpan* span = spanAt(content, readout.x);
    const auto lined = std::ranges::find_if(
        content.lines, [](const ChartLine& line) { return !line.pieces.empty(); });
    if (!span && lined != content.lines.end()) {
        if (const ChartPoint* point = closestPoint(lined->pieces, readout.x)) {
            readout.x = std::clamp(point->x, 0.0, content.nowX);
        }
    }
    readout.title = dateText(content.scale.instant(readout.x),
                             lined != content.lines.end() ? DateForm::weekdayDayAndTime
                                                          : DateForm::weekdayAndDay,
                             words);
    readout.spoken = readout.title;
    for (const ChartLine& line : content.lines) {
        if (const auto row = rowOf(line, readout.x, words)) {
            readout.rows.push_back(*row);
            readout.spoken += ", " + row->name + " " + row->value;
        }
    }
    if (span) {
        readout.note = words.text(span->kind == ChartSpan::Kind::stale ? "chart.readout.stale"
                                                                       : "chart.readout.unread");
    } else if (readout.rows.empty()) {
        readout.note = words.text("chart.readout.unread");
    }
    if (!readout.note.empty()) {
        readout.spoken += ", " + readout.note;
    }
    return readout;
}

double chartPlaceBeside(const ChartContent& content, double x, int steps) {
    const double wanted = std::clamp(x + steps * leastStep, 0.0, content.nowX);
    const auto lined = std::ranges::find_if(
        content.lines, [](const ChartLine& line) { return !line.pieces.empty(); });
    if (lined == content.lines.end() || spanAt(content, wanted)) {
        return wanted;
    }
    // The next reading that is at least that far away.
    double place = steps < 0 ? 0.0 : content.nowX;
    for (const std::vector<ChartPoint>& points : lined->pieces) {
        if (steps < 0) {
            const auto above = std::ranges::upper_bound(points, wanted, {}, &ChartPoint::x);
            place = above != points.begin() ? std::max(place, std::prev(above)->x) : place;
        } else {
            const auto found = std::ranges::lower_bound(points, wanted, {}, &ChartPoint::x);
            place = found != points.end() ? std::min(place, found->x) : place;
        }
    }
    for (const ChartSpan& span : content.spans) {
        const double middle = (span.stretch.begin + span.stretch.end) / 2;
        if (steps < 0 ? middle > place && middle < wanted : middle < place && middle > wanted) {
            place = middle; // no pause is jumped over
        }
    }
    return std::clamp(place, 0.0, content.nowX);
}

} // namespace vellmark
