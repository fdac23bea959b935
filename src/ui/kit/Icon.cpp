#include "ui/kit/Icon.h"

#include "ui/kit/PathText.h"

#include <QPainter>
#include <QRectF>

#include <cmath>
#include <map>
#include <numbers>
#include <string>

namespace vellmark::kit {

namespace {

constexpr double gridSide = 16;
constexpr double lineWidth = 1.35;
constexpr std::string_view filledSuffix = ".fill";

struct NamedPath {
    std::string_view name;
    std::string_view path;
};

#define VELLMARK_RING "M14 8a6 6 0 1 1-12 0a6 6 0 1 1 12 0z"

constexpr NamedPath namedPaths[] = {
    {"arrow.clockwise", "M13.2 8.6A5.25 5.25 0 1 1 11.7 4.3L13.2 5.8M13.4 2.6V5.9H10.1"},
    {"arrow.down", "M8 3v10M4 9l4 4 4-4"},
    {"arrow.up.right", "M5 11L11 5M6.2 5H11v4.8"},
    {"chart.xyaxis.line", "M2.5 2.5v11h11M5 10.2l2.6-3.4 2.2 2L13.2 4.4"},
    {"checkmark", "M3.2 8.4L6.6 11.8L12.8 4.6"},
    {"chevron.down", "M3.5 6L8 10.5L12.5 6"},
    {"chevron.left", "M10 3.5L5.5 8L10 12.5"},
    {"chevron.right", "M6 3.5L10.5 8L6 12.5"},
    {"chevron.up", "M3.5 10L8 5.5L12.5 10"},
    {"chevron.up.chevron.down", "M5 6.2l3-3 3 3M5 9.8l3 3 3-3"},
    {"clock", VELLMARK_RING "M8 4.8V8l2.2 1.5"},
    {"doc.on.doc", "M5.5 5.5h7.5v8H5.5zM3.5 10.5H3v-8h7.5v1"},
    {"ellipsis", "M4 8a.4.4 0 1 1-.8 0a.4.4 0 1 1 .8 0zM8.4 8a.4.4 0 1 1-.8 0a.4.4 0 1 1 .8 0z"
                 "M12.8 8a.4.4 0 1 1-.8 0a.4.4 0 1 1 .8 0z"},
    {"envelope", "M2 4h12v8.2H2zM2.4 4.5L8 9l5.6-4.5"},
    {"eye.slash", "M1.5 8C2.8 5.6 5.1 3.8 8 3.8S13.2 5.6 14.5 8C13.2 10.4 10.9 12.2 8 12.2"
                  "S2.8 10.4 1.5 8zM10 8a2 2 0 1 1-4 0a2 2 0 1 1 4 0zM3 13L13 3"},
    {"folder", "M2 3.8h4.2l1.5 1.7H14V13H2z"},
    {"info.circle", VELLMARK_RING "M8 7.4v3.4M8 5.2v.1"},
    {"line.3.horizontal", "M3 5h10M3 8h10M3 11h10"},
    {"list.bullet.rectangle",
     "M3.5 2.5h9A1.5 1.5 0 0 1 14 4v8a1.5 1.5 0 0 1-1.5 1.5h-9A1.5 1.5 0 0 1 2 12V4"
     "a1.5 1.5 0 0 1 1.5-1.5zM4.8 5.6h.1M4.8 8h.1M4.8 10.4h.1M7.2 5.6h4M7.2 8h4M7.2 10.4h4"},
    {"macwindow", "M3.5 3h9A1.5 1.5 0 0 1 14 4.5v7a1.5 1.5 0 0 1-1.5 1.5h-9"
                  "A1.5 1.5 0 0 1 2 11.5v-7A1.5 1.5 0 0 1 3.5 3zM2 6.2h12"},
    {"magnifyingglass", "M11.2 7a4.2 4.2 0 1 1-8.4 0a4.2 4.2 0 1 1 8.4 0zM10.1 10.1l3.4 3.4"},
    {"person.crop.circle", VELLMARK_RING "M10 6.6a2 2 0 1 1-4 0a2 2 0 1 1 4 0z"
                                         "M4.2 12.4c.8-1.6 2.1-2.4 3.8-2.4s3 .8 3.8 2.4"},
    {"questionmark.circle",
     VELLMARK_RING "M6.3 6.5a1.7 1.7 0 1 1 2.6 1.4c-.6.4-.9.7-.9 1.3M8 11.2v.1"},
    {"square.and.arrow.down",
     "M8 2v7.6M5 6.8l3 3 3-3M2.8 10.2v2a1.3 1.3 0 0 0 1.3 1.3h7.8a1.3 1.3 0 0 0 1.3-1.3v-2"},
    {"square.grid.2x2", "M2.5 2.5h4v4h-4zM9.5 2.5h4v4h-4zM2.5 9.5h4v4h-4zM9.5 9.5h4v4h-4z"},
    {"terminal", "M2 3h12v10H2zM4.6 6l2 2-2 2M8.6 10.2h2.8"},
    {"xmark", "M4 4l8 8M12 4l-8 8"},
    {"xmark.circle", VELLMARK_RING "M6 6l4 4M10 6l-4 4"},
};

#undef VELLMARK_RING

/// Eight teeth about a hub.
QPainterPath gear() {
    struct Corner {
        double radius;
        double degrees;
    };
    constexpr Corner tooth[] = {{4.9, -14.5}, {6.4, -9}, {6.4, 9}, {4.9, 14.5}};
    QPolygonF outline;
    for (int index = 0; index < 8; ++index) {
        for (const Corner& corner : tooth) {
            const double angle = (index * 45 + corner.degrees) * std::numbers::pi / 180;
            outline << QPointF(8 + corner.radius * std::sin(angle),
                               8 - corner.radius * std::cos(angle));
        }
    }
    QPainterPath path;
    path.addPolygon(outline);
    path.closeSubpath();
    path.addEllipse(QPointF(8, 8), 2, 2);
    return path;
}

QPainterPath stroke(const QPainterPath& path, double width) {
    QPainterPathStroker stroker(QPen(Qt::black, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    return stroker.createStroke(path);
}

/// A triangle with the sign cut out of it, so that it stands on any ground.
QPainterPath warningTriangle() {
    QPainterPath triangle;
    triangle.addPolygon(QPolygonF({QPointF(8, 2.6), QPointF(14, 13), QPointF(2, 13)}));
    triangle.closeSubpath();
    QPainterPath stem;
    stem.moveTo(8, 6.2);
    stem.lineTo(8, 9.4);
    QPainterPath point;
    point.moveTo(8, 11.4);
    point.lineTo(8, 11.5);
    return triangle.united(stroke(triangle, 1.6))
        .subtracted(stroke(stem, 1.5))
        .subtracted(stroke(point, 1.5));
}

const std::map<std::string_view, QPainterPath>& paths() {
    static const auto all = [] {
        std::map<std::string_view, QPainterPath> result;
        for (const NamedPath& entry : namedPaths) {
            result.emplace(entry.name, pathFromText(entry.path).value_or(QPainterPath()));
        }
        result.emplace("gearshape", gear());
        result.emplace("exclamationmark.triangle.fill", warningTriangle());
        return result;
    }();
    return all;
}

} // namespace

const QPainterPath& iconPath(std::string_view name) {
    static const QPainterPath nothing;
    const auto found = paths().find(name);
    return found == paths().end() ? nothing : found->second;
}

std::vector<std::string_view> iconNames() {
    std::vector<std::string_view> names;
    for (const auto& entry : paths()) {
        names.push_back(entry.first);
    }
    return names;
}

void drawIcon(QPainter& painter, const QRectF& box, std::string_view name, const QColor& color,
              double degrees) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.center());
    painter.rotate(degrees);
    painter.scale(box.width() / gridSide, box.height() / gridSide);
    painter.translate(-gridSide / 2, -gridSide / 2);
    if (name.ends_with(filledSuffix)) {
        painter.fillPath(iconPath(name), color);
    } else {
        painter.strokePath(iconPath(name),
                           QPen(color, lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    painter.restore();
}

} // namespace vellmark::kit
