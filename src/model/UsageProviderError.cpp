#include "model/UsageProviderError.h"

#include "model/UsageProviderErrorCases.h"
#include "text/TerminalText.h"

namespace vellmark {

namespace {

/// A message whose detail is empty must not end in a colon.
std::string endedSentence(std::string message) {
    constexpr std::string_view dangling = ": ";
    if (message.ends_with(dangling)) {
        message.replace(message.size() - dangling.size(), dangling.size(), ".");
    }
    return message;
}

} // namespace

UsageProviderError UsageProviderError::executableMissing(std::string name) {
    return {Kind::executableMissing, {std::move(name)}};
}
UsageProviderError UsageProviderError::launchFailed(std::string executable, std::string reason) {
    return {Kind::launchFailed, {std::move(executable), std::move(reason)}};
}
UsageProviderError UsageProviderError::claudeReadFailed(std::int64_t status, std::string detail) {
    return {Kind::claudeReadFailed, {std::move(detail)}, status};
}
UsageProviderError UsageProviderError::timeout(std::string what) {
    return {Kind::timeout, {std::move(what)}};
}
UsageProviderError UsageProviderError::codexReadFailed(std::string detail) {
    return {Kind::codexReadFailed, {std::move(detail)}};
}
UsageProviderError UsageProviderError::claudeNoQuotasDiagnosed(std::string diagnosis) {
    return {Kind::claudeNoQuotasDiagnosed, {std::move(diagnosis)}};
}
UsageProviderError UsageProviderError::claudePageError(std::string phrase) {
    return {Kind::claudePageError, {std::move(phrase)}};
}
UsageProviderError UsageProviderError::antigravityReadFailed(std::string detail) {
    return {Kind::antigravityReadFailed, {std::move(detail)}};
}
UsageProviderError UsageProviderError::other(std::string message) {
    return {Kind::other, {std::move(message)}};
}

std::optional<std::string> UsageProviderError::messageKey() const {
    const std::string_view key = errorCase(kind_).messageKey;
    return key.empty() ? std::nullopt : std::optional(std::string(key));
}

std::string UsageProviderError::message(const Localization& words) const {
    const ErrorCase& errorCase = vellmark::errorCase(kind_);
    if (errorCase.messageKey.empty()) {
        return texts_.empty() ? std::string() : texts_.front();
    }
    // Details are words of other programs.
    const auto detail = [this](std::size_t index) {
        return index < texts_.size() ? singleLine(trimmed(texts_[index])) : std::string();
    };
    return endedSentence(errorCase.hasCode
                             ? words.format(errorCase.messageKey, {code_, detail(0)})
                             : words.format(errorCase.messageKey, {detail(0), detail(1)}));
}

const char* UsageProviderError::what() const noexcept {
    return errorCase(kind_).name;
}

} // namespace vellmark
