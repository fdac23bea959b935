#include "ui/kit/FigureText.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <iterator>
#include <optional>
#include <vector>

namespace vellmark::kit {

namespace {

/// Of one style; each is a short text. When there are as many all go.
constexpr qsizetype keptWidths = 500;

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
    /// What has been measured: a layout asks for the same few texts again and again.
    mutable QHash<QString, double> widths;

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

double measuredWidth(const QString& text, const Face& font) {
    if (font.isTabular) {
        return font.metrics.horizontalAdvance(text) / font.enlargement;
    }
    double width = 0;
    forEachPiece(
        text, [&](QChar) { width += font.figureWidth; },
        [&](const QString& words) { width += font.metrics.horizontalAdvance(words); });
    return width / font.enlargement;
}

bool isWithin(double width, const QString& text, const TextStyle& style) {
    // A hundredth of a point is rounding, not overflow.
    return textWidth(text, style) <= width + 0.01;
}

/// The ends of the letters of `text` behind `start`.
std::vector<qsizetype> letterEnds(const QString& text, qsizetype start) {
    std::vector<qsizetype> places;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(start);
    while (finder.toNextBoundary() > start) {
        places.push_back(finder.position());
        if (text[finder.position() - 1] == u'\n') {
            break;
        }
    }
    return places;
}

/// The last of `places` up to which the text fits; absent when it does not even up to the first.
template<typename Fits>
std::optional<qsizetype> lastFitting(const std::vector<qsizetype>& places, const Fits& fits) {
    // Most texts fit whole.
    if (!places.empty() && fits(places.back())) {
        return places.back();
    }
    const auto end = std::partition_point(places.begin(), places.end(), fits);
    if (end == places.begin()) {
        return std::nullopt;
    }
    return *std::prev(end);
}

/// The last of `places` to break `text` behind `start` up to which a line fits; absent when it does
/// not even up to the first. Every word is measured, and then the few lines that may be the
/// longest: to search among whole lines would shape the text several times over.
template<typename Fits>
std::optional<qsizetype> endOfLine(const QString& text, qsizetype start,
                                   QTextBoundaryFinder& places, const TextStyle& style,
                                   double width, const Fits& fits) {
    std::vector<qsizetype> ends;
    double before = 0;
    double words = 0;
    places.setPosition(start);
    for (qsizetype last = start; before <= width && places.toNextBoundary() > start;
         last = places.position()) {
        before = words;
        words += textWidth(text.mid(last, places.position() - last), style);
        ends.push_back(places.position());
        if (text[places.position() - 1] == u'\n') {
            break;
        }
    }
    const auto end = std::find_if(ends.rbegin(), ends.rend(), fits);
    return end == ends.rend() ? std::nullopt : std::optional(*end);
}

} // namespace

double textWidth(const QString& text, const TextStyle& style) {
    const Face& font = face(style);
    const auto known = font.widths.constFind(text);
    if (known != font.widths.cend()) {
        return *known;
    }
    if (font.widths.size() >= keptWidths) {
        font.widths.clear();
    }
    return *font.widths.insert(text, measuredWidth(text, font));
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
    if (isWithin(width, text, style)) {
        return text;
    }
    const auto shortened = [&](qsizetype length) {
        QString result = text.left(length);
        while (!result.isEmpty() && result.back().isSpace()) {
            result.chop(1);
        }
        return result + u'…';
    };
    const auto length = lastFitting(letterEnds(text, 0), [&](qsizetype place) {
        return isWithin(width, shortened(place), style);
    });
    return shortened(length.value_or(0));
}

QStringList wrappedText(const QString& text, const TextStyle& style, double width, int mostLines) {
    QStringList lines;
    qsizetype start = 0;
    QTextBoundaryFinder places(QTextBoundaryFinder::Line, text);
    const auto fits = [&](qsizetype place) {
        return isWithin(width, text.mid(start, place - start).trimmed(), style);
    };
    while (start < text.size()) {
        if (lines.size() + 1 == mostLines) {
            const QString rest = text.mid(start).trimmed().replace(u'\n', u' ');
            lines << elidedText(rest, style, width);
            break;
        }
        auto end = endOfLine(text, start, places, style, width, fits);
        if (!end) {
            const auto letters = letterEnds(text, start);
            end = lastFitting(letters, fits).value_or(letters.front());
        }
        lines << text.mid(start, *end - start).trimmed();
        start = *end;
    }
    return lines;
}

} // namespace vellmark::kit
