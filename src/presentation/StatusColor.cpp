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

} // namespace vellmark
