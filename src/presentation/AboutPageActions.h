#pragma once

#include "presentation/AboutPageContent.h"

#include <functional>
#include <string>

namespace vellmark {

/// What the about page and the about window ask of the application. Main thread.
struct AboutPageActions {
    std::function<void(AboutLink)> open;
    /// Opens the web page of a library.
    std::function<void(const std::string& url)> openURL;
};

} // namespace vellmark
