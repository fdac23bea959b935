#include "ui/GlyphPainter.h"

#include "ui/Conversions.h"
#include "ui/kit/Theme.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <map>

namespace vellmark {
namespace {

constexpr QColor tileColor(0x1F, 0x20, 0x24);
constexpr double tileRadius = 0.24;
constexpr double glyphShare = 0.72;

QRectF boundsOf(const QPointF& center, double radius) {
    return {center.x() - radius, center.y() - radius, 2 * radius, 2 * radius};
}

void paintMark(QPainter& painter, const QPointF& origin, double side, const GlyphMark& mark,
               QColor ink) {
    // Qt's y grows downwards, its angles count like the marks' own.
    const QPointF center = origin + QPointF(mark.centerX, side - mark.centerY);
    const QRectF bounds = boundsOf(center, mark.radius);
    ink.setAlphaF(static_cast<float>(mark.alpha * ink.alphaF()));
    QPainterPath path;
    switch (mark.kind) {
    case GlyphMark::Kind::strokedCircle:
        path.addEllipse(bounds);
        painter.strokePath(path, QPen(ink, mark.lineWidth));
        break;
    case GlyphMark::Kind::strokedArc:
        path.arcMoveTo(bounds, mark.startAngle);
        path.arcTo(bounds, mark.startAngle, mark.endAngle - mark.startAngle);
        painter.strokePath(path, QPen(ink, mark.lineWidth, Qt::SolidLine, Qt::RoundCap));
        break;
    case GlyphMark::Kind::filledCircle:
        path.addEllipse(bounds);
        painter.fillPath(path, ink);
        break;
    case GlyphMark::Kind::filledPie:
        path.moveTo(center);
        path.arcTo(bounds, mark.startAngle, mark.endAngle - mark.startAngle);
        path.closeSubpath();
        painter.fillPath(path, ink);
        break;
    }
}

/// Draws a size when the first window asks for it: at launch, before there is any, it costs
/// nothing.
class ApplicationIconEngine final : public QIconEngine {
public:
    QIconEngine* clone() const override { return new ApplicationIconEngine(*this); }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        QList<QSize> sizes{{16, 16}, {32, 32}, {48, 48}, {128, 128}};
        // The Dock shows it in place of the bundle's, up to this size; elsewhere each would be
        // drawn for every window.
        if (QGuiApplication::platformName() == QStringLiteral("cocoa")) {
            sizes << QSize(256, 256) << QSize(512, 512);
        }
        return sizes;
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
        QPixmap& drawn = drawn_[std::min(size.width(), size.height())];
        if (drawn.isNull()) {
            drawn = QPixmap::fromImage(applicationImage(std::min(size.width(), size.height())));
        }
        return drawn;
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        painter->drawPixmap(rect, pixmap(rect.size(), mode, state));
    }

private:
    std::map<int, QPixmap> drawn_;
};

} // namespace

void paintGlyph(QPainter& painter, const QPointF& origin, double side, const MenuBarGlyph& glyph,
                const QColor& ink) {
    painter.setRenderHint(QPainter::Antialiasing);
    for (const GlyphMark& mark : glyphDrawing(glyph, side)) {
        paintMark(painter, origin, side, mark, ink);
    }
}

QImage glyphImage(const MenuBarGlyph& glyph, int side, const QColor& ink,
                  const std::optional<QColor>& dot) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    if (!dot) {
        paintGlyph(painter, {}, side, glyph, ink);
    } else {
        const TrayIconLayout layout = trayIconLayout(side);
        const QPointF center(layout.dotCenterX, side - layout.dotCenterY);
        paintGlyph(painter, {}, layout.glyphSide, glyph, ink);
        painter.setPen(Qt::NoPen);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.setBrush(Qt::black);
        painter.drawEllipse(center, layout.erasedRadius, layout.erasedRadius);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setBrush(*dot);
        painter.drawEllipse(center, layout.dotRadius, layout.dotRadius);
    }
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

QImage applicationImage(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tileColor);
    painter.drawRoundedRect(image.rect(), tileRadius * side, tileRadius * side);
    const double glyphSide = glyphShare * side;
    const double inset = (side - glyphSide) / 2;
    paintGlyph(painter, {inset, inset}, glyphSide, emblem, Qt::white);
    return image;
}

QIcon applicationIcon() {
    return QIcon(new ApplicationIconEngine);
}

QColor statusQColor(StatusColorRole role, bool onDark) {
    return (onDark ? kit::Theme::dark() : kit::Theme::light()).color(dotColor(role));
}

} // namespace vellmark
