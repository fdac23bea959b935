#include "app/linux/EdgeStrip.h"

#include "app/linux/EdgeStripPlacement.h"
#include "ui/Conversions.h"
#include "ui/GlyphPainter.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Theme.h"
#include "ui/kit/WindowSurface.h"

#include <QApplication>
#include <QBitmap>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QWindow>

#include <cmath>
#include <string_view>
#include <vector>

namespace vellmark {
namespace {

constexpr int stripWidth = 76;
constexpr int stripHeight = 32;
constexpr double cornerRadius = 8;
constexpr double gripLeft = 6;
constexpr double gripWidth = 6;
constexpr double glyphSide = 20;
constexpr double dotSide = 8;
constexpr double figureGap = 8;
constexpr int windowHeight = 44;
constexpr double windowPadding = 16;
constexpr double windowGap = 10;

constexpr std::string_view screenKey = "EdgeStripScreen";
constexpr std::string_view edgeKey = "EdgeStripEdge";
constexpr std::string_view heightKey = "EdgeStripHeight";

/// The primary one first; empty while no screen is connected.
std::vector<ScreenArea> screenAreas() {
    std::vector<ScreenArea> areas;
    for (const QScreen* screen : QGuiApplication::screens()) {
        areas.push_back({screen->name().toStdString(), screen->availableGeometry()});
    }
    return areas;
}

/// Flush with the edge at one side, rounded towards the screen.
QPainterPath outline(const QRectF& bounds, bool isAtRight) {
    const double outward = cornerRadius * 2;
    const QRectF extended =
        isAtRight ? bounds.adjusted(0, 0, outward, 0) : bounds.adjusted(-outward, 0, 0, 0);
    QPainterPath rounded;
    rounded.addRoundedRect(extended, cornerRadius, cornerRadius);
    QPainterPath frame;
    frame.addRect(bounds);
    return rounded.intersected(frame);
}

void paintGrip(QPainter& painter, double left, double middle) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(kit::color(kit::ColorRole::ink3));
    for (const double y : {-5.0, 0.0, 5.0}) {
        painter.drawEllipse(QPointF(left + 1.2, middle + y), 1, 1);
        painter.drawEllipse(QPointF(left + 4.8, middle + y), 1, 1);
    }
}

} // namespace

EdgeStrip::EdgeStrip(Preferences& preferences, Events events)
    : QAbstractButton(nullptr), preferences_(preferences), events_(std::move(events)),
      isPlaceable_(kit::windowSurface().isPlaceable) {
    setWindowFlags(isPlaceable_ ? Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                                      Qt::WindowDoesNotAcceptFocus
                                : Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                      Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                                      Qt::WindowCloseButtonHint);
    setAttribute(Qt::WA_TranslucentBackground, isPlaceable_);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(QGuiApplication::applicationDisplayName());
    // The strip's window is never the active one.
    setAttribute(Qt::WA_AlwaysShowToolTips);
    connect(this, &QAbstractButton::clicked, this, [this] { events_.toggle(geometry()); });
    setFixedSize(wantedSize());
    setCursor(Qt::PointingHandCursor);
    // Queued: a screen that goes is still listed while its signal is sent.
    const auto follow = [this](QScreen* screen) {
        connect(screen, &QScreen::availableGeometryChanged, this, &EdgeStrip::restorePlace,
                Qt::QueuedConnection);
    };
    for (QScreen* screen : QGuiApplication::screens()) {
        follow(screen);
    }
    connect(qApp, &QGuiApplication::screenAdded, this, follow);
    connect(qApp, &QGuiApplication::screenAdded, this, &EdgeStrip::restorePlace,
            Qt::QueuedConnection);
    connect(qApp, &QGuiApplication::screenRemoved, this, &EdgeStrip::restorePlace,
            Qt::QueuedConnection);
    connect(qApp, &QGuiApplication::primaryScreenChanged, this, &EdgeStrip::restorePlace,
            Qt::QueuedConnection);
}

void EdgeStrip::setContent(const StatusItemContent& content) {
    if (content == content_) {
        return; // every minute, and asks nobody anything
    }
    const bool looksDifferent =
        content.glyph != content_.glyph || content.color != content_.color ||
        content.figure != content_.figure || (!isPlaceable_ && content.toolTip != content_.toolTip);
    content_ = content;
    if (size() != wantedSize()) {
        setFixedSize(wantedSize());
        if (isVisible() && !pressedAt_) {
            restorePlace();
        }
    }
    const QString words = QString::fromStdString(content.toolTip);
    if (accessibleName() != words) {
        setAccessibleName(words);
        if (isPlaceable_) {
            setToolTip(words);
        }
    }
    // A compositor may come and go.
    if (isVisible() && kit::windowSurface().isComposited != isComposited_) {
        fitShape();
    }
    if (looksDifferent) {
        update();
    }
}

QString EdgeStrip::text() const {
    return qString(isPlaceable_ ? content_.figure : content_.toolTip);
}

int EdgeStrip::textRoom() const {
    return text().isEmpty()
               ? 0
               : static_cast<int>(std::ceil(
                     figureGap +
                     kit::textWidth(text(), isPlaceable_ ? kit::style::value : kit::style::body)));
}

QSize EdgeStrip::wantedSize() const {
    return isPlaceable_
               ? QSize(stripWidth + textRoom(), stripHeight)
               : QSize(static_cast<int>(2 * windowPadding + glyphSide + windowGap + dotSide) +
                           textRoom(),
                       windowHeight);
}

