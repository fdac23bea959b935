#pragma once

#include "platform/Preferences.h"
#include "presentation/StatusItemContent.h"

#include <QAbstractButton>
#include <QPoint>

#include <functional>
#include <optional>

namespace vellmark {

/// A small strip at the screen's edge in place of a panel's item: grip, glyph and dot. It is
/// dragged to any place and docks to the nearest edge of the screen it is on, where it stays across
/// starts. While that screen is gone, it stands on the primary one. Where a program cannot choose
/// the place of its windows, it is a small window with a title, which says in words what the glyph
/// shows.
class EdgeStrip final : public QAbstractButton {
public:
    struct Events {
        std::function<void(const QRect& anchor)> toggle;
        std::function<void(const QPoint& at)> menu;
    };
    EdgeStrip(Preferences& preferences, Events events);

    void setContent(const StatusItemContent& content);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    enum class Edge { left, right };

    QSize wantedSize() const;
    /// What is written beside the glyph.
    QString text() const;
    int textRoom() const;
    void paintAsWindow(QPainter& painter) const;
    void paintDot(QPainter& painter, double left) const;
    void restorePlace();
    /// Without a compositor the corners are cut out: nothing would show through them.
    void fitShape();
    void dock();

    Preferences& preferences_;
    Events events_;
    const bool isPlaceable_;
    StatusItemContent content_;
    Edge edge_ = Edge::right;
    bool isComposited_ = true;
    /// Of the press, relative to the strip; absent without one.
    std::optional<QPoint> pressedAt_;
    bool isDragged_ = false;
};

} // namespace vellmark
