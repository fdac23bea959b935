#pragma once

#include "text/Redaction.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// Redacts a text that comes in pieces; all that comes out is together what `redacted` makes of
/// the whole.
///
/// Holds the line that is not complete yet, up to `longestLine` bytes, and before it the lines that
/// a secret may span, up to `mostHeld`.
class RedactionStream {
public:
    static constexpr std::size_t mostHeld = std::size_t{64} << 20;
    static constexpr std::size_t longestLine = std::size_t{512} << 20;

    RedactionStream(std::string homeDirectory, const RedactionOptions& options,
                    std::size_t heldLimit = mostHeld);

    /// What is certain by now, redacted. Absent when that is not possible, also for good: then
    /// nothing of the rest may be shown.
    std::optional<std::string> add(std::string_view piece);
    /// The rest.
    std::optional<std::string> finish();

private:
    std::string homeDirectory_;
    RedactionOptions options_;
    std::size_t heldLimit_;
    std::string held_;
    bool hasFailed_ = false;
};

} // namespace vellmark
