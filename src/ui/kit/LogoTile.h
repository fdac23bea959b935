#pragma once

#include "ui/kit/Theme.h"

#include <QImage>
#include <QWidget>

#include <optional>

namespace vellmark::kit {

/// An agent's logo: an image, else a letter on the agent's colour.
struct LogoLook {
    QImage image;
    QString letter;
    QColor accentLight;
    QColor accentDark;
    bool operator==(const LogoLook&) const = default;
};

/// A logo of the given side at `topLeft`; with a badge, a dot sits at its lower right corner, cut
/// out of the tile so that any ground shows between.
void drawLogo(QPainter& painter, QPointF topLeft, double side, const LogoLook& look,
              std::optional<ColorRole> badge = std::nullopt);

/// How far a badge stands out of the tile.
inline constexpr int badgeReach = 4;

/// A logo as a widget of its own; it says nothing to screen readers, for the name stands beside it.
class LogoTile : public QWidget {
public:
    explicit LogoTile(int side, QWidget* parent = nullptr);
    void setLook(const LogoLook& look);
    QSize sizeHint() const override { return {side_, side_}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int side_;
    LogoLook look_;
};

} // namespace vellmark::kit
