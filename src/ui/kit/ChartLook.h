#pragma once

#include "ui/kit/Theme.h"

#include <QPolygonF>
#include <QString>

#include <optional>
#include <utility>
#include <vector>

namespace vellmark::kit {

/// What a chart draws. Places are shares of the plot: x from 0 at the left to 1 at the right, y
/// from 0 at the bottom to 1 at the top.
struct ChartLook {
    enum class Stroke {
        strong, ///< with an area below, and a filled dot where it is read
        dotted,
        thin,
        faint, ///< in grey
    };
    struct Line {
        Stroke stroke = Stroke::strong;
        /// Stands at the line's end where there are several lines.
        QString name;
        std::vector<QPolygonF> pieces;
        /// Filled in place of a line: left, right, bottom and top of each.
        std::vector<QRectF> boxes;
        bool operator==(const Line&) const = default;
    };
    struct Span {
        double begin = 0;
        double end = 0;
        bool isHatched = false;
        /// Drawn where it has room.
        QString label;
        bool operator==(const Span&) const = default;
    };
    struct Forecast {
        QPointF from;
        QPointF to;
        ColorRole color = ColorRole::ink2;
        /// With an open ring at its end.
        bool hasRing = false;
        bool operator==(const Forecast&) const = default;
    };
    struct Label {
        double place = 0;
        QString text;
        bool isBold = false;
        bool operator==(const Label&) const = default;
    };

    QColor accentLight;
    QColor accentDark;
    /// In a large chart the strong line is stronger.
    bool isLarge = false;
    std::vector<Line> lines;
    /// Dotted verticals.
    std::vector<double> verticals;
    std::vector<Span> spans;
    /// A thin grey line with its name at its end.
    std::optional<std::pair<QPointF, QPointF>> guide;
    QString guideName;
    std::optional<Forecast> forecast;
    std::optional<QPointF> dot;
    /// Below the plot; earlier ones win where there is no room for all.
    std::vector<Label> bottomLabels;
    /// At the right; each with a line across the plot.
    std::vector<Label> sideLabels;

    bool operator==(const ChartLook&) const = default;
};

/// What is written beside the place that is read.
struct ChartReadoutLook {
    struct Row {
        QString name;
        QString value;
        /// Of the dot on the line.
        std::optional<double> y;
        ChartLook::Stroke stroke = ChartLook::Stroke::strong;
    };
    double x = 0;
    QString title;
    std::vector<Row> rows;
    QString note;
    /// Everything in one sentence, for assistive software.
    QString spoken;
};

} // namespace vellmark::kit
