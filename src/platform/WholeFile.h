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

/// The same of an open descriptor, from where it stands.
std::optional<std::string> readToEnd(int descriptor, std::error_code& error,
                                     std::size_t limit = std::string::npos);

/// Replaces `file` by `contents`, by way of a ReplacementFile of unique name.
std::error_code replaceWholeFile(const std::filesystem::path& file, std::string_view contents);

} // namespace vellmark
