#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// The contents of a file, at most its first `limit` bytes. Sets `error` and returns nothing when
/// it cannot be read.
std::optional<std::string> readWholeFile(const std::filesystem::path& file, std::error_code& error,
                                         std::size_t limit = std::string::npos);

/// Replaces `file` by `contents` so that at any moment, also after a power loss, either the old or
/// the new contents are there: written beside it with mode 0600, synced, renamed. A symbolic link
/// stays and its target is replaced. Missing parent directories are made (0700). Nothing is left
/// behind on failure.
std::error_code replaceFileAtomically(const std::filesystem::path& file, std::string_view contents);

} // namespace vellmark
