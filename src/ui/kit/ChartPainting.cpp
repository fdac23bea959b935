#include "ui/kit/ChartPainting.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/SoftShadow.h"
#include "ui/kit/TextStyle.h"

#include <QImage>
#include <QLineF>
#include <QPainter>
#include <QPen>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace vellmark::kit {

namespace {

constexpr double topRoom = 6;
constexpr double bottomRoom = 22;
constexpr double leftRoom = 2;
constexpr double sideLabelRoom = 44;
constexpr double sideLabelGap = 7;
constexpr double bottomLabelDrop = 9;
constexpr double bottomLabelGap = 10;
constexpr double endNameGap = 7;
constexpr double widestEndName = 132;
constexpr double endNameHeight = 14;
constexpr float areaOpacity = 0.1F;
constexpr float boxOpacity = 0.16F;
constexpr double strongWidth = 2;
constexpr double lineWidth = 1.5;
constexpr double dotRadius = 3;
constexpr double ringRadius = 4;
constexpr double readDotRadius = 3.5;
constexpr double hatchStep = 8.5;
constexpr double spanLabelPadding = 4;

constexpr TextStyle endNameStyle = style::smallMedium;
constexpr TextStyle boldAxis{10, 12, QFont::DemiBold};

QColor accent(const ChartLook& look) {
    return Theme::current().isDark() ? look.accentDark : look.accentLight;
}

bool namesLines(const ChartLook& look) {
    return look.lines.size() > 1;
}

QPolygonF placed(const QPolygonF& piece, const ChartLayout& layout) {
    QPolygonF result;
    result.reserve(piece.size());
    for (const QPointF& share : piece) {
        result << layout.place(share);
    }
    return result;
}

/// On the middle of a pixel, so that a line of one point is one pixel wide.
double crisp(double coordinate) {
    return std::floor(coordinate) + 0.5;
}

void drawSideLabels(QPainter& painter, const ChartLook& look, const ChartLayout& layout) {
    for (const ChartLook::Label& label : look.sideLabels) {
        const double y = crisp(layout.place({0, label.place}).y() - 0.5);
        painter.setPen(QPen(color(ColorRole::line), 1));
        painter.drawLine(QPointF(layout.plot.left(), y), QPointF(layout.gridRight, y));
        painter.setPen(color(ColorRole::ink3));
        drawText(painter,
                 QRectF(layout.gridRight + sideLabelGap, y - style::axis.lineHeight / 2.0,
                        sideLabelRoom, style::axis.lineHeight),
                 Qt::AlignLeft, label.text, style::axis);
    }
}

/// Those that have room: centred below their places if they can be, else beginning or ending there.
void drawBottomLabels(QPainter& painter, const ChartLook& look, const ChartLayout& layout) {
    std::vector<QRectF> taken;
    const double top = layout.plot.bottom() + bottomLabelDrop - 1;
    for (const ChartLook::Label& label : look.bottomLabels) {
        const TextStyle& style = label.isBold ? boldAxis : style::axis;
        const double width = textWidth(label.text, style);
        const double place = layout.place({label.place, 0}).x();
        const double most = std::max(layout.gridRight - width, layout.plot.left());
        for (const double share : {0.5, 0.0, 1.0}) {
            const double left = std::clamp(place - share * width, layout.plot.left(), most);
            const QRectF box(left, top, width, style.lineHeight);
            const QRectF room = box.adjusted(-bottomLabelGap, 0, bottomLabelGap, 0);
            if (std::ranges::none_of(taken,
                                     [&](const QRectF& other) { return room.intersects(other); })) {
                taken.push_back(box);
                painter.setPen(color(label.isBold ? ColorRole::ink2 : ColorRole::ink3));
                drawText(painter, box, Qt::AlignLeft, label.text, style);
                break;
            }
        }
    }
}

void drawHatching(QPainter& painter, const QRectF& box) {
    painter.save();
    painter.setClipRect(box, Qt::IntersectClip);
    painter.setPen(QPen(color(ColorRole::lineStrong), 1));
    const double first = std::floor((box.left() - box.height()) / hatchStep) * hatchStep;
    for (double x = first; x < box.right(); x += hatchStep) {
        painter.drawLine(QPointF(x, box.bottom()), QPointF(x + box.height(), box.top()));
    }
    painter.restore();
}

QRectF spanBox(const ChartLook::Span& span, const ChartLayout& layout) {
    return {layout.place({span.begin, 1}), layout.place({span.end, 0})};
}

/// A name reaches beyond its span by its padding at most, and never over the name before.
void drawSpanLabels(QPainter& painter, const ChartLook& look, const ChartLayout& layout,
                    ColorRole ground) {
    const double height = style::axis.lineHeight;
    double namedTo = std::numeric_limits<double>::lowest();
    for (const ChartLook::Span& span : look.spans) {
        const QRectF box = spanBox(span, layout);
        const double width = textWidth(span.label, style::axis);
        const QRectF label(box.center().x() - width / 2, box.bottom() - height - 6, width, height);
        const QRectF padded = label.adjusted(-spanLabelPadding, -1, spanLabelPadding, 1);
        if (span.label.isEmpty() || width > box.width() + 2 * spanLabelPadding ||
            padded.left() < namedTo) {
            continue;
        }
        namedTo = padded.right() + 1; // their edges are blurred
        if (span.isHatched) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(color(ground));
            painter.drawRoundedRect(padded, radius::check, radius::check);
        }
        painter.setPen(color(ColorRole::ink2));
        drawText(painter, label, Qt::AlignLeft, span.label, style::axis);
    }
}

