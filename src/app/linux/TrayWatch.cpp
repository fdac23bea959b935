#include "app/linux/TrayWatch.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QSystemTrayIcon>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>
#include <xcb/xcb.h>

namespace vellmark {
namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

/// Of the first screen, like the toolkit.
bool isTrayOwned(xcb_connection_t* connection) {
    constexpr std::string_view name = "_NET_SYSTEM_TRAY_S0";
    const auto atomRequest = xcb_intern_atom(connection, 0, name.size(), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(
        xcb_intern_atom_reply(connection, atomRequest, nullptr));
    if (!atom) {
        return false;
    }
    const auto ownerRequest = xcb_get_selection_owner(connection, atom->atom);
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(connection, ownerRequest, nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace

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
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr || x11->connection() == nullptr || isTrayOwned(x11->connection());
}

} // namespace vellmark
