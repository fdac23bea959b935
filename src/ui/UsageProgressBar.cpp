#include "ui/UsageProgressBar.h"

#include "ui/Conversions.h"

#include <cmath>

namespace vellmark {

namespace {
constexpr double percent = 100;

kit::BarLook barLook(const UsageBarContent& bar) {
    kit::BarLook look;
    look.share = bar.filledShare * percent;
    if (bar.paceMark) {
        look.mark = *bar.paceMark * percent;
    }
    look.color = markColor(bar.health);
    look.isStale = bar.isStale;
    return look;
}
} // namespace

void UsageProgressBar::setContent(const UsageRowContent& row) {
    setLook(barLook(row.bar));
    setValue(static_cast<int>(std::lround(row.bar.usedShare * percent)));
    setToolTip(qString(row.bar.toolTip));
    setAccessibleName(qString(row.accessibilityText));
    setAccessibleDescription(qString(row.accessibilityDetail));
}

} // namespace vellmark
