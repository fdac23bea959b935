#pragma once

#include "ui/kit/TextStyle.h"

#include <QString>
#include <QStringList>

#include <limits>

class QPainter;
class QRectF;

namespace vellmark::kit {

/// Text whose figures all have the width of "0", so that a changing number moves nothing beside
/// it. All text of the application is measured and drawn by these functions. Main thread.

/// The width of one line, in points.
double textWidth(const QString& text, const TextStyle& style);

/// From the top of a line box to the baseline of its text.
double baseline(const TextStyle& style);

/// Draws one line in the painter's pen colour; the line box stands in the middle of `box` and is
/// aligned in it horizontally. Text that is wider than the box is not cut.
void drawText(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& text,
              const TextStyle& style);

/// `text`, shortened to end in "…" where it is wider than `width`.
QString elidedText(const QString& text, const TextStyle& style, double width);

inline constexpr int anyNumberOfLines = std::numeric_limits<int>::max();

/// `text` in lines no wider than `width`, broken within a word only where the word alone is wider.
/// Of more than `mostLines` the last one ends in "…".
QStringList wrappedText(const QString& text, const TextStyle& style, double width,
                        int mostLines = anyNumberOfLines);

} // namespace vellmark::kit
