#include "app/WindowMemory.h"

#include "platform/UnusedMemory.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace vellmark {

WindowMemory::WindowMemory(QWidget& window, std::function<std::unique_ptr<QWidget>()> release)
    : QObject(&window), window_(window), release_(std::move(release)) {
    delay_.setSingleShot(true);
    delay_.setInterval(delayMilliseconds);
    connect(&delay_, &QTimer::timeout, this, &WindowMemory::settle);
    window.installEventFilter(this);
}

bool WindowMemory::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show || event->type() == QEvent::Hide) {
        delay_.start();
    }
    return QObject::eventFilter(watched, event);
}

void WindowMemory::settle() {
    // A minimized window is hidden by the system and visible all the same.
    if (window_.isVisible()) {
        releaseUnusedMemory();
        return;
    }
    QWidget* window = release_().release();
    // A window says that it goes before its contents go.
    connect(window, &QObject::destroyed,
            [] { QTimer::singleShot(0, QCoreApplication::instance(), releaseUnusedMemory); });
    window->deleteLater();
}

} // namespace vellmark
