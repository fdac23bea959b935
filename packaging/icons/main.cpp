// Draws the application's icons for a package, from the paths that the program draws its glyph
// with.

#include "presentation/GlyphDrawing.h"
#include "ui/GlyphPainter.h"

#include <QDir>
#include <QFile>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <stdexcept>

namespace vellmark {
namespace {

constexpr int themeSides[] = {16, 22, 24, 32, 48, 64, 128, 256, 512};
constexpr int bundleSides[] = {16, 32, 128, 256, 512};

const QString identifier = QStringLiteral("app.vellmark.Vellmark");

QString fileIn(const QString& folder, const QString& name) {
    if (!QDir().mkpath(folder)) {
        throw std::runtime_error("cannot make " + folder.toStdString());
    }
    return folder + QLatin1Char('/') + name;
}

void save(const QString& file, int side) {
    if (!applicationImage(side).save(file, "PNG")) {
        throw std::runtime_error("cannot write " + file.toStdString());
    }
}

/// A point of a mark's circle, in SVG's coordinates.
QString pointAt(const GlyphMark& mark, double side, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    return QStringLiteral("%1 %2")
        .arg(mark.centerX + mark.radius * std::cos(angle), 0, 'f', 3)
        .arg(side - mark.centerY - mark.radius * std::sin(angle), 0, 'f', 3);
}

QString arcFrom(const GlyphMark& mark, double side) {
    const bool isLarge = std::abs(mark.endAngle - mark.startAngle) > 180;
    return QStringLiteral("A %1 %1 0 %2 1 %3")
        .arg(mark.radius, 0, 'f', 3)
        .arg(isLarge ? 1 : 0)
        .arg(pointAt(mark, side, mark.endAngle));
}

QString svgElement(const GlyphMark& mark, double side) {
    const QString ink = QStringLiteral("#2e3436");
    const QString circle = QStringLiteral("<circle cx=\"%1\" cy=\"%2\" r=\"%3\" ")
                               .arg(mark.centerX, 0, 'f', 3)
                               .arg(side - mark.centerY, 0, 'f', 3)
                               .arg(mark.radius, 0, 'f', 3);
    const QString start = QLatin1String("M ") + pointAt(mark, side, mark.startAngle);
    const QString stroke =
        QStringLiteral("fill=\"none\" stroke=\"%1\" stroke-opacity=\"%2\" stroke-width=\"%3\" "
                       "stroke-linecap=\"round\"/>\n")
            .arg(ink)
            .arg(mark.alpha)
            .arg(mark.lineWidth, 0, 'f', 3);
    const QString fill =
        QStringLiteral("fill=\"%1\" fill-opacity=\"%2\"/>\n").arg(ink).arg(mark.alpha);
    switch (mark.kind) {
    case GlyphMark::Kind::strokedCircle:
        return circle + stroke;
    case GlyphMark::Kind::filledCircle:
        return circle + fill;
    case GlyphMark::Kind::strokedArc:
        return QLatin1String("<path d=\"") + start + QLatin1Char(' ') + arcFrom(mark, side) +
               QLatin1String("\" ") + stroke;
    case GlyphMark::Kind::filledPie:
        return QStringLiteral("<path d=\"M %1 %2 L %3 %4 Z\" ")
                   .arg(mark.centerX, 0, 'f', 3)
                   .arg(side - mark.centerY, 0, 'f', 3)
                   .arg(pointAt(mark, side, mark.startAngle), arcFrom(mark, side)) +
               fill;
    }
    return {};
}

/// One colour, which the desktop replaces by its own.
void writeSymbolic(const QString& path) {
    constexpr int side = 16;
    QString svg = QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" "
                                 "height=\"%1\" viewBox=\"0 0 %1 %1\">\n")
                      .arg(side);
    for (const GlyphMark& mark : glyphDrawing(emblem, side)) {
        svg += svgElement(mark, side);
    }
    svg += QLatin1String("</svg>\n");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(svg.toUtf8()) < 0) {
        throw std::runtime_error("cannot write " + path.toStdString());
    }
}

void writeTheme(const QString& directory) {
    for (const int side : themeSides) {
        save(fileIn(QStringLiteral("%1/hicolor/%2x%2/apps").arg(directory).arg(side),
                    identifier + QLatin1String(".png")),
             side);
    }
    writeSymbolic(fileIn(directory + QLatin1String("/hicolor/symbolic/apps"),
                         identifier + QLatin1String("-symbolic.svg")));
}

/// What iconutil makes an icns of.
void writeIconSet(const QString& directory) {
    for (const int side : bundleSides) {
        const QString name = QStringLiteral("icon_%1x%1").arg(side);
        save(fileIn(directory, name + QLatin1String(".png")), side);
        save(fileIn(directory, name + QLatin1String("@2x.png")), 2 * side);
    }
}

} // namespace
} // namespace vellmark

int main(int argc, char** argv) {
    const QString kind = argc == 3 ? QString::fromLocal8Bit(argv[1]) : QString();
    try {
        if (kind == QLatin1String("theme")) {
            vellmark::writeTheme(QString::fromLocal8Bit(argv[2]));
        } else if (kind == QLatin1String("iconset")) {
            vellmark::writeIconSet(QString::fromLocal8Bit(argv[2]));
        } else {
            std::fputs("usage: vellmark-icons theme|iconset DIRECTORY\n", stderr);
            return 2;
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vellmark-icons: %s\n", error.what());
        return 1;
    }
    return 0;
}
