#pragma once

#include "platform/Descriptor.h"

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace vellmark {

/// A descriptor that tells of files in these directories that were replaced, written or removed;
/// closed when none of them can be looked at. Directories and not files are looked at, as a change
/// replaces the file.
Descriptor openDirectoryEvents(const std::vector<std::filesystem::path>& directories);

/// Reads what the descriptor has to tell. Whether one of `names` is among it, or may be.
bool tellOfOne(const Descriptor& events, const std::set<std::string>& names);

} // namespace vellmark
