#pragma once

#include "platform/Machine.h"

#include <string>
#include <vector>

namespace vellmark {

/// The languages and the formats that the user has chosen in the system.
struct UserLocale {
    /// "de", "en" …, the most wanted first; empty when the system names none.
    std::vector<std::string> languageCodes;
    /// For the formats of numbers and dates, "de_CH"; empty when the system names none.
    std::string formatIdentifier;

    /// Linux reads `environment`, macOS its own settings.
    static UserLocale of(const Environment& environment);

    bool operator==(const UserLocale&) const = default;
};

} // namespace vellmark
