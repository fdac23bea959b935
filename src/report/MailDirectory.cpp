#include "report/MailDirectory.h"

#include "model/UUID.h"
#include "platform/PrivateDirectory.h"
#include "platform/WholeFile.h"

#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view namePrefix = "vellmark-support-";

/// A folder of this user, and no link to one.
bool isOwnDirectory(const fs::path& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::geteuid();
}

} // namespace

fs::path MailDirectory::make(const fs::path& temporary, const std::string& fileName,
                             std::string_view text, std::error_code& error) {
    const fs::path directory = temporary / (std::string(namePrefix) + UUID::make().text());
    error = makePrivateDirectory(directory);
    if (!error) {
        error = replaceWholeFile(directory / fileName, text, ReplacementFile::Mode::ownerAlone);
    }
    if (error) {
        MailDirectory::remove(directory);
        return {};
    }
    return directory;
}

void MailDirectory::remove(const fs::path& directory) {
    std::error_code ignored;
    if (!directory.empty()) {
        fs::remove_all(directory, ignored);
    }
}

void MailDirectory::removeLeftBehind(const fs::path& temporary) {
    std::vector<fs::path> left;
    std::error_code error;
    for (fs::directory_iterator entry(temporary, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().string().starts_with(namePrefix) &&
            isOwnDirectory(entry->path())) {
            left.push_back(entry->path());
        }
    }
    for (const fs::path& directory : left) {
        MailDirectory::remove(directory);
    }
}

} // namespace vellmark
