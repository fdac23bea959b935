#pragma once

#include "text/Localization.h"

#include <cstddef>
#include <span>
#include <string>

namespace vellmark {

/// An option of the desktop application.
struct LaunchOptionHelp {
    /// "-h, --help".
    const char* names;
    /// Stands for the value ("DIR"); empty for a flag.
    const char* placeholder;
    const char* textKey;
};

/// All of them: its help and its manual page are made of these.
std::span<const LaunchOptionHelp> launchOptionHelp();

/// What "vellmark-desktop --help" prints, for a terminal of so many columns.
std::string launchHelp(const Localization& words, std::size_t columns);

} // namespace vellmark
