#pragma once

#include "platform/ReplacementFile.h"

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

/// The same for an open descriptor, from its current position.
std::optional<std::string> readToEnd(int descriptor, std::error_code& error,
                                     std::size_t limit = std::string::npos);

/// The contents of one of the program's own files: never blocks, and a file longer than `limit` is
/// an error (std::errc::file_too_large), as is whatever is no regular file; see openRegularFile.
std::optional<std::string> readRegularFile(const std::filesystem::path& file, std::size_t limit,
                                           std::error_code& error);

/// Replaces `file`, or what it links to, by `contents`, by way of a ReplacementFile of unique name.
std::error_code replaceWholeFile(const std::filesystem::path& file, std::string_view contents,
                                 ReplacementFile::Mode mode = ReplacementFile::Mode::kept);

} // namespace vellmark
