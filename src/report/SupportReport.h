#pragma once

#include "text/Instant.h"
#include "text/Localization.h"
#include "text/Redaction.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
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
    /// What the user says of it; nothing is written of it while it is blank.
    std::string whatHappened;
};

/// The redacted report, with the places where something was removed; absent when it could not be
/// redacted. Takes half a second for a log of ten megabytes.
std::optional<RedactedText> supportReport(const SupportReportInput& input,
                                          std::string_view homeDirectory, bool includeEmails,
                                          const Localization& words);

/// Just its text.
std::optional<std::string> supportReportText(const SupportReportInput& input,
                                             std::string_view homeDirectory, bool includeEmails,
                                             const Localization& words);

/// "Vellmark-Support-Bericht-2025-11-20.txt": the same in every language.
std::string supportReportFileName(Instant date, const Localization& words);

/// Writes a report for its owner alone, at once or not at all. The folder must be there: a mistyped
/// path is no wish for a new one.
std::error_code saveSupportReport(const std::filesystem::path& file, std::string_view text);

} // namespace vellmark
