#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

struct CommandContext;

/// All of a file, or of standard input where `file` is absent or "-". Text above 64 MiB is refused.
/// Absent when it cannot be read; why has been reported then.
std::optional<std::string> readInputText(const std::optional<std::string>& file,
                                         const CommandContext& context);

/// The same without a limit, piece by piece; `take` returns false when it wants no more. False
/// when the input cannot be read to its end, which has been reported then.
bool readInputPieces(const std::optional<std::string>& file, const CommandContext& context,
                     const std::function<bool(std::string_view)>& take);

} // namespace vellmark
