#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <string_view>

namespace vellmark {

/// The directory that an agent's CLI is started in, below the program's own: private, empty and
/// always the same. Not the one that the program happens to have been started in, which may hold a
/// configuration of its own for the CLI or be gone; and a CLI asks for trust in each new one.
std::filesystem::path agentWorkspace(const Machine& machine, std::string_view agent);

/// The same, made where it is missing. Throws std::filesystem::filesystem_error.
std::filesystem::path madeAgentWorkspace(const Machine& machine, std::string_view agent);

/// The same for questions that need no place of their own, such as a version: the root directory
/// where it cannot be made.
std::filesystem::path agentWorkspaceOrRoot(const Machine& machine, std::string_view agent);

} // namespace vellmark
