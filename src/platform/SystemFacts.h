#pragma once

#include <string>

namespace vellmark {

/// What a support report says about the system.
struct SystemFacts {
    /// Name and version, for example "macOS 26.1" or "Debian GNU/Linux 12 (bookworm)".
    std::string osVersion;
    /// The processor's architecture, for example "arm64".
    std::string architecture;
};

SystemFacts systemFacts();

} // namespace vellmark
