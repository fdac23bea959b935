#include "ui/kit/WindowSurface.h"

namespace vellmark::kit {

WindowSurface windowSurface() {
    return {.isComposited = true, .hasSystemShadow = true};
}

} // namespace vellmark::kit