void EdgeStrip::paintAsWindow(QPainter& painter) const {
    painter.fillRect(rect(), kit::color(kit::ColorRole::popover));
    const double middle = height() / 2.0;
    paintGlyph(painter, {windowPadding, middle - glyphSide / 2}, glyphSide, content_.glyph,
               kit::Theme::current().isDark() ? Qt::white : Qt::black);
    const double dot = windowPadding + glyphSide + windowGap;
    const double left = dot + dotSide + figureGap;
    painter.setPen(kit::color(kit::ColorRole::ink));
    kit::drawText(painter, QRectF(left, 0, width() - left, height()), Qt::AlignLeft, text(),
                  kit::style::body);
    paintDot(painter, dot);
}

void EdgeStrip::paintDot(QPainter& painter, double left) const {
    painter.setPen(Qt::NoPen);
    painter.setBrush(statusQColor(content_.color, kit::Theme::current().isDark()));
    painter.drawEllipse(QRectF(left, (height() - dotSide) / 2, dotSide, dotSide));
}

void EdgeStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isPlaceable_) {
        paintAsWindow(painter);
        return;
    }
    const bool isAtRight = edge_ == Edge::right;
    const QRectF bounds =
        QRectF(rect()).adjusted(isAtRight ? 0.5 : 0, 0.5, isAtRight ? 0 : -0.5, -0.5);
    if (!isComposited_) {
        painter.fillRect(rect(), kit::color(kit::ColorRole::lineStrong));
    }
    painter.setPen(QPen(kit::color(kit::ColorRole::lineStrong), 1));
    painter.setBrush(kit::color(kit::ColorRole::popover));
    painter.drawPath(outline(bounds, isAtRight));

    const double middle = height() / 2.0;
    const double grip = isAtRight ? gripLeft : width() - gripLeft - gripWidth;
    const double room = textRoom();
    const double glyph = isAtRight ? gripLeft + gripWidth + 8 : 10 + dotSide + 10 + room;
    const double dot = isAtRight ? glyph + glyphSide + 10 : 10 + room;
    paintGrip(painter, grip, middle);
    paintGlyph(painter, {glyph, middle - glyphSide / 2}, glyphSide, content_.glyph,
               kit::Theme::current().isDark() ? Qt::white : Qt::black);
    if (room > 0) {
        const double left = isAtRight ? dot + dotSide + figureGap : 10;
        painter.setPen(kit::color(kit::ColorRole::ink));
        kit::drawText(painter, QRectF(left, 0, room, height()), Qt::AlignLeft, text(),
                      kit::style::value);
    }
    paintDot(painter, dot);
}

void EdgeStrip::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    pressedAt_ = event->position().toPoint();
    isDragged_ = false;
}

void EdgeStrip::mouseMoveEvent(QMouseEvent* event) {
    if (!pressedAt_) {
        return;
    }
    const QPoint moved = event->position().toPoint() - *pressedAt_;
    if (!isDragged_ && moved.manhattanLength() < QApplication::startDragDistance()) {
        return;
    }
    isDragged_ = true;
    if (!isPlaceable_) {
        // The desktop moves it from here on, and keeps the release to itself.
        pressedAt_.reset();
        windowHandle()->startSystemMove();
        return;
    }
    move(event->globalPosition().toPoint() - *pressedAt_);
}

void EdgeStrip::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressedAt_) {
        return;
    }
    pressedAt_.reset();
    if (isDragged_) {
        dock();
    } else if (rect().contains(event->position().toPoint())) {
        click();
    }
}

void EdgeStrip::contextMenuEvent(QContextMenuEvent* event) {
    events_.menu(event->globalPos());
}

void EdgeStrip::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return) {
        click();
    } else {
        QAbstractButton::keyPressEvent(event);
    }
}

void EdgeStrip::showEvent(QShowEvent* event) {
    restorePlace();
    QAbstractButton::showEvent(event);
}

void EdgeStrip::restorePlace() {
    if (!isPlaceable_) {
        return;
    }
    const std::vector<ScreenArea> screens = screenAreas();
    if (screens.empty()) {
        return;
    }
    EdgeStripPlace place;
    place.screen = preferences_.string(screenKey).value_or("");
    place.isAtRight = preferences_.string(edgeKey) != "left";
    place.height = preferences_.number(heightKey).value_or(place.height);
    edge_ = place.isAtRight ? Edge::right : Edge::left;
    move(edgeStripGeometry(place, size(), screens).topLeft());
    fitShape();
}

void EdgeStrip::fitShape() {
    isComposited_ = kit::windowSurface().isComposited;
    if (isComposited_) {
        clearMask();
    } else {
        QBitmap shape(size());
        shape.clear();
        QPainter painter(&shape);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::color1);
        painter.drawPath(outline(QRectF(rect()), edge_ == Edge::right));
        painter.end();
        setMask(shape);
    }
    update();
}

void EdgeStrip::dock() {
    const std::vector<ScreenArea> screens = screenAreas();
    if (screens.empty()) {
        return;
    }
    const EdgeStripPlace place = edgeStripPlace(geometry(), screens);
    preferences_.setString(screenKey, place.screen);
    preferences_.setString(edgeKey, place.isAtRight ? "right" : "left");
    preferences_.setNumber(heightKey, place.height);
    restorePlace();
}

} // namespace vellmark
