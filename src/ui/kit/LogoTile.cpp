#include "ui/kit/LogoTile.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Metrics.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace vellmark::kit {

namespace {

constexpr double badgeSide = 6;
constexpr double badgeRing = 2;
constexpr double letterShare = 0.6;

QPainterPath circle(const QRectF& box) {
    QPainterPath path;
    path.addEllipse(box);
    return path;
}

} // namespace

void drawLogo(QPainter& painter, QPointF topLeft, double side, const LogoLook& look,
              std::optional<ColorRole> badge) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(topLeft);
    const QRectF box(0, 0, side, side);
    const double reach = side + badgeReach;
    const QRectF ring(reach - badgeSide - 2 * badgeRing, reach - badgeSide - 2 * badgeRing,
                      badgeSide + 2 * badgeRing, badgeSide + 2 * badgeRing);
    QPainterPath tile;
    tile.addRoundedRect(box, side * radius::logoShare, side * radius::logoShare);
    if (badge) {
        tile = tile.subtracted(circle(ring));
    }
    if (look.image.isNull()) {
        painter.fillPath(tile, Theme::current().isDark() ? look.accentDark : look.accentLight);
        painter.setPen(color(ColorRole::onAccent));
        const TextStyle letter{std::round(side * letterShare), static_cast<int>(side), QFont::Bold};
        if (badge) {
            painter.setClipPath(tile);
        }
        drawText(painter, box, Qt::AlignHCenter, look.letter, letter);
    } else {
        painter.setClipPath(tile);
        painter.drawImage(box, look.image);
    }
    painter.setClipping(false);
    if (badge) {
        painter.fillPath(circle(ring.adjusted(badgeRing, badgeRing, -badgeRing, -badgeRing)),
                         color(*badge));
    }
    painter.restore();
}

LogoTile::LogoTile(int side, QWidget* parent) : QWidget(parent), side_(side) {}

void LogoTile::setLook(const LogoLook& look) {
    if (look != look_) {
        look_ = look;
        update();
    }
}

void LogoTile::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawLogo(painter, QPointF(0, 0), side_, look_);
}

} // namespace vellmark::kit
