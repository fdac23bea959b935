#pragma once

#include <string_view>

namespace vellmark::kit {

/// Whether somebody owns a selection of the X server, by which trays ("_NET_SYSTEM_TRAY_S0") and
/// compositing managers ("_NET_WM_CM_S0") make themselves known (Extended Window Manager Hints,
/// System Tray Protocol). Asks the server and waits; false without an X11 display.
bool isSelectionOwned(std::string_view name);

} // namespace vellmark::kit
