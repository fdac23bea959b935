#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <optional>

namespace vellmark {

/// True for a regular file, also through symbolic links, that this user may execute.
bool isExecutableFile(const std::filesystem::path& path);

/// Where each agent's CLI is: the program that the user has chosen, or nothing if that is no longer
/// an executable file; without a choice, the first executable file in a fixed list of places. PATH
/// is not searched and no shell is asked. The user's own copy comes first, except for Codex, where
/// the copy inside the desktop application comes first and the user's own last.
std::optional<std::filesystem::path> locateClaude(const Machine& machine);
std::optional<std::filesystem::path> locateCodex(const Machine& machine);
std::optional<std::filesystem::path> locateAntigravity(const Machine& machine);

} // namespace vellmark
