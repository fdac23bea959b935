#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

namespace vellmark::tests {

namespace fs = std::filesystem;

/// Writes a file, with its folders.
inline void writeFile(const std::filesystem::path& file, std::string_view content) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
}

/// A directory of its own for one test, removed with everything in it at the end.
class TemporaryDirectory {
public:
    explicit TemporaryDirectory(
        const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string name = (parent / "vellmark-test-XXXXXX").string();
        if (!::mkdtemp(name.data())) {
            throw std::system_error(errno, std::generic_category(), name);
        }
        path_ = std::filesystem::canonical(name);
    }

    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

    /// Writes a file below the directory, with its folders; returns its path.
    std::filesystem::path write(std::string_view name, std::string_view content) const {
        writeFile(path_ / name, content);
        return path_ / name;
    }

    /// Writes a file that can be run.
    std::filesystem::path writeExecutable(std::string_view name, std::string_view content) const {
        const auto file = write(name, content);
        ::chmod(file.c_str(), 0755);
        return file;
    }

private:
    std::filesystem::path path_;
};

/// The bytes of a file; empty when there is none.
inline std::string contentOf(const std::filesystem::path& file) {
    std::ostringstream content;
    // A file of /proc may vanish between opening and reading: that is no exception here.
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

} // namespace vellmark::tests
