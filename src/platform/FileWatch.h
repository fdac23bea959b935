#pragma once

#include "platform/DescriptorWatcher.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>

namespace vellmark {

/// Ends the watch when destroyed.
class FileWatch {
public:
    virtual ~FileWatch() = default;
};

/// Calls `changed` after one of the files called `names` in `directory` was replaced, written or
/// removed by anyone, on Linux also when it may be read by others than before; at times also when
/// another file there was. Costs nothing meanwhile. Makes the directory where it is missing. Null
/// where the system cannot tell.
std::unique_ptr<FileWatch> watchFiles(DescriptorWatcher& loop,
                                      const std::filesystem::path& directory,
                                      std::set<std::string> names, std::function<void()> changed);

} // namespace vellmark
