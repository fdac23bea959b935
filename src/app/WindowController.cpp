#include "app/WindowController.h"

#include "app/WindowMemory.h"

#include <QEvent>

#include <utility>

namespace vellmark {

WindowController::WindowController(Description description, WindowPresenceController& presence,
                                   Preferences& preferences)
    : description_(std::move(description)), presence_(presence), preferences_(preferences) {}

WindowController::~WindowController() {
    if (window_) {
        window_->removeEventFilter(this);
    }
}

void WindowController::show() {
    if (!window_) {
        window_ = description_.make();
        window_->setAttribute(Qt::WA_QuitOnClose, false);
        window_->installEventFilter(this);
        new WindowMemory(*window_, [this] { return release(); });
        retitle();
        restoreFrame();
    }
    presence_.windowOpened(description_.identifier);
    if (window_->isMinimized()) {
        window_->showNormal();
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
    activateApplication();
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
