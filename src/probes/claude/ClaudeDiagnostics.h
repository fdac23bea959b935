#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// What the screen showed without who was looking: account lines lose their values, e-mail
/// addresses go, the home directory becomes "~". The last 12000 characters at most.
std::string redactedClaudeScreen(std::string_view screenText, const std::filesystem::path& home);

/// Keeps the redacted screen as `directory`/`name` (0600, replaced atomically) for bug reports, and
/// returns the file's path; absent when it cannot be written.
std::optional<std::filesystem::path> writeClaudeDiagnostics(std::string_view screenText,
                                                            const std::filesystem::path& home,
                                                            const std::filesystem::path& directory,
                                                            std::string_view name);

} // namespace vellmark
