#include "ui/kit/SoftShadow.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <span>
#include <vector>

namespace vellmark::kit {

namespace {

/// One pass of a moving average of `width` along `count` values that lie `stride` bytes apart.
void blurLine(uchar* line, qsizetype count, qsizetype stride, int width, std::vector<uchar>& copy) {
    copy.resize(static_cast<std::size_t>(count));
    for (qsizetype index = 0; index < count; ++index) {
        copy[static_cast<std::size_t>(index)] = line[index * stride];
    }
    const auto at = [&](qsizetype index) {
        return index < 0 || index >= count ? 0 : int{copy[static_cast<std::size_t>(index)]};
    };
    const int before = width / 2;
    const int after = width - before;
    int sum = 0;
    for (qsizetype index = -before; index < after; ++index) {
        sum += at(index);
    }
    for (qsizetype index = 0; index < count; ++index) {
        line[index * stride] = static_cast<uchar>(sum / width);
        sum += at(index + after) - at(index - before);
    }
}

/// Three moving averages come close to a Gaussian blur of standard deviation `sigma`.
void blur(QImage& mask, double sigma) {
    const int width =
        std::max(1, static_cast<int>(sigma * 3 * std::sqrt(2 * std::numbers::pi) / 4 + 0.5));
    std::vector<uchar> copy;
    const qsizetype stride = mask.bytesPerLine();
    for (int pass = 0; pass < 3; ++pass) {
        for (int row = 0; row < mask.height(); ++row) {
            blurLine(mask.bits() + row * stride, mask.width(), 1, width, copy);
        }
        for (int column = 0; column < mask.width(); ++column) {
            blurLine(mask.bits() + column, mask.height(), stride, width, copy);
        }
    }
}

/// A shadow of the smallest box whose middle can be stretched.
struct Patch {
    Theme::Appearance appearance;
    double ratio;
    double cornerRadius;
    /// From the patch's edge to the box, and from there to where the shadow is even.
    double margin;
    double inside;
    QImage image;
};

QImage blurredLayer(const ShadowLayer& layer, const QRectF& box, double side, double cornerRadius,
                    double ratio) {
    const int pixels = static_cast<int>(std::ceil(side * ratio));
    QImage mask(pixels, pixels, QImage::Format_Alpha8);
    mask.fill(0);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(ratio, ratio);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(box.translated(0, layer.offset), cornerRadius, cornerRadius);
    painter.end();
    blur(mask, layer.blur / 2 * ratio);
    QImage colored(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    colored.fill(layer.color);
    painter.begin(&colored);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, mask);
    return colored;
}

QMarginsF reachOf(std::span<const ShadowLayer> layers) {
    double above = 0;
    double side = 0;
    double below = 0;
    for (const ShadowLayer& layer : layers) {
        above = std::max(above, layer.blur - layer.offset);
        side = std::max(side, layer.blur);
        below = std::max(below, layer.blur + layer.offset);
    }
    return {side, above, side, below};
}

Patch makePatch(std::span<const ShadowLayer> layers, double cornerRadius, double ratio) {
    // The shadow falls downwards, where it reaches farthest.
    const double margin = reachOf(layers).bottom();
    Patch patch{Theme::current().appearance(), ratio, cornerRadius, margin, 0, {}};
    patch.inside = patch.margin + cornerRadius;
    const double side = 2 * (patch.margin + patch.inside) + 2;
    const QRectF box(patch.margin, patch.margin, side - 2 * patch.margin, side - 2 * patch.margin);
    const int pixels = static_cast<int>(std::ceil(side * ratio));
    patch.image = QImage(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    patch.image.fill(Qt::transparent);
    QPainter painter(&patch.image);
    for (const ShadowLayer& layer : layers) {
        painter.drawImage(0, 0, blurredLayer(layer, box, side, cornerRadius, ratio));
    }
    return patch;
}

/// Drawn with the patch in `known`, which is made anew when it does not fit any more.
void drawShadow(QPainter& painter, const QRectF& box, std::span<const ShadowLayer> layers,
                double cornerRadius, std::optional<Patch>& known) {
    const double ratio = painter.deviceTransform().m11();
    if (!known || known->appearance != Theme::current().appearance() || known->ratio != ratio ||
        known->cornerRadius != cornerRadius) {
        known = makePatch(layers, cornerRadius, ratio);
    }
    const Patch& patch = *known;
    const double corner = patch.margin + patch.inside;
    const QRectF outer = box.adjusted(-patch.margin, -patch.margin, patch.margin, patch.margin);
    const double side = patch.image.width() / patch.ratio;
    // Of a box smaller than its shadow's corners these are cut off where they meet.
    const double wide = std::min(corner, outer.width() / 2);
    const double high = std::min(corner, outer.height() / 2);
    const double fromColumns[] = {0, wide, side - wide, side};
    const double fromRows[] = {0, high, side - high, side};
    const double toColumns[] = {outer.left(), outer.left() + wide, outer.right() - wide,
                                outer.right()};
    const double toRows[] = {outer.top(), outer.top() + high, outer.bottom() - high,
                             outer.bottom()};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const QRectF from(QPointF(fromColumns[column], fromRows[row]) * patch.ratio,
                              QPointF(fromColumns[column + 1], fromRows[row + 1]) * patch.ratio);
            const QRectF to(QPointF(toColumns[column], toRows[row]),
                            QPointF(toColumns[column + 1], toRows[row + 1]));
            if (to.width() > 0 && to.height() > 0) {
                painter.drawImage(to, patch.image, from);
            }
        }
    }
}

} // namespace

QMarginsF popoverShadowReach() {
    return reachOf(Theme::current().popoverShadow());
}

void drawPopoverShadow(QPainter& painter, const QRectF& box, double cornerRadius) {
    static std::optional<Patch> known;
    drawShadow(painter, box, Theme::current().popoverShadow(), cornerRadius, known);
}

void drawReadoutShadow(QPainter& painter, const QRectF& box, double cornerRadius) {
    static std::optional<Patch> known;
    const ShadowLayer layer{6, 18, QColor(0, 0, 0, Theme::current().isDark() ? 102 : 38)};
    drawShadow(painter, box, {&layer, 1}, cornerRadius, known);
}

} // namespace vellmark::kit
