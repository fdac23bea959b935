#pragma once

#include <QPainterPath>

#include <string_view>
#include <vector>

class QColor;
class QPainter;
class QRectF;

namespace vellmark::kit {

/// Icons are paths on a grid of 16 by 16, drawn with a line of 1.35, and named like the system
/// symbols that they stand for ("arrow.clockwise").

/// The path of an icon; empty for an unknown name. Names that end in ".fill" are filled, the others
/// are lines.
const QPainterPath& iconPath(std::string_view name);

/// Every name there is.
std::vector<std::string_view> iconNames();

/// Draws an icon to fill the square `box`, turned clockwise about its middle; an unknown name draws
/// nothing.
void drawIcon(QPainter& painter, const QRectF& box, std::string_view name, const QColor& color,
              double degrees = 0);

} // namespace vellmark::kit
