#pragma once

#include "platform/Descriptor.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// A file written bit by bit that takes the place of another one at once, or not at all.
///
/// It is written beside its target under one fixed name (what an interrupted process left there is
/// overwritten), with mode 0600, so the caller holds the target's lock.
class ReplacementFile {
public:
    explicit ReplacementFile(std::filesystem::path target);
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
    std::filesystem::path temporary_;
    Descriptor descriptor_;
    std::string buffer_;
    std::error_code error_;
};

} // namespace vellmark
