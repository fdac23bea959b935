#pragma once

#include "platform/FileWatch.h"

#include <vector>

namespace vellmark {

enum class NewFiles { onceWritten, atOnce };

/// Calls `changed` after a file of one of these names in any of the directories was replaced,
/// written or removed. Directories and not files are looked at, as a change replaces the file. Null
/// when none of them can be looked at. With `NewFiles::atOnce` also after one was made, as nobody
/// writes to a socket.
std::unique_ptr<FileWatch> watchDirectories(DescriptorWatcher& loop,
                                            const std::vector<std::filesystem::path>& directories,
                                            std::set<std::string> names,
                                            std::function<void()> changed,
                                            NewFiles newFiles = NewFiles::onceWritten);

} // namespace vellmark