void drawVerticals(QPainter& painter, const ChartLook& look, const ChartLayout& layout) {
    constexpr double dotStep = 4;
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (const double vertical : look.verticals) {
        const double x = std::floor(layout.place({vertical, 0}).x());
        for (double y = layout.plot.top(); y < layout.plot.bottom(); y += dotStep) {
            painter.fillRect(QRectF(x, y, 1, 1), color(ColorRole::ink3));
        }
    }
    painter.setRenderHint(QPainter::Antialiasing);
}

/// Calls `draw` with parts of a line that follow each other, each from where the last one ended:
/// the painter's time rises steeply with the points of one path.
template<class Draw>
void forEachPart(const QPolygonF& points, const Draw& draw) {
    constexpr qsizetype pointsInPart = 4;
    for (qsizetype first = 0; first + 1 < points.size(); first += pointsInPart) {
        draw(points.mid(first, pointsInPart + 1));
    }
}

/// Column by column, which costs the same for any number of points, and in an image of its own: the
/// painter shares each column out among threads, which takes longer than to fill it.
void drawArea(QPainter& painter, const QPolygonF& piece, const ChartLayout& layout,
              const QColor& ink) {
    const double scale = painter.deviceTransform().m11();
    const auto deviceOf = [&](double place) { return static_cast<int>(std::ceil(place * scale)); };
    const int left =
        piece.isEmpty() ? 0 : deviceOf(std::max(piece.first().x(), layout.plot.left()));
    const int right =
        piece.isEmpty() ? 0 : deviceOf(std::min(piece.last().x(), layout.plot.right()));
    const int top = deviceOf(layout.plot.top());
    if (piece.size() < 2 || right <= left) {
        return;
    }
    std::vector<int> tops;
    qsizetype next = 1;
    for (int column = left; column < right; ++column) {
        const double x = column / scale;
        while (next + 1 < piece.size() && piece[next].x() <= x) {
            ++next;
        }
        const QPointF& from = piece[next - 1];
        const QPointF& to = piece[next];
        const double share = to.x() > from.x() ? (x - from.x()) / (to.x() - from.x()) : 1;
        tops.push_back(deviceOf(from.y() + (to.y() - from.y()) * std::clamp(share, 0.0, 1.0)) -
                       top);
    }
    QColor fill = ink;
    fill.setAlphaF(areaOpacity);
    const QRgb pixel = qPremultiply(fill.rgba());
    QImage area(right - left, std::max(deviceOf(layout.plot.bottom()) - top, 1),
                QImage::Format_ARGB32_Premultiplied);
    for (int row = 0; row < area.height(); ++row) {
        auto* line = reinterpret_cast<QRgb*>(area.scanLine(row));
        std::ranges::transform(tops, line, [&](int least) { return row >= least ? pixel : 0; });
    }
    area.setDevicePixelRatio(scale);
    painter.drawImage(QPointF(left / scale, top / scale), area);
}

