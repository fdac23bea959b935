#pragma once

#include "platform/ReplacementFile.h"

#include <optional>
#include <string>

namespace vellmark {

struct CommandContext;

enum class Delivery {
    printed, ///< on standard output
    saved,
    failed, ///< which has been reported
};

/// Puts a command's result where the user wants it: into `file` by an atomic replace, into a pipe
/// or device that is there, or on standard output without a file or with "-". Makes no directories:
/// a mistyped path is no wish for a new one.
Delivery deliver(const std::string& text, const std::optional<std::string>& file,
                 ReplacementFile::Mode mode, const CommandContext& context);

} // namespace vellmark
