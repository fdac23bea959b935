#include "presentation/StatusColor.h"

namespace vellmark {

StatusColorRole statusColorRole(UsageHealth health) {
    switch (health) {
    case UsageHealth::healthy:
        return StatusColorRole::healthy;
    case UsageHealth::attention:
        return StatusColorRole::attention;
    case UsageHealth::critical:
        return StatusColorRole::critical;
    case UsageHealth::unavailable:
        return StatusColorRole::none;
    }
    return StatusColorRole::none;
}

ColorComponents statusColor(StatusColorRole role, bool onDark) {
    switch (role) {
    case StatusColorRole::healthy:
        return onDark ? ColorComponents{0.15, 0.82, 0.45, 1} : ColorComponents{0.06, 0.52, 0.25, 1};
    case StatusColorRole::attention:
        return onDark ? ColorComponents{0.98, 0.70, 0.20, 1} : ColorComponents{0.72, 0.46, 0.00, 1};
    case StatusColorRole::critical:
        return onDark ? ColorComponents{0.93, 0.25, 0.28, 1} : ColorComponents{0.80, 0.14, 0.18, 1};
    case StatusColorRole::refreshing:
        return onDark ? ColorComponents{0x0A / 255.0, 0x84 / 255.0, 1, 1}
                      : ColorComponents{0, 0x7A / 255.0, 1, 1};
    case StatusColorRole::none:
        break;
    }
    return onDark ? ColorComponents{0x9C / 255.0, 0x9E / 255.0, 0xA6 / 255.0, 1}
                  : ColorComponents{0x6E / 255.0, 0x70 / 255.0, 0x78 / 255.0, 1};
}

} // namespace vellmark
