#pragma once

#include "text/Instant.h"
#include "text/Localization.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The facts of a support report, as they were gathered: not yet redacted.
struct SupportReportInput {
    struct Agent {
        std::string name;
        bool enabled = true;
        std::optional<std::string> toolPath;
        std::optional<std::string> toolVersion;
        /// Absent when it cannot be told.
        std::optional<bool> loggedIn;
        /// The time of the last good reading.
        std::optional<Instant> lastSuccess;
    };

    std::string version;
    std::string build;
    /// The system's name and version, for example "macOS 26.1".
    std::string osVersion;
    std::string architecture;
    std::string languageCode;
    std::string region;
    Instant date{};
    std::vector<Agent> agents;
    std::string logText;
};

/// The redacted report; absent when it could not be redacted.
std::optional<std::string> supportReportText(const SupportReportInput& input,
                                             std::string_view homeDirectory, bool includeEmails,
                                             const Localization& words);

/// "Vellmark-Support-Bericht-2025-11-20.txt": the same in every language.
std::string supportReportFileName(Instant date, const Localization& words);

} // namespace vellmark
