#pragma once

#include "platform/Descriptor.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace vellmark {

/// Holds a file of its own beside the one that it guards, so that two processes (or two stores in
/// one) do not write it at the same time. Advisory; given back on destruction and at the end of the
/// process, whatever ends it.
class FileLock {
public:
    using Seconds = std::chrono::duration<double>;

    /// Absent after `patience`, with the reason in `error` (std::errc::resource_unavailable_try_
    /// again when somebody else holds it). Creates missing directories (0700) and the lock file.
    static std::optional<FileLock> acquire(const std::filesystem::path& lockFile, Seconds patience,
                                           std::error_code& error);
    /// Locks an open file until it is closed; the same error after `patience`.
    static std::error_code lock(const Descriptor& file, Seconds patience);

    /// A short note kept in the lock file, for whoever holds it next.
    std::string note() const;
    void setNote(const std::string& text) const;

private:
    explicit FileLock(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}
    Descriptor descriptor_;
};

/// A lock that is taken again and again. Taking it waits; but after one wait in vain, no longer
/// until the lock has been free once: a stopped process that holds it costs one wait rather than
/// one for each write that is left at the end of the program.
class LockFile {
public:
    /// How long another process may keep a file to itself before this one goes on without it.
    static constexpr FileLock::Seconds usualPatience{1};

    explicit LockFile(std::filesystem::path path, FileLock::Seconds patience = usualPatience)
        : path_(std::move(path)), patience_(patience) {}

    std::optional<FileLock> acquire(std::error_code& error) {
        auto held = FileLock::acquire(path_, wasRefused_ ? FileLock::Seconds(0) : patience_, error);
        wasRefused_ = !held;
        return held;
    }

private:
    std::filesystem::path path_;
    FileLock::Seconds patience_;
    bool wasRefused_ = false;
};

} // namespace vellmark