/// The dashes go on from part to part.
void drawLine(QPainter& painter, const QPolygonF& piece, QPen pen) {
    double length = 0;
    painter.setBrush(Qt::NoBrush);
    forEachPart(piece, [&](const QPolygonF& part) {
        if (pen.style() == Qt::CustomDashLine) {
            pen.setDashOffset(length / pen.widthF());
            for (qsizetype index = 1; index < part.size(); ++index) {
                length += QLineF(part[index - 1], part[index]).length();
            }
        }
        painter.setPen(pen);
        painter.drawPolyline(part);
    });
}

/// Boxes with a line along their lower ends.
void drawBoxes(QPainter& painter, const ChartLook& look, const ChartLook::Line& line,
               const ChartLayout& layout) {
    QColor fill = accent(look);
    fill.setAlphaF(boxOpacity);
    for (const QRectF& box : line.boxes) {
        const QPointF topLeft = layout.place({box.left(), box.bottom()});
        const QPointF bottomRight = layout.place({box.right(), box.top()});
        const QRectF place(topLeft, bottomRight);
        painter.fillRect(place, fill);
        painter.setPen(QPen(accent(look), lineWidth, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(place.bottomLeft(), place.bottomRight());
    }
}

void drawLines(QPainter& painter, const ChartLook& look, const ChartLayout& layout) {
    // The strongest is drawn last, over the others.
    for (auto line = look.lines.rbegin(); line != look.lines.rend(); ++line) {
        drawBoxes(painter, look, *line, layout);
        for (const QPolygonF& piece : line->pieces) {
            const QPolygonF points = placed(piece, layout);
            if (line->stroke == ChartLook::Stroke::strong) {
                drawArea(painter, points, layout, accent(look));
            }
            drawLine(painter, points, chartPen(look, line->stroke));
        }
    }
}

void drawGuide(QPainter& painter, const ChartLook& look, const ChartLayout& layout) {
    if (look.guide) {
        painter.setPen(QPen(color(ColorRole::lineStrong), 1));
        painter.drawLine(layout.place(look.guide->first), layout.place(look.guide->second));
    }
}

/// Behind the guide's end where there is room, else above it.
void drawGuideName(QPainter& painter, const ChartLook& look, const ChartLayout& layout) {
    if (!look.guide || look.guideName.isEmpty()) {
        return;
    }
    const QPointF begin = layout.place(look.guide->first);
    const QPointF end = layout.place(look.guide->second);
    const double width = textWidth(look.guideName, style::axis);
    const double height = style::axis.lineHeight;
    constexpr double gap = 6;
    painter.setPen(color(ColorRole::ink3));
    if (end.x() + gap + width <= layout.plot.right()) {
        drawText(painter, QRectF(end.x() + gap, end.y() - height - 2, width, height), Qt::AlignLeft,
                 look.guideName, style::axis);
        return;
    }
    // Beside the line where it leaves the plot, on the side where the value is not.
    const double right = std::min(end.x(), layout.plot.right()) - gap;
    const double left = right - width;
    const double slope = (end.y() - begin.y()) / (end.x() - begin.x());
    const auto heightAt = [&](double x) { return begin.y() + slope * (x - begin.x()); };
    const bool isValueAbove = look.dot && layout.place(*look.dot).y() < heightAt(right + gap);
    const double y = isValueAbove ? heightAt(right) + 3 : heightAt(left) - height - 1;
    if (left > begin.x() && y > layout.plot.top() && y + height < layout.plot.bottom()) {
        drawText(painter, QRectF(left, y, width, height), Qt::AlignLeft, look.guideName,
                 style::axis);
    }
}

void drawForecast(QPainter& painter, const ChartLook& look, const ChartLayout& layout,
                  ColorRole ground) {
    if (!look.forecast) {
        return;
    }
    QPen pen(color(look.forecast->color), lineWidth, Qt::CustomDashLine, Qt::FlatCap);
    pen.setDashPattern({4 / lineWidth, 3 / lineWidth});
    painter.setPen(pen);
    painter.drawLine(layout.place(look.forecast->from), layout.place(look.forecast->to));
    if (look.forecast->hasRing) {
        painter.setPen(QPen(color(look.forecast->color), lineWidth));
        painter.setBrush(color(ground));
        painter.drawEllipse(layout.place(look.forecast->to), ringRadius, ringRadius);
    }
}

void drawDot(QPainter& painter, const ChartLook& look, const ChartLayout& layout) {
    if (look.dot) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(accent(look));
        painter.drawEllipse(layout.place(*look.dot), dotRadius, dotRadius);
    }
}

/// Where a line ends, as a share; absent of one without a course.
std::optional<QPointF> endOf(const ChartLook::Line& line) {
    if (!line.pieces.empty()) {
        return line.pieces.back().last();
    }
    if (!line.boxes.empty()) {
        return QPointF(line.boxes.back().right(), line.boxes.back().center().y());
    }
    return std::nullopt;
}

/// Beside the ends of the lines, moved apart where those lie close together.
void drawEndNames(QPainter& painter, const ChartLook& look, const ChartLayout& layout,
                  ColorRole ground) {
    if (!namesLines(look)) {
        return;
    }
    struct Name {
        QString text;
        double y;
    };
    std::vector<Name> names;
    for (const ChartLook::Line& line : look.lines) {
        if (const auto end = endOf(line)) {
            names.push_back(
                {elidedText(line.name, endNameStyle, widestEndName), layout.place(*end).y()});
        }
    }
    std::ranges::stable_sort(names, {}, &Name::y);
    const double top = layout.plot.top() + endNameHeight / 2;
    const double bottom = layout.plot.bottom() - endNameHeight / 2;
    for (std::size_t index = 0; index < names.size(); ++index) {
        const double least = index > 0 ? names[index - 1].y + endNameHeight : top;
        names[index].y = std::max(names[index].y, least);
    }
    for (std::size_t index = names.size(); index > 0; --index) {
        const double most = index < names.size() ? names[index].y - endNameHeight : bottom;
        names[index - 1].y = std::min(names[index - 1].y, most);
    }
    for (const Name& name : names) {
        const QRectF box(layout.plot.right() + endNameGap, name.y - endNameHeight / 2,
                         textWidth(name.text, endNameStyle), endNameHeight);
        painter.fillRect(box.adjusted(-2, 0, 2, 0), color(ground)); // no line across the name
        painter.setPen(color(ColorRole::ink2));
        drawText(painter, box, Qt::AlignLeft, name.text, endNameStyle);
    }
}

} // namespace

