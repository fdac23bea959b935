#pragma once

#include "platform/Descriptor.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>

namespace vellmark {

/// A directory for files that another program must find by name: its owner's alone (0700), under a
/// fresh name, removed with everything in it when this object goes. What a killed program left is
/// removed when the next directory with its prefix is created.
class PrivateTemporaryDirectory {
public:
    /// "<parent>/<prefix><six characters>"; absent, with errno set, when it cannot be created.
    static std::optional<PrivateTemporaryDirectory> create(const std::filesystem::path& parent,
                                                           std::string_view prefix);

    /// Removes now what killed programs have left.
    static void removeAbandoned(const std::filesystem::path& parent, std::string_view prefix);

    PrivateTemporaryDirectory(PrivateTemporaryDirectory&& other) noexcept
        : path_(std::exchange(other.path_, {})), lock_(std::move(other.lock_)) {}
    PrivateTemporaryDirectory& operator=(PrivateTemporaryDirectory&&) = delete;
    ~PrivateTemporaryDirectory();

    const std::filesystem::path& path() const { return path_; }

private:
    PrivateTemporaryDirectory(std::filesystem::path path, Descriptor lock)
        : path_(std::move(path)), lock_(std::move(lock)) {}

    std::filesystem::path path_;
    /// The directory itself, locked while the program lives: that tells it from an abandoned one.
    Descriptor lock_;
};

} // namespace vellmark
