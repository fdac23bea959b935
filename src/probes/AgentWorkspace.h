#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <string_view>

namespace vellmark {

/// The directory in which an agent's CLI is started, below the program's own: private, empty and
/// always the same. Not the directory that the program itself was started in, which may be gone or
/// hold a configuration for the CLI; and not a fresh one, because a CLI asks for trust in each.
std::filesystem::path agentWorkspace(const Machine& machine, std::string_view agent);

/// The same, made where it is missing. Throws std::filesystem::filesystem_error.
std::filesystem::path madeAgentWorkspace(const Machine& machine, std::string_view agent);

/// The same for questions that need no directory of their own, such as a version: the root
/// directory if it cannot be made.
std::filesystem::path agentWorkspaceOrRoot(const Machine& machine, std::string_view agent);

} // namespace vellmark
