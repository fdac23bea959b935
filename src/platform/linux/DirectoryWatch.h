#pragma once

#include "platform/FileWatch.h"

#include <vector>

namespace vellmark {

/// Calls `changed` after a file of one of these names in any of the directories was replaced,
/// written or removed. Directories and not files are looked at, as a change replaces the file. Null
/// when none of them can be looked at.
std::unique_ptr<FileWatch> watchDirectories(DescriptorWatcher& loop,
                                            const std::vector<std::filesystem::path>& directories,
                                            std::set<std::string> names,
                                            std::function<void()> changed);

} // namespace vellmark
