#include "ui/kit/FigureText.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QTextBoundaryFinder>

#include <array>
#include <cmath>
#include <deque>

namespace vellmark::kit {

namespace {

/// A font with the measures that tabular figures need. Lengths are of the font, which may be
/// larger than the text: see `enlargement`.
struct Face {
    TextStyle style;
    int enlargement;
    QFont font;
    QFontMetricsF metrics;
    double figureWidth;
    std::array<double, 10> figureWidths;
    /// The font's own figures are of one width: plain drawing is the same and faster.
    bool isTabular;

    explicit Face(const TextStyle& textStyle)
        : style(textStyle), enlargement(textStyle.size == std::floor(textStyle.size) ? 1 : 2),
          font(kit::font(textStyle, enlargement)), metrics(font),
          figureWidth(metrics.horizontalAdvance(u'0')), isTabular(true) {
        for (std::size_t digit = 0; digit < figureWidths.size(); ++digit) {
            const QChar figure(static_cast<char16_t>(u'0' + digit));
            figureWidths[digit] = metrics.horizontalAdvance(figure);
            isTabular = isTabular && std::abs(figureWidths[digit] - figureWidth) < 0.01;
        }
    }
};

std::deque<Face>& faces() {
    static std::deque<Face> known;
    return known;
}

const Face& face(const TextStyle& style) {
    // Another application font, and nothing that was measured holds any more.
    static QFont measured;
    const QFont application = QGuiApplication::font();
    if (!application.isCopyOf(measured)) {
        faces().clear();
        measured = application;
    }
    for (const Face& known : faces()) {
        if (known.style == style) {
            return known;
        }
    }
    return faces().emplace_back(style);
}

bool isFigure(QChar character) {
    return character >= u'0' && character <= u'9';
}

/// Calls `figure(digit)` and `words(text)` for the pieces of `text` in order.
template<typename Figure, typename Words>
void forEachPiece(const QString& text, const Figure& figure, const Words& words) {
    qsizetype start = 0;
    for (qsizetype index = 0; index < text.size(); ++index) {
        if (!isFigure(text[index])) {
            continue;
        }
        if (index > start) {
            words(text.mid(start, index - start));
        }
        figure(text[index]);
        start = index + 1;
    }
    if (start < text.size()) {
        words(text.mid(start));
    }
}

/// Draws at the scale of the font.
void drawAt(QPainter& painter, QPointF position, const QString& text, const Face& face) {
    if (face.isTabular) {
        painter.drawText(position, text);
        return;
    }
    forEachPiece(
        text,
        [&](QChar figure) {
            const double own = face.figureWidths[static_cast<std::size_t>(figure.digitValue())];
            painter.drawText(position + QPointF((face.figureWidth - own) / 2, 0), QString(figure));
            position.rx() += face.figureWidth;
        },
        [&](const QString& words) {
            painter.drawText(position, words);
            position.rx() += face.metrics.horizontalAdvance(words);
        });
}

} // namespace

double textWidth(const QString& text, const TextStyle& style) {
    const Face& font = face(style);
    if (font.isTabular) {
        return font.metrics.horizontalAdvance(text) / font.enlargement;
    }
    double width = 0;
    forEachPiece(
        text, [&](QChar) { width += font.figureWidth; },
        [&](const QString& words) { width += font.metrics.horizontalAdvance(words); });
    return width / font.enlargement;
}

double baseline(const TextStyle& style) {
    const Face& font = face(style);
    const double ascent = font.metrics.ascent() / font.enlargement;
    const double descent = font.metrics.descent() / font.enlargement;
    const double centered = (style.lineHeight - ascent - descent) / 2 + ascent;
    // On a half point, rather above than below: capitals and figures have no descenders.
    return std::floor(2 * centered - 0.2) / 2;
}

void drawText(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& text,
              const TextStyle& style) {
    const Face& font = face(style);
    double left = box.left();
    if (alignment & Qt::AlignRight) {
        left = box.right() - textWidth(text, style);
    } else if (alignment & Qt::AlignHCenter) {
        left = box.left() + (box.width() - textWidth(text, style)) / 2;
    }
    const double top = box.top() + (box.height() - style.lineHeight) / 2;
    const QPointF position(left, top + baseline(style));
    painter.setFont(font.font);
    if (font.enlargement == 1) {
        drawAt(painter, position, text, font);
        return;
    }
    painter.save();
    painter.translate(position);
    painter.scale(1.0 / font.enlargement, 1.0 / font.enlargement);
    drawAt(painter, QPointF(0, 0), text, font);
    painter.restore();
}

QString elidedText(const QString& text, const TextStyle& style, double width) {
    // A hundredth of a point is rounding, not overflow.
    if (textWidth(text, style) <= width + 0.01) {
        return text;
    }
    const QString ellipsis(u'…');
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.toEnd();
    while (finder.toPreviousBoundary() > 0) {
        QString shortened = text.left(finder.position());
        while (!shortened.isEmpty() && shortened.back().isSpace()) {
            shortened.chop(1);
        }
        shortened += ellipsis;
        if (textWidth(shortened, style) <= width) {
            return shortened;
        }
    }
    return ellipsis;
}

QStringList wrappedText(const QString& text, const TextStyle& style, double width) {
    QStringList lines;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Line, text);
    qsizetype lineStart = 0;
    qsizetype lastBreak = 0;
    while (finder.toNextBoundary() > 0) {
        const qsizetype position = finder.position();
        const QString candidate = text.mid(lineStart, position - lineStart).trimmed();
        if (textWidth(candidate, style) > width && lastBreak > lineStart) {
            lines << text.mid(lineStart, lastBreak - lineStart).trimmed();
            lineStart = lastBreak;
        }
        lastBreak = position;
        if (finder.boundaryReasons() & QTextBoundaryFinder::MandatoryBreak) {
            lines << text.mid(lineStart, position - lineStart).trimmed();
            lineStart = position;
        }
    }
    if (lineStart < text.size()) {
        lines << text.mid(lineStart).trimmed();
    }
    return lines;
}

void forgetFonts() {
    faces().clear();
}

} // namespace vellmark::kit
