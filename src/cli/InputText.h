#pragma once

#include <optional>
#include <string>

namespace vellmark {

struct CommandContext;

/// All of a file, or of standard input where `file` is absent or "-". Text above 64 MiB is refused.
/// Absent when it cannot be read; why has been reported then.
std::optional<std::string> readInputText(const std::optional<std::string>& file,
                                         const CommandContext& context);

} // namespace vellmark
