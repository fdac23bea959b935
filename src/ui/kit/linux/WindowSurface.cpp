#include "ui/kit/WindowSurface.h"

#include "ui/kit/linux/SelectionOwner.h"

#include <QGuiApplication>

namespace vellmark::kit {

WindowSurface windowSurface() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->connection() == nullptr) {
        // Wayland always composites, and no window there knows its place; drawing without a display
        // can do both.
        return {.isPlaceable =
                    !QGuiApplication::platformName().startsWith(QLatin1String("wayland"))};
    }
    return {.isComposited = isSelectionOwned("_NET_WM_CM_S0")};
}

} // namespace vellmark::kit
