#include "platform/Preferences.h"
#include "platform/PrivateDirectory.h"
#include "platform/linux/DirectoryWatch.h"

#include <set>
#include <utility>
#include <vector>

namespace vellmark {

namespace fs = std::filesystem;

std::unique_ptr<FileWatch> watchPreferences(DescriptorWatcher& loop, const Machine& machine,
                                            std::function<void()> changed) {
    const fs::path file = machine.configuration / "Vellmark/preferences.json";
    if (makePrivateDirectory(file.parent_path())) {
        return nullptr;
    }
    std::error_code ignored;
    // A link stays, and what it leads to is replaced.
    const fs::path target = fs::weakly_canonical(file, ignored);
    std::vector<fs::path> directories{file.parent_path()};
    if (!target.empty()) {
        directories.push_back(target.parent_path());
    }
    std::set<std::string> names{file.filename(), target.filename(), "preferences.waiting"};
    return watchDirectories(loop, directories, std::move(names), std::move(changed));
}

} // namespace vellmark
