#pragma once

#include "platform/Descriptor.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vellmark {

/// A file in which a child leaves its output: readable by its owner alone (0600), newly created
/// under a name with a fresh identifier, deleted when this object goes, whatever happened between.
/// What a killed program left behind is deleted when the next file with its prefix is created, from
/// ten minutes later on.
class PrivateTemporaryFile {
public:
    /// What `contents` reads at most; a file beyond it counts as unreadable.
    static constexpr std::uintmax_t readLimit = 64u << 20;

    /// "<directory>/<prefix><UUID>.log", empty and open for writing; absent when it cannot be
    /// created.
    static std::optional<PrivateTemporaryFile> create(const std::filesystem::path& directory,
                                                      std::string_view prefix);

    PrivateTemporaryFile(PrivateTemporaryFile&&) noexcept = default;
    PrivateTemporaryFile& operator=(PrivateTemporaryFile&&) = delete;
    ~PrivateTemporaryFile();

    /// Open for writing, not inherited by children on its own.
    int descriptor() const { return descriptor_.get(); }
    const std::filesystem::path& path() const { return path_; }

    /// Everything that was written; empty when the file cannot be read.
    std::string contents() const;

private:
    PrivateTemporaryFile(std::filesystem::path path, Descriptor descriptor)
        : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

    std::filesystem::path path_;
    /// Closed in an object that was moved from; the file is then another one's.
    Descriptor descriptor_;
};

} // namespace vellmark
