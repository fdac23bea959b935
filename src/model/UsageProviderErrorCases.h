#pragma once

#include "model/UsageProviderError.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace vellmark {

/// What is fixed about one case of UsageProviderError; its JSON form and its message follow from
/// this table.
struct ErrorCase {
    UsageProviderError::Kind kind;
    /// The case's name in JSON.
    const char* name;
    /// Empty for `other`.
    std::string_view messageKey;
    std::size_t textCount = 0;
    /// A status number stands before the texts.
    bool hasCode = false;
};

using ErrorKind = UsageProviderError::Kind;

/// In the order of UsageProviderError::Kind.
inline constexpr std::array errorCases{
    ErrorCase{ErrorKind::executableMissing, "executableMissing", "error.executableMissing", 1},
    ErrorCase{ErrorKind::launchFailed, "launchFailed", "error.launchFailed", 2},
    ErrorCase{ErrorKind::claudeReadFailed, "claudeReadFailed", "error.claude.readFailed", 1, true},
    ErrorCase{ErrorKind::timeout, "timeout", "error.timeout", 1},
    ErrorCase{ErrorKind::codexReadFailed, "codexReadFailed", "error.codex.readFailed", 1},
    ErrorCase{ErrorKind::claudeNoQuotasDiagnosed, "claudeNoQuotasDiagnosed",
              "error.claude.noQuotasDiagnosed", 1},
    ErrorCase{ErrorKind::claudePageError, "claudePageError", "error.claude.pageError", 1},
    ErrorCase{ErrorKind::antigravityReadFailed, "antigravityReadFailed",
              "error.antigravity.readFailed", 1},
    ErrorCase{ErrorKind::other, "other", "", 1},
    ErrorCase{ErrorKind::claudeNotLoggedIn, "claudeNotLoggedIn", "error.claude.notLoggedIn"},
    ErrorCase{ErrorKind::claudeTempFileFailed, "claudeTempFileFailed", "error.claude.tempFile"},
    ErrorCase{ErrorKind::codexNoQuotas, "codexNoQuotas", "error.codex.noQuotas"},
    ErrorCase{ErrorKind::codexNoWindows, "codexNoWindows", "error.codex.noWindows"},
    ErrorCase{ErrorKind::claudeNoQuotas, "claudeNoQuotas", "error.claude.noQuotas"},
    ErrorCase{ErrorKind::antigravityNotLoggedIn, "antigravityNotLoggedIn",
              "error.antigravity.notLoggedIn"},
    ErrorCase{ErrorKind::antigravityIneligible, "antigravityIneligible",
              "error.antigravity.ineligible"},
    ErrorCase{ErrorKind::antigravityNoQuotas, "antigravityNoQuotas", "error.antigravity.noQuotas"},
    ErrorCase{ErrorKind::claudeServiceUnavailable, "claudeServiceUnavailable",
              "error.claude.serviceUnavailable"},
    ErrorCase{ErrorKind::claudeServiceRefused, "claudeServiceRefused",
              "error.claude.serviceRefused", 1},
    ErrorCase{ErrorKind::claudeAPIKey, "claudeAPIKey", "error.claude.apiKey"},
    ErrorCase{ErrorKind::claudeNoSubscription, "claudeNoSubscription",
              "error.claude.noSubscription"},
    ErrorCase{ErrorKind::claudeQueryFailed, "claudeQueryFailed", "error.claude.queryFailed", 1},
    ErrorCase{ErrorKind::codexNotLoggedIn, "codexNotLoggedIn", "error.codex.notLoggedIn"},
    ErrorCase{ErrorKind::codexAPIKey, "codexAPIKey", "error.codex.apiKey"},
    ErrorCase{ErrorKind::antigravityReadingCosts, "antigravityReadingCosts",
              "error.antigravity.readingCosts", 1},
    ErrorCase{ErrorKind::claudeOptionRefused, "claudeOptionRefused", "error.claude.optionRefused",
              1},
};

constexpr const ErrorCase& errorCase(UsageProviderError::Kind kind) {
    return errorCases[static_cast<std::size_t>(kind)];
}

constexpr bool errorCasesAreInOrder() {
    for (std::size_t index = 0; index < errorCases.size(); ++index) {
        if (static_cast<std::size_t>(errorCases[index].kind) != index) {
            return false;
        }
    }
    return true;
}
static_assert(errorCasesAreInOrder());

} // namespace vellmark
