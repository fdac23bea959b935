#include "ui/kit/WindowSurface.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace vellmark::kit {

namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

/// A compositing manager owns the selection _NET_WM_CM_S0 (Extended Window Manager Hints).
bool hasCompositor(xcb_connection_t* connection) {
    constexpr std::string_view name = "_NET_WM_CM_S0";
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

WindowSurface windowSurface() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->connection() == nullptr) {
        // Wayland always composites, and no window there knows its place; drawing without a display
        // can do both.
        return {.isPlaceable =
                    !QGuiApplication::platformName().startsWith(QLatin1String("wayland"))};
    }
    return {.isComposited = hasCompositor(x11->connection())};
}

} // namespace vellmark::kit
