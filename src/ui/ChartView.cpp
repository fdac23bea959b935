#include "ui/ChartView.h"

#include "presentation/ChartReadout.h"
#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"

namespace vellmark {

namespace {

constexpr double full = 100;

QPointF share(const ChartPoint& point) {
    return {point.x, point.y / full};
}

kit::ChartLook::Line lineLook(const ChartLine& line) {
    kit::ChartLook::Line look{chartStroke(line.role), qString(line.name), {}, {}};
    for (const std::vector<ChartPoint>& piece : line.pieces) {
        QPolygonF polygon;
        polygon.reserve(static_cast<qsizetype>(piece.size()));
        for (const ChartPoint& point : piece) {
            polygon << share(point);
        }
        look.pieces.push_back(std::move(polygon));
    }
    for (const ChartDay& day : line.days) {
        look.boxes.emplace_back(QPointF(day.stretch.begin, day.lowest / full),
                                QPointF(day.stretch.end, day.highest / full));
    }
    return look;
}

/// A forecast that misses the reset by a little, or lasts, is grey.
kit::ColorRole forecastColor(const ChartForecast& forecast) {
    const bool isPressing =
        forecast.health == UsageHealth::attention || forecast.health == UsageHealth::critical;
    return forecast.isEmpty && isPressing ? markColor(forecast.health) : kit::ColorRole::ink2;
}

std::optional<kit::ChartReadoutLook> readoutLook(const ChartContent& content, double x) {
    const auto readout = chartReadout(content, x);
    if (!readout) {
        return std::nullopt;
    }
    kit::ChartReadoutLook look{.x = readout->x,
                               .title = qString(readout->title),
                               .rows = {},
                               .note = qString(readout->note),
                               .spoken = qString(readout->spoken)};
    for (const ChartReadout::Row& row : readout->rows) {
        look.rows.push_back({qString(row.name), qString(row.value),
                             row.y ? std::optional(*row.y / full) : std::nullopt,
                             chartStroke(row.role)});
    }
    return look;
}

} // namespace

kit::ChartLook::Stroke chartStroke(ChartLine::Role role) {
    switch (role) {
    case ChartLine::Role::main:
        return kit::ChartLook::Stroke::strong;
    case ChartLine::Role::second:
        return kit::ChartLook::Stroke::dotted;
    case ChartLine::Role::further:
        return kit::ChartLook::Stroke::thin;
    case ChartLine::Role::earlier:
        break;
    }
    return kit::ChartLook::Stroke::faint;
}

kit::ChartLook chartLook(const ChartContent& content, bool isLarge) {
    const kit::LogoLook& logo = providerLogo(content.agent);
    kit::ChartLook look;
    look.accentLight = logo.accentLight;
    look.accentDark = logo.accentDark;
    look.isLarge = isLarge;
    for (const ChartLine& line : content.lines) {
        look.lines.push_back(lineLook(line));
    }
    look.verticals = content.resets;
    for (const ChartSpan& span : content.spans) {
        look.spans.push_back({span.stretch.begin, span.stretch.end,
                              span.kind == ChartSpan::Kind::stale, qString(span.label)});
    }
    if (content.evenPace) {
        look.guide.emplace(share(content.evenPace->first), share(content.evenPace->second));
        look.guideName = qString(content.evenPaceName);
    }
    if (content.forecast) {
        look.forecast = {share(content.forecast->from), share(content.forecast->to),
                         forecastColor(*content.forecast), content.forecast->isEmpty};
    }
    if (content.latest) {
        look.dot = share(*content.latest);
    }
    for (const ChartTimeLabel& label : content.timeLabels) {
        look.bottomLabels.push_back({label.x, qString(label.text), label.isNow});
    }
    for (const ChartHeightLabel& label : content.heightLabels) {
        look.sideLabels.push_back({label.y / full, qString(label.text), false});
    }
    return look;
}

ChartView::ChartView(Size size, QWidget* parent)
    : kit::Chart(kit::ColorRole::card, parent), size_(size) {
    readoutAt = [this](double x) { return readoutLook(content_, x); };
    placeBeside = [this](double x, int steps) { return chartPlaceBeside(content_, x, steps); };
}

void ChartView::setContent(const ChartContent& content) {
    if (content == content_) {
        return;
    }
    content_ = content;
    setLastPlace(content.nowX);
    setAccessibleName(qString(content.accessibilityText));
    setLook(chartLook(content, size_ == Size::large));
}

} // namespace vellmark