QPen chartPen(const ChartLook& look, ChartLook::Stroke stroke) {
    QPen pen(accent(look), lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    switch (stroke) {
    case ChartLook::Stroke::strong:
        pen.setWidthF(look.isLarge ? strongWidth : lineWidth);
        break;
    case ChartLook::Stroke::dotted:
        pen.setDashPattern({1 / lineWidth, 3.5 / lineWidth});
        break;
    case ChartLook::Stroke::thin:
        pen.setWidthF(1);
        break;
    case ChartLook::Stroke::faint:
        pen.setWidthF(1);
        pen.setColor(mixed(color(ColorRole::lineStrong), color(ColorRole::ink3), 0.6));
        break;
    }
    return pen;
}

ChartLayout chartLayout(const ChartLook& look, QSizeF size) {
    double names = 0;
    if (namesLines(look)) {
        for (const ChartLook::Line& line : look.lines) {
            names = std::max(names, std::min(textWidth(line.name, endNameStyle), widestEndName));
        }
        names = std::ceil(names) + 2 * endNameGap;
    }
    ChartLayout layout;
    layout.gridRight = std::max(size.width() - sideLabelRoom, leftRoom + 1);
    const double right = std::max(layout.gridRight - names, leftRoom + 1);
    layout.plot = QRectF(QPointF(leftRoom, topRoom),
                         QPointF(right, std::max(size.height() - bottomRoom, topRoom + 1)));
    return layout;
}

void drawChart(QPainter& painter, const ChartLook& look, const ChartLayout& layout,
               ColorRole ground) {
    painter.setRenderHint(QPainter::Antialiasing);
    for (const ChartLook::Span& span : look.spans) {
        if (span.isHatched) {
            drawHatching(painter, spanBox(span, layout));
        }
    }
    drawSideLabels(painter, look, layout);
    for (const ChartLook::Span& span : look.spans) {
        if (!span.isHatched) {
            painter.fillRect(spanBox(span, layout), color(ColorRole::inset));
        }
    }
    drawBottomLabels(painter, look, layout);
    painter.save();
    // With room for the lines' own width and the dot.
    painter.setClipRect(layout.plot.adjusted(0, -topRoom, 5, 5), Qt::IntersectClip);
    drawVerticals(painter, look, layout);
    drawGuide(painter, look, layout);
    drawLines(painter, look, layout);
    drawForecast(painter, look, layout, ground);
    drawDot(painter, look, layout);
    painter.restore();
    drawSpanLabels(painter, look, layout, ground);
    drawGuideName(painter, look, layout);
    drawEndNames(painter, look, layout, ground);
}

namespace {

constexpr double noteSidePadding = 12;
constexpr double noteTopPadding = 10;
constexpr double noteRowHeight = 18;
constexpr double noteTitleGap = 4;
constexpr double noteColumnGap = 18;
constexpr double noteFromLine = 14;

struct ReadoutBox {
    QRectF box;
    double titleHeight = 0;
};

ReadoutBox readoutBox(const ChartLayout& layout, const ChartReadoutLook& readout, double lineX) {
    double wide = textWidth(readout.title, style::small);
    for (const ChartReadoutLook::Row& row : readout.rows) {
        wide = std::max(wide, textWidth(row.name, style::text) + noteColumnGap +
                                  textWidth(row.value, style::value));
    }
    wide = std::max(wide, textWidth(readout.note, style::small));
    const double height = style::small.lineHeight + noteTitleGap +
                          noteRowHeight * static_cast<double>(readout.rows.size()) +
                          (readout.note.isEmpty() ? 0 : noteRowHeight) + 2 * noteTopPadding - 2;
    const QSizeF size(std::ceil(wide) + 2 * noteSidePadding, std::ceil(height));
    const bool isAtRight = layout.gridRight - lineX >= lineX - layout.plot.left();
    double left = isAtRight ? lineX + noteFromLine : lineX - noteFromLine - size.width();
    const double most = layout.gridRight + sideLabelRoom - size.width() - 1;
    left = std::clamp(left, 1.0, std::max(most, 1.0));
    const double spare = layout.plot.height() - size.height();
    return {QRectF(QPointF(std::round(left), layout.plot.top() + std::clamp(spare / 2, 0.0, 8.0)),
                   size),
            static_cast<double>(style::small.lineHeight)};
}

void drawReadoutWords(QPainter& painter, const ReadoutBox& place, const ChartReadoutLook& readout) {
    QRectF line = place.box.adjusted(noteSidePadding, noteTopPadding, -noteSidePadding, 0);
    line.setHeight(place.titleHeight);
    painter.setPen(color(ColorRole::ink2));
    drawText(painter, line, Qt::AlignLeft, readout.title, style::small);
    line.translate(0, place.titleHeight + noteTitleGap);
    line.setHeight(noteRowHeight);
    for (const ChartReadoutLook::Row& row : readout.rows) {
        painter.setPen(color(ColorRole::ink2));
        drawText(painter, line, Qt::AlignLeft, row.name, style::text);
        painter.setPen(color(ColorRole::ink));
        drawText(painter, line, Qt::AlignRight, row.value, style::value);
        line.translate(0, noteRowHeight);
    }
    painter.setPen(color(ColorRole::ink2));
    drawText(painter, line, Qt::AlignLeft, readout.note, style::small);
}

} // namespace

void drawChartReadout(QPainter& painter, const ChartLook& look, const ChartLayout& layout,
                      const ChartReadoutLook& readout, ColorRole ground) {
    painter.setRenderHint(QPainter::Antialiasing);
    const double x = layout.place({readout.x, 0}).x();
    painter.setPen(QPen(color(ColorRole::ink), 1));
    painter.drawLine(QPointF(crisp(x), layout.plot.top()), QPointF(crisp(x), layout.plot.bottom()));
    for (const ChartReadoutLook::Row& row : readout.rows) {
        if (!row.y) {
            continue;
        }
        const bool isStrong = row.stroke == ChartLook::Stroke::strong;
        const QColor ink =
            row.stroke == ChartLook::Stroke::faint ? color(ColorRole::ink3) : accent(look);
        painter.setPen(QPen(isStrong ? color(ground) : ink, lineWidth));
        painter.setBrush(isStrong ? ink : color(ground));
        painter.drawEllipse(layout.place({readout.x, *row.y}), readDotRadius, readDotRadius);
    }
    const ReadoutBox place = readoutBox(layout, readout, x);
    drawReadoutShadow(painter, place.box, radius::notice);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color(ColorRole::edge));
    painter.drawRoundedRect(place.box.adjusted(-1, -1, 1, 1), radius::notice + 1,
                            radius::notice + 1);
    painter.setBrush(color(ColorRole::popover));
    painter.drawRoundedRect(place.box, radius::notice, radius::notice);
    drawReadoutWords(painter, place, readout);
}

} // namespace vellmark::kit
