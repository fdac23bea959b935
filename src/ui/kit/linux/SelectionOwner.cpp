#include "ui/kit/linux/SelectionOwner.h"

#include <QGuiApplication>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace vellmark::kit {

namespace {
struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
} // namespace

bool isSelectionOwned(std::string_view name) {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->connection() == nullptr) {
        return false;
    }
    const auto atomRequest =
        xcb_intern_atom(x11->connection(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(
        xcb_intern_atom_reply(x11->connection(), atomRequest, nullptr));
    if (!atom) {
        return false;
    }
    const auto ownerRequest = xcb_get_selection_owner(x11->connection(), atom->atom);
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(x11->connection(), ownerRequest, nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace vellmark::kit
