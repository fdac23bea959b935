#include "app/linux/TrayWatch.h"

#include "ui/kit/linux/X11.h"

#include <QCoreApplication>
#include <QSystemTrayIcon>

#include <utility>

namespace vellmark {
TrayWatch::TrayWatch(std::function<void()> onChange) : onChange_(std::move(onChange)) {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

TrayWatch::~TrayWatch() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeNativeEventFilter(this);
    }
}

bool TrayWatch::nativeEventFilter(const QByteArray& kind, void* message, qintptr* /*result*/) {
    if (kind != "xcb_generic_event_t" || isTellingPosted_) {
        return false;
    }
    constexpr unsigned sentFlag = 0x80;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const unsigned type = event->response_type & ~sentFlag;
    // A tray announces itself by a message to all, and is gone with its window.
    if (type == XCB_CLIENT_MESSAGE || type == XCB_DESTROY_NOTIFY) {
        isTellingPosted_ = true;
        // Qt has to see the event first.
        QMetaObject::invokeMethod(this, &TrayWatch::tell, Qt::QueuedConnection);
    }
    return false;
}

void TrayWatch::tell() {
    isTellingPosted_ = false;
    onChange_();
}

bool isTrayAvailable() {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        return false;
    }
    xcb_connection_t* const x11 = kit::x11Connection();
    return x11 == nullptr || kit::isSelectionOwned(x11, "_NET_SYSTEM_TRAY_S0");
}

} // namespace vellmark
