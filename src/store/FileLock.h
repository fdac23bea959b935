#pragma once

#include "platform/Descriptor.h"
#include "text/Instant.h"

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
    /// Absent after `patience`, with the reason in `error` (std::errc::resource_unavailable_try_
    /// again when somebody else holds it). Creates missing directories (0700) and the lock file.
    static std::optional<FileLock> acquire(const std::filesystem::path& lockFile, Seconds patience,
                                           std::error_code& error);

    /// A short note kept in the lock file, for whoever holds it next.
    std::string note() const;
    void setNote(const std::string& text) const;

private:
    explicit FileLock(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}
    Descriptor descriptor_;
};

} // namespace vellmark
