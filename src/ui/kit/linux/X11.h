#pragma once

#include <string_view>
#include <xcb/xcb.h>

namespace vellmark::kit {

// What the toolkit does not ask the X server itself. Main thread; the questions wait for the
// answer.

/// The toolkit's connection; null where windows are shown in another way, as on Wayland.
xcb_connection_t* x11Connection();

/// The server's number for a name; XCB_ATOM_NONE where it gives none.
xcb_atom_t x11Atom(xcb_connection_t* connection, std::string_view name);

/// Whether somebody owns a selection, by which trays ("_NET_SYSTEM_TRAY_S0", System Tray Protocol)
/// and compositing managers ("_NET_WM_CM_S0", Extended Window Manager Hints) make themselves known.
bool isSelectionOwned(xcb_connection_t* connection, std::string_view name);

} // namespace vellmark::kit
