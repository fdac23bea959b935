#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace vellmark {

/// The contents, at most the first `limit` bytes, of a file that another program may have made:
/// never waits for a writer, whatever stands under the name, and reads regular files only, also by
/// way of a symbolic link. Sets `error` and returns nothing when there is no such file or it cannot
/// be read (std::errc::not_supported when it is a FIFO, a device, a socket or a directory).
std::optional<std::string> readUntrustedFile(const std::filesystem::path& file,
                                             std::error_code& error, std::size_t limit);

} // namespace vellmark
