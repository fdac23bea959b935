#include "ui/popover/Popover.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/SoftShadow.h"
#include "ui/kit/Theme.h"
#include "ui/popover/AgentUsagePopoverView.h"
#include "ui/popover/PopoverAccessibility.h"
#include "ui/popover/PopoverPlacement.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <algorithm>

namespace vellmark {

namespace {

/// The press that closes the popover and the click that follows on the item are one gesture.
constexpr qint64 gestureMilliseconds = 300;
/// In which the pointer comes from the panel to a window that stands elsewhere.
constexpr qint64 wayMilliseconds = 3000;
/// Of the screen's height, for a window beside panels that nobody tells us of.
constexpr double tallestWindow = 0.85;

/// Where the window system lets a popup take all input, that closes it most reliably; elsewhere it
/// closes when another window becomes active.
bool canGrabInput() {
    const QString platform = QGuiApplication::platformName();
    return platform == QLatin1String("xcb") || platform == QLatin1String("offscreen");
}

Qt::WindowFlags popoverWindowFlags() {
    if (!kit::windowSurface().isPlaceable) {
        return Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
               Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    }
    const Qt::WindowFlags kind = canGrabInput() ? Qt::Popup : Qt::Tool | Qt::WindowStaysOnTopHint;
    return kind | Qt::FramelessWindowHint;
}

} // namespace

Popover::Popover(AgentUIActions actions, QWidget* parent)
    : QWidget(parent, popoverWindowFlags()),
      view_(new AgentUsagePopoverView(std::move(actions), this)), surface_(kit::windowSurface()) {
    tellOfPopovers();
    takeSurface();
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    view_->onHeightChange = [this] {
        if (isVisible()) {
            place();
        }
    };
}

void Popover::setContent(PopoverContent content) {
    setWindowTitle(QString::fromStdString(content.title));
    setAccessibleName(QString::fromStdString(content.title));
    view_->setContent(std::move(content));
}

QMargins Popover::margins() const {
    if (!surface_.isPlaceable) {
        return {};
    }
    if (surface_.isComposited && !surface_.hasSystemShadow) {
        return kit::popoverShadowReach().toMargins();
    }
    return {1, 1, 1, 1};
}

QRect Popover::body() const {
    return rect().marginsRemoved(margins());
}

void Popover::takeSurface() {
    const kit::WindowSurface surface = kit::windowSurface();
    if (surface.isComposited != surface_.isComposited) {
        destroy(); // whether it shows through is settled when the window system makes it
    }
    surface_ = surface;
    // Without a compositor the display would keep a copy of all that might show through.
    setAttribute(Qt::WA_TranslucentBackground, surface_.isPlaceable && surface_.isComposited);
}

void Popover::rehearse() {
    takeSurface();
    place();
    winId();
    grab();
}

void Popover::open(const QRect& anchor) {
    anchor_ = anchor;
    takeSurface();
    view_->scrollToTop();
    hasBeenEntered_ = false;
    sinceOpened_.start();
    place();
    show();
    view_->setFocus(Qt::PopupFocusReason);
}

bool Popover::toggle(const QRect& anchor, const std::function<void()>& beforeOpening) {
    if (isVisible()) {
        close();
        return false;
    }
    if (sinceClosed_.isValid() && sinceClosed_.elapsed() < gestureMilliseconds) {
        return false;
    }
    beforeOpening();
    open(anchor);
    return true;
}

void Popover::place() {
    if (surface_.isPlaceable) {
        placeAtAnchor();
    } else {
        const int room =
            static_cast<int>(QGuiApplication::primaryScreen()->size().height() * tallestWindow);
        setFixedSize(AgentUsagePopoverView::viewWidth, std::min(view_->wantedHeight(), room));
    }
    view_->setGeometry(body());
    cutCorners();
}

void Popover::placeAtAnchor() {
    const QScreen* screen = QGuiApplication::screenAt(anchor_.center());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    const QSize size(AgentUsagePopoverView::viewWidth, view_->wantedHeight());
    const QRect place = popoverPlacement(anchor_, size, AgentUsagePopoverView::tallest,
                                         screen->availableGeometry());
    setGeometry(place.marginsAdded(margins()));
}

void Popover::cutCorners() {
    if (!surface_.isComposited) {
        QBitmap shape(width(), height());
        shape.clear();
        QPainter painter(&shape);
        painter.setBrush(Qt::color1);
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(rect(), kit::radius::popover, kit::radius::popover);
        painter.end();
        setMask(shape);
    } else {
        clearMask();
    }
}

void Popover::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void Popover::mousePressEvent(QMouseEvent* event) {
    // The shadow belongs to what lies under it.
    if (!body().contains(event->position().toPoint())) {
        close();
        return;
    }
    QWidget::mousePressEvent(event);
}

void Popover::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && !canGrabInput() && isVisible() && isLeft()) {
        close();
    }
    QWidget::changeEvent(event);
}

void Popover::enterEvent(QEnterEvent* event) {
    hasBeenEntered_ = true;
    QWidget::enterEvent(event);
}

bool Popover::isLeft() const {
    if (isActiveWindow()) {
        return false;
    }
    // Where the keyboard follows the pointer, other windows have it on the way from the panel to a
    // window that does not stand beside it.
    return surface_.isPlaceable || hasBeenEntered_ || sinceOpened_.elapsed() > wayMilliseconds;
}

void Popover::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (onOpenChange) {
        onOpenChange(true);
    }
}

void Popover::hideEvent(QHideEvent* event) {
    sinceClosed_.start();
    QWidget::hideEvent(event);
    if (onOpenChange) {
        onOpenChange(false);
    }
}

void Popover::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ground = body();
    const double radius = kit::radius::popover;
    if (!surface_.isPlaceable) {
        painter.fillRect(rect(), kit::color(kit::ColorRole::popover));
        return;
    }
    if (!surface_.isComposited) {
        painter.fillRect(rect(), kit::color(kit::ColorRole::lineStrong));
    } else if (!surface_.hasSystemShadow) {
        kit::drawPopoverShadow(painter, ground, radius);
    }
    painter.setPen(Qt::NoPen);
    if (surface_.isComposited) {
        QPainterPath edge;
        edge.addRoundedRect(ground.adjusted(-1, -1, 1, 1), radius + 1, radius + 1);
        QPainterPath inside;
        inside.addRoundedRect(ground, radius, radius);
        painter.fillPath(edge.subtracted(inside), kit::color(kit::ColorRole::edge));
    }
    painter.setBrush(kit::color(kit::ColorRole::popover));
    painter.drawRoundedRect(ground, radius, radius);
}

} // namespace vellmark
