#pragma once

#include "presentation/GlyphDrawing.h"
#include "presentation/StatusColor.h"

#include <QColor>
#include <QIcon>
#include <QImage>

#include <optional>

class QPainter;
class QPointF;

namespace vellmark {

/// The reading whose glyph stands for the application itself: it shows both marks well.
inline const MenuBarGlyph emblem{.usedPercent = 38, .elapsedPercent = 71};

/// Paints the marks of a glyph into the square at `origin`, in one ink.
void paintGlyph(QPainter& painter, const QPointF& origin, double side, const MenuBarGlyph& glyph,
                const QColor& ink);

/// The glyph as a picture of `side` pixels, with the status dot at its corner when there is a
/// colour for it. Format ARGB32, not premultiplied.
QImage glyphImage(const MenuBarGlyph& glyph, int side, const QColor& ink,
                  const std::optional<QColor>& dot = std::nullopt);

/// The application's icon of `side` pixels: a glyph on a tile. Needs no application object.
QImage applicationImage(int side);

/// The same for task bars and window lists.
QIcon applicationIcon();

QColor statusQColor(StatusColorRole role, bool onDark);

} // namespace vellmark
