#pragma once

#include "presentation/UsageRowContent.h"
#include "ui/kit/Bar.h"

namespace vellmark {

/// The bar of one quota window. It speaks for its row: to the pointer, and to screen readers.
class UsageProgressBar : public kit::Bar {
public:
    using kit::Bar::Bar;
    void setContent(const UsageRowContent& row);
};

} // namespace vellmark
