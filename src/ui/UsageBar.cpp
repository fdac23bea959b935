#include "ui/UsageBar.h"

#include "ui/Conversions.h"

namespace vellmark {

namespace {
kit::BarLook barLook(const UsageBarContent& bar) {
    constexpr double percent = 100;
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

void UsageBar::setContent(const UsageRowContent& row) {
    setLook(barLook(row.bar));
    setToolTip(qString(row.bar.toolTip));
    setAccessibleName(qString(row.accessibilityText));
    setAccessibleDescription(qString(row.accessibilityDetail));
}

} // namespace vellmark
