#pragma once

namespace vellmark::kit {

/// What the desktop does for a window without a frame.
struct WindowSurface {
    /// The window may let what is below it show through; without it corners have to be cut out.
    bool isComposited = true;
    /// The desktop draws a shadow that follows the window's shape.
    bool hasSystemShadow = false;
};

/// Asked at each opening, since a compositor may come and go.
WindowSurface windowSurface();

} // namespace vellmark::kit
