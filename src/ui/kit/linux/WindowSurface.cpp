#include "ui/kit/WindowSurface.h"

#include "ui/kit/linux/X11.h"

#include <QGuiApplication>

namespace vellmark::kit {

WindowSurface windowSurface() {
    xcb_connection_t* const x11 = x11Connection();
    if (x11 == nullptr) {
        // Wayland always composites, and no window there knows its place; drawing without a display
        // can do both.
        return {.isPlaceable =
                    !QGuiApplication::platformName().startsWith(QLatin1String("wayland"))};
    }
    return {.isComposited = isSelectionOwned(x11, "_NET_WM_CM_S0")};
}

} // namespace vellmark::kit
