#pragma once

#include "platform/Descriptor.h"

#include <filesystem>

namespace vellmark {

/// A new, empty file on the file system of `directory` that has no name, readable by its owner
/// alone and open for reading and appending. Closed, with errno set, when it cannot be created.
/// Where the system must give the file a name first, a program that is killed in that instant
/// leaves an empty file.
Descriptor openUnnamedFile(const std::filesystem::path& directory);

} // namespace vellmark
