#pragma once

#include "text/Localization.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// Why an agent could not be read: the one type that a probe throws.
///
/// A value with equality and a JSON form. `texts` and `code` hold the payload of the case; use the
/// makers below, which name it.
class UsageProviderError : public std::exception {
public:
    enum class Kind {
        executableMissing,
        launchFailed,
        claudeReadFailed,
        timeout,
        codexReadFailed,
        claudeNoQuotasDiagnosed,
        claudePageError,
        antigravityReadFailed,
        other,
        claudeNotLoggedIn,
        claudeTempFileFailed,
        codexNoQuotas,
        codexNoWindows,
        claudeNoQuotas,
        antigravityNotLoggedIn,
        antigravityIneligible,
        antigravityNoQuotas,
        claudeServiceUnavailable, ///< the CLI answered, but had no new figures from its service
        claudeServiceRefused,     ///< the same, with the service's words
        claudeAPIKey,             ///< logged in with an API key, which has no quotas
        claudeNoSubscription,     ///< logged in to an account without a subscription
        claudeQueryFailed,        ///< the CLI refused the usage query, in its own words
        codexNotLoggedIn,
        codexAPIKey,             ///< logged in with an API key, which has no quotas
        antigravityReadingCosts, ///< this version would spend quota by being read
        claudeOptionRefused,     ///< too old for an option that the session needs
    };

    /// A case without payload.
    explicit UsageProviderError(Kind kind) : kind_(kind) {}

    static UsageProviderError executableMissing(std::string name);
    static UsageProviderError launchFailed(std::string executable, std::string reason);
    static UsageProviderError claudeReadFailed(std::int64_t status, std::string detail);
    static UsageProviderError timeout(std::string what);
    static UsageProviderError codexReadFailed(std::string detail);
    static UsageProviderError claudeNoQuotasDiagnosed(std::string diagnosis);
    static UsageProviderError claudePageError(std::string phrase);
    static UsageProviderError antigravityReadFailed(std::string detail);
    static UsageProviderError other(std::string message);
    static UsageProviderError claudeServiceRefused(std::string words);
    static UsageProviderError claudeQueryFailed(std::string detail);
    /// `version`: the CLI's own, as it tells it.
    static UsageProviderError antigravityReadingCosts(std::string version);
    static UsageProviderError claudeOptionRefused(std::string option);

    Kind kind() const { return kind_; }
    /// The text payloads in order; empty for a case without.
    const std::vector<std::string>& texts() const { return texts_; }
    /// The same case with each text payload put through `change`.
    UsageProviderError
    withTexts(const std::function<std::string(const std::string&)>& change) const;
    /// The status of `claudeReadFailed`.
    std::int64_t code() const { return code_; }

    /// The key of the message shown to the user; absent for `other`, whose text is the message.
    std::optional<std::string> messageKey() const;
    /// The message in the user's language, on one line; the text of `other` as it stands.
    std::string message(const Localization& words) const;

    /// The agent's service refused or could not be reached: asking again at once is useless.
    bool isOfService() const;

    /// The case's name, for debuggers and test output.
    const char* what() const noexcept override;

    bool operator==(const UsageProviderError& other) const {
        return kind_ == other.kind_ && code_ == other.code_ && texts_ == other.texts_;
    }

private:
    friend struct UsageProviderErrorCoding;
    UsageProviderError(Kind kind, std::vector<std::string> texts, std::int64_t code = 0)
        : kind_(kind), texts_(std::move(texts)), code_(code) {}

    Kind kind_;
    std::vector<std::string> texts_;
    std::int64_t code_ = 0;
};

} // namespace vellmark

template<>
struct std::hash<vellmark::UsageProviderError> {
    std::size_t operator()(const vellmark::UsageProviderError& error) const noexcept;
};
