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
/// It is written beside its target, synced and renamed, with the target's mode, 0600 where there is
/// none. Missing directories are made (0700). What is no regular file is not replaced, nor is a
/// file that its owner has made read-only.
class ReplacementFile {
public:
    /// What the file is called until it is committed.
    enum class Name {
        unique, ///< any number of writers may be at work; an interrupted process leaves it behind
        fixed,  ///< what an interrupted process left is overwritten, so the caller holds a lock
    };

    /// What becomes of a symbolic link in the target's place.
    enum class Links {
        followed, ///< it stays, and what it leads to is replaced or made
        refused,
    };
    /// What a power loss may cost.
    enum class Durability {
        synced,
        sometime, ///< the file too; for what is soon told again by somebody who must not wait
    };
    /// The mode where there is a target already.
    enum class Mode {
        kept,
        ownerAlone,
        readableByAll, ///< kept too, but 0644 where there is none
    };

    ReplacementFile(const std::filesystem::path& target, Name name, Links links,
                    Mode mode = Mode::kept);
    /// Removes what was not committed.
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    void write(std::string_view bytes);
    /// Syncs and renames. Tells the first error since the beginning, if there was one.
    std::error_code commit(Durability durability = Durability::synced);

private:
    void open(Name name, Mode mode);
    void writeOut();

    std::filesystem::path target_;
    std::string temporary_;
    Descriptor descriptor_;
    std::string buffer_;
    std::error_code error_;
};

} // namespace vellmark
