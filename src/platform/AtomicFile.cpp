#include "platform/AtomicFile.h"

#include "platform/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code writeAll(int descriptor, std::string_view contents) {
    while (!contents.empty()) {
        const ssize_t written = ::write(descriptor, contents.data(), contents.size());
        if (written < 0 && errno != EINTR) {
            return lastError();
        }
        contents.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return {};
}

std::error_code makeParent(const fs::path& file) {
    std::error_code error;
    const fs::path parent = file.parent_path();
    if (!parent.empty() && !fs::exists(parent, error)) {
        fs::create_directories(parent, error);
        if (!error) {
            fs::permissions(parent, fs::perms::owner_all, error);
        }
    }
    return error;
}

/// Makes the rename itself survive a power loss. Best effort: not every file system can do it.
void syncDirectory(const fs::path& directory) {
    const Descriptor opened(::open(directory.c_str(), O_RDONLY | O_CLOEXEC));
    if (opened.isOpen()) {
        ::fsync(opened.get());
    }
}

} // namespace

std::optional<std::string> readWholeFile(const fs::path& file, std::error_code& error,
                                         std::size_t limit) {
    error.clear();
    const Descriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!opened.isOpen()) {
        error = lastError();
        return std::nullopt;
    }
    std::string contents;
    std::array<char, 65536> chunk;
    ssize_t count = 0;
    while (contents.size() < limit &&
           (count = ::read(opened.get(), chunk.data(),
                           std::min(chunk.size(), limit - contents.size()))) != 0) {
        if (count > 0) {
            contents.append(chunk.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            error = lastError();
            return std::nullopt;
        }
    }
    return contents;
}

std::error_code replaceFileAtomically(const fs::path& file, std::string_view contents) {
    std::error_code error;
    fs::path target = fs::weakly_canonical(file, error);
    if (error) {
        target = file;
    }
    if (error = makeParent(target); error) {
        return error;
    }
    std::string temporary = target.string() + ".XXXXXX";
    Descriptor opened(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!opened.isOpen()) {
        return lastError();
    }
    error = writeAll(opened.get(), contents);
    if (!error && ::fsync(opened.get()) != 0) {
        error = lastError();
    }
    opened.reset();
    if (!error && ::rename(temporary.c_str(), target.c_str()) != 0) {
        error = lastError();
    }
    if (error) {
        ::unlink(temporary.c_str());
        return error;
    }
    syncDirectory(target.parent_path());
    return {};
}

} // namespace vellmark
