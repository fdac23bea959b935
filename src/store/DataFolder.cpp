#include "store/DataFolder.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace vellmark {

namespace fs = std::filesystem;

DataFolderSize dataFolderSize(const Machine& machine) {
    const std::string history = machine.usageHistoryFile().stem().string() + ".";
    DataFolderSize size;
    std::error_code error;
    fs::recursive_directory_iterator entry(machine.supportDirectory(),
                                           fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_symlink(ignored) || !entry->is_regular_file(ignored)) {
            continue;
        }
        const std::uintmax_t bytes = entry->file_size(ignored);
        if (ignored) {
            continue;
        }
        size.all += bytes;
        if (entry.depth() == 0 && entry->path().filename().string().starts_with(history)) {
            size.history += bytes;
        }
    }
    return size;
}

} // namespace vellmark
