#pragma once

#include "presentation/UsageRowContent.h"
#include "ui/kit/UsageProgressBar.h"

namespace vellmark {

/// The bar of one quota window. It speaks for its row: to the pointer, and to screen readers.
class UsageBar : public kit::UsageProgressBar {
public:
    using kit::UsageProgressBar::UsageProgressBar;
    void setContent(const UsageRowContent& row);
};

} // namespace vellmark
