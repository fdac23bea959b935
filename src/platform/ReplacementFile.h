#pragma once

#include "platform/Descriptor.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// A file written bit by bit that takes the place of another one at once, or not at all: at any
/// moment, also after a power loss, either the old or the new contents are there.
///
/// It is written beside its target with mode 0600, synced and renamed. A symbolic link stays and
/// its target is replaced. Missing directories are made (0700).
class ReplacementFile {
public:
    /// What the file is called until it is committed.
    enum class Name {
        unique, ///< any number of writers may be at work; an interrupted process leaves it behind
        fixed,  ///< what an interrupted process left is overwritten, so the caller holds a lock
    };

    ReplacementFile(const std::filesystem::path& target, Name name);
    /// Removes what was not committed.
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    void write(std::string_view bytes);
    /// Syncs and renames. Tells the first error since the beginning, if there was one.
    std::error_code commit();

private:
    void writeOut();

    std::filesystem::path target_;
    std::string temporary_;
    Descriptor descriptor_;
    std::string buffer_;
    std::error_code error_;
};

} // namespace vellmark
