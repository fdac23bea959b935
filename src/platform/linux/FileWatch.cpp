#include "platform/FileWatch.h"

#include "platform/PrivateDirectory.h"
#include "platform/linux/DirectoryWatch.h"

#include <utility>

namespace vellmark {

std::unique_ptr<FileWatch> watchFiles(DescriptorWatcher& loop,
                                      const std::filesystem::path& directory,
                                      std::set<std::string> names, std::function<void()> changed) {
    if (makePrivateDirectory(directory)) {
        return nullptr;
    }
    return watchDirectories(loop, {directory}, std::move(names), std::move(changed));
}

} // namespace vellmark
