#pragma once

#include "platform/Descriptor.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace vellmark {

/// Opens a file whose place others may have taken, with `flags` as for open(2) and mode 0600 for a
/// new one.
///
/// Something else may stand in its place. A pipe would block whoever opens it, a device may never
/// end, a link leads a writer elsewhere: whatever is no regular file is refused with
/// `notRegularFile()`, a link only when it is opened for writing. A file whose owner has taken away
/// the right to write is not written either, by root too. Never blocks.
Descriptor openRegularFile(const std::filesystem::path& file, int flags, std::error_code& error);

/// The contents, at most the first `limit` bytes, of a file that another program may have made;
/// absent, with `error`, when there is none or it cannot be read. Unlike with `openRegularFile`,
/// anything but a regular file is not even opened, since opening a device can have effects.
std::optional<std::string> readRegularFile(const std::filesystem::path& file,
                                           std::error_code& error, std::size_t limit);

/// Something is in the way of a file: a pipe, a device, a directory, a link.
std::error_code notRegularFile();

/// What is in the way of `file`, or of a file beside it that belongs to it (such as its lock: the
/// name up to the first dot is the same); `file` itself when nothing is.
std::filesystem::path fileInTheWay(const std::filesystem::path& file);

} // namespace vellmark
