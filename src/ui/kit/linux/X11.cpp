#include "ui/kit/linux/X11.h"

#include <QGuiApplication>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace vellmark::kit {

namespace {
struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
} // namespace

xcb_connection_t* x11Connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

xcb_atom_t x11Atom(xcb_connection_t* connection, std::string_view name) {
    const auto request =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(
        xcb_intern_atom_reply(connection, request, nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

bool isSelectionOwned(xcb_connection_t* connection, std::string_view name) {
    const xcb_atom_t selection = x11Atom(connection, name);
    if (selection == XCB_ATOM_NONE) {
        return false;
    }
    const auto request = xcb_get_selection_owner(connection, selection);
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> reply(
        xcb_get_selection_owner_reply(connection, request, nullptr));
    return reply && reply->owner != XCB_NONE;
}

} // namespace vellmark::kit
