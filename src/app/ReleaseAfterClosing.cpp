#include "app/ReleaseAfterClosing.h"

#include <QEvent>

#include <utility>

namespace vellmark {

ReleaseAfterClosing::ReleaseAfterClosing(QWidget& window,
                                         std::function<std::unique_ptr<QWidget>()> release)
    : QObject(&window), window_(window), release_(std::move(release)) {
    delay_.setSingleShot(true);
    delay_.setInterval(delayMilliseconds);
    connect(&delay_, &QTimer::timeout, this, &ReleaseAfterClosing::releaseWindow);
    window.installEventFilter(this);
}

bool ReleaseAfterClosing::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide)
        delay_.start();
    else if (event->type() == QEvent::Show)
        delay_.stop();
    return QObject::eventFilter(watched, event);
}

void ReleaseAfterClosing::releaseWindow() {
    // A minimized window is hidden by the system and visible all the same.
    if (!window_.isVisible())
        release_().release()->deleteLater();
}

} // namespace vellmark
