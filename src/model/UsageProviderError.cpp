#include "model/UsageProviderError.h"

#include "model/UsageProviderErrorCases.h"
#include "text/SystemErrorText.h"
#include "text/TerminalText.h"

#include <algorithm>

namespace vellmark {

namespace {

/// Our own reasons for Antigravity, one of them with the system's behind it; everything else is the
/// words of its program.
std::string antigravityReason(const std::string& text, const Localization& words) {
    constexpr std::string_view file = "temporary file";
    constexpr std::string_view colon = ": ";
    if (text == "too much output") {
        return words.text("error.detail.tooMuchOutput");
    }
    if (text == file) {
        return words.text("error.detail.temporaryFile");
    }
    const std::string_view rest = std::string_view(text).substr(std::min(file.size(), text.size()));
    return text.starts_with(file) && rest.starts_with(colon)
               ? words.format("error.detail.temporaryFile.reason",
                              {systemReasonText(rest.substr(colon.size()), words)})
               : text;
}

/// A message whose detail is empty must not end in a colon.
std::string endedSentence(std::string message) {
    constexpr std::string_view dangling = ": ";
    if (message.ends_with(dangling)) {
        message.replace(message.size() - dangling.size(), dangling.size(), ".");
    }
    return message;
}

/// Another program's words on one line. If there are many, the last of them: the reason comes at
/// the end.
std::string detailText(const std::string& text) {
    constexpr std::size_t mostCharacters = 300;
    constexpr std::size_t mostBytes = 16 * mostCharacters; // so that not all of it is segmented
    const std::string_view words = trimmed(text);
    const bool isHuge = words.size() > mostBytes;
    const std::string line = singleLine(isHuge ? words.substr(words.size() - mostBytes) : words);
    const std::string ending = lastCharacters(line, mostCharacters);
    return isHuge || ending.size() < line.size() ? "…" + ending : ending;
}

/// A missing program as the user's language spells it.
std::string programName(const std::string& name, const Localization& words) {
    if (name == "Codex CLI") {
        return words.text("source.codex");
    }
    return name == "Antigravity CLI" ? words.text("source.antigravity") : name;
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
UsageProviderError UsageProviderError::claudeServiceRefused(std::string words) {
    return {Kind::claudeServiceRefused, {std::move(words)}};
}
UsageProviderError UsageProviderError::claudeQueryFailed(std::string detail) {
    return {Kind::claudeQueryFailed, {std::move(detail)}};
}
UsageProviderError UsageProviderError::antigravityReadingCosts(std::string version) {
    return {Kind::antigravityReadingCosts, {std::move(version)}};
}
UsageProviderError UsageProviderError::claudeOptionRefused(std::string option) {
    return {Kind::claudeOptionRefused, {std::move(option)}};
}

UsageProviderError
UsageProviderError::withTexts(const std::function<std::string(const std::string&)>& change) const {
    UsageProviderError changed = *this;
    for (std::string& text : changed.texts_) {
        text = change(text);
    }
    return changed;
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
    const auto detail = [&](std::size_t index) {
        const std::string text = index < texts_.size() ? detailText(texts_[index]) : std::string();
        if (kind_ == Kind::launchFailed && index == 1) {
            return systemReasonText(text, words);
        }
        if (kind_ == Kind::antigravityReadFailed) {
            return antigravityReason(text, words);
        }
        return kind_ == Kind::executableMissing ? programName(text, words) : text;
    };
    return endedSentence(errorCase.hasCode
                             ? words.format(errorCase.messageKey, {code_, detail(0)})
                             : words.format(errorCase.messageKey, {detail(0), detail(1)}));
}

bool UsageProviderError::isOfService() const {
    switch (kind_) {
    case Kind::claudeServiceUnavailable:
    case Kind::claudeServiceRefused:
    case Kind::claudeQueryFailed:
    case Kind::claudePageError:
    case Kind::codexReadFailed:
    case Kind::antigravityReadFailed:
        return true;
    default:
        return false;
    }
}

const char* UsageProviderError::what() const noexcept {
    return errorCase(kind_).name;
}

} // namespace vellmark
