#include "ui/popover/WindowSurface.h"

namespace vellmark {

WindowSurface windowSurface() {
    return {.isComposited = true, .hasSystemShadow = true};
}

} // namespace vellmark
