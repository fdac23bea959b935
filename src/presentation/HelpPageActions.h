#pragma once

#include "presentation/HelpPageContent.h"

#include <functional>
#include <string>

namespace vellmark {

/// What the help page asks of the application. Main thread.
struct HelpPageActions {
    std::function<void(HelpSection)> choose;
    std::function<void(const std::string& query)> search;
    std::function<void(const std::string& command)> copy;
    std::function<void(HelpLink)> open;
};

} // namespace vellmark
