#include "app/RenderGlyph.h"

#include "ui/GlyphPainter.h"

#include <QImageWriter>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

namespace vellmark {
namespace {

constexpr int wrongUse = 2;
constexpr int largestSide = 4096;

/// False when `text` is neither a number nor "none".
bool readShare(const std::string& text, std::optional<double>& share) {
    if (text == "none") {
        return true;
    }
    bool isNumber = false;
    const double value = QString::fromStdString(text).toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value)) {
        return false;
    }
    share = std::clamp(value, 0.0, 100.0);
    return true;
}

} // namespace

int renderGlyph(const std::vector<std::string>& arguments) {
    MenuBarGlyph glyph;
    bool isSide = false;
    const int side =
        arguments.size() == 4 ? QString::fromStdString(arguments[2]).toInt(&isSide) : 0;
    if (!isSide || side < 1 || side > largestSide || !readShare(arguments[0], glyph.usedPercent) ||
        !readShare(arguments[1], glyph.elapsedPercent)) {
        std::fputs("usage: vellmark-desktop --render-glyph USED ELAPSED SIZE FILE.png\n"
                   "USED and ELAPSED are percentages or \"none\", SIZE is 1 to 4096 pixels.\n",
                   stderr);
        return wrongUse;
    }
    QImageWriter writer(QString::fromStdString(arguments[3]), "png");
    if (!writer.write(glyphImage(glyph, side, Qt::black))) {
        std::fprintf(stderr, "vellmark-desktop: %s cannot be written: %s\n", arguments[3].c_str(),
                     qPrintable(writer.errorString()));
        return 1;
    }
    return 0;
}

} // namespace vellmark
