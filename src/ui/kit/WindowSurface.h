#pragma once

namespace vellmark::kit {

/// What the desktop does for a window without a frame.
struct WindowSurface {
    /// The window may let what is below it show through; without it corners have to be cut out.
    bool isComposited = true;
    /// The desktop draws a shadow that follows the window's shape.
    bool hasSystemShadow = false;
    /// The program chooses where its windows stand. Where it cannot, one that belongs to a place (a
    /// popover, a strip at the edge) is a window of its own with a title, which the user places.
    bool isPlaceable = true;
};

/// Asked at each opening, since a compositor may come and go.
WindowSurface windowSurface();

} // namespace vellmark::kit
