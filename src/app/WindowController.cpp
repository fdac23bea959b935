#include "app/WindowController.h"

#include "app/WindowActivation.h"
#include "app/WindowMemory.h"

#include <QEvent>
#include <QGuiApplication>
#include <QMargins>
#include <QScreen>
#include <QWindow>

#include <utility>

namespace vellmark {

namespace {
/// Before the window was on screen nobody knows what its title bar takes.
constexpr QMargins likelyFrame(1, 36, 1, 1);
} // namespace

WindowController::WindowController(Description description, WindowPresenceController& presence,
                                   Preferences& preferences)
    : description_(std::move(description)), presence_(presence), preferences_(preferences) {}

WindowController::~WindowController() {
    if (window_) {
        window_->removeEventFilter(this);
        // While its parts can still be told: a page that is hidden acts on what its window holds.
        window_->hide();
    }
}

void WindowController::show() {
    if (!window_) {
        make();
    }
    presence_.windowOpened(description_.identifier);
    if (window_->isMinimized()) {
        window_->showNormal();
    }
    fitToScreen();
    window_->show();
    // Once more with the frame that it was given.
    fitToScreen();
    bringToFront(*window_);
    activateApplication();
}

void WindowController::make() {
    window_ = description_.make();
    window_->setAttribute(Qt::WA_QuitOnClose, false);
    window_->installEventFilter(this);
    new WindowMemory(*window_, [this] { return release(); });
    leastSize_ = window_->minimumSize();
    retitle();
    restoreFrame();
    followScreens();
}

void WindowController::followScreens() {
    window_->winId();
    const QWindow* handle = window_->windowHandle();
    const auto follow = [this](QScreen* screen) {
        // Belongs to the window: ends with it.
        connect(screen, &QScreen::availableGeometryChanged, window_.get(),
                [this] { fitToScreen(); });
    };
    for (QScreen* screen : QGuiApplication::screens()) {
        follow(screen);
    }
    connect(qApp, &QGuiApplication::screenAdded, window_.get(), follow);
    connect(handle, &QWindow::screenChanged, window_.get(), [this] { fitToScreen(); });
}

void WindowController::fitToScreen() {
    if (!window_ || window_->isMaximized() || window_->isFullScreen()) {
        return;
    }
    QMargins frame = window_->windowHandle()->frameMargins();
    if (frame.isNull()) {
        frame = likelyFrame;
    }
    const QRect free = window_->screen()->availableGeometry().marginsRemoved(frame);
    window_->setMinimumSize(leastSize_.boundedTo(free.size()));
    if (window_->width() > free.width() || window_->height() > free.height()) {
        window_->resize(window_->size().boundedTo(free.size()));
        window_->move(free.topLeft() - QPoint(frame.left(), frame.top()));
    }
}

std::unique_ptr<QWidget> WindowController::release() {
    window_->removeEventFilter(this);
    return std::move(window_);
}

bool WindowController::isVisible() const {
    return window_ && window_->isVisible();
}

void WindowController::retitle() {
    if (window_) {
        window_->setWindowTitle(description_.title());
    }
}

bool WindowController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window_.get()) {
        // A window that is being minimized is hidden by the system and visible all the same.
        if (event->type() == QEvent::Hide && !window_->isVisible()) {
            saveFrame();
            presence_.windowClosed(description_.identifier);
        }
        const bool changes = event->type() == QEvent::Hide || event->type() == QEvent::Show;
        if (changes && description_.onVisibilityChange) {
            description_.onVisibilityChange();
        }
    }
    return QObject::eventFilter(watched, event);
}

void WindowController::saveFrame() {
    if (!window_ || description_.autosaveName.empty()) {
        return;
    }
    preferences_.setString("Frame " + description_.autosaveName,
                           window_->saveGeometry().toBase64().toStdString());
}

void WindowController::restoreFrame() {
    if (description_.autosaveName.empty()) {
        return;
    }
    const auto saved = preferences_.string("Frame " + description_.autosaveName);
    if (saved) {
        window_->restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(*saved)));
    }
}

} // namespace vellmark
