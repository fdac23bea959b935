#include "report/RedactionStream.h"

#include <utility>

namespace vellmark {

RedactionStream::RedactionStream(std::string homeDirectory, const RedactionOptions& options,
                                 std::size_t heldLimit)
    : homeDirectory_(std::move(homeDirectory)), options_(options), heldLimit_(heldLimit) {}

std::optional<std::string> RedactionStream::add(std::string_view piece) {
    if (hasFailed_) {
        return std::nullopt;
    }
    const std::size_t lastBreak = piece.rfind('\n');
    const std::size_t complete =
        lastBreak == std::string_view::npos ? 0 : held_.size() + lastBreak + 1;
    held_ += piece;
    const std::string_view lines = std::string_view(held_).substr(0, complete);
    const std::size_t boundary = redactionBoundary(lines, homeDirectory_, options_);
    if (boundary == 0) {
        hasFailed_ = complete > heldLimit_ || held_.size() > longestLine;
        return hasFailed_ ? std::nullopt : std::optional(std::string());
    }
    auto result = redacted(lines.substr(0, boundary), homeDirectory_, options_);
    held_.erase(0, boundary);
    hasFailed_ = !result;
    return result;
}

std::optional<std::string> RedactionStream::finish() {
    if (hasFailed_) {
        return std::nullopt;
    }
    return redacted(std::exchange(held_, {}), homeDirectory_, options_);
}

} // namespace vellmark
