#pragma once

#include "model/UsageWindow.h"
#include "text/Instant.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// What Claude Code hands to a status-line command on standard input, as far as it is read here.
/// The form was found by looking at version 2.1.330; whatever is unknown is passed over.
struct ClaudeStatusInput {
    /// Names the session.
    std::string session;
    /// Changes with every answer that the session has got from its service.
    std::string turn;
    /// The directory that the session works in.
    std::string directory;
    /// Session and week, as the last answer has told them; none before the first one, or with an
    /// API key. What is out of any range or over is left out.
    std::vector<UsageWindow> windows;
};

/// Absent when the text is not such an input. Linear in its length.
std::optional<ClaudeStatusInput> parseClaudeStatusInput(std::string_view text, Instant now);

} // namespace vellmark
