#pragma once

#include "platform/Descriptor.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace vellmark {

/// A file in which output is kept for a while: readable by its owner alone (0600) and without a
/// name, so that nobody else can open it and nothing is left of it, whatever ends the program.
class PrivateTemporaryFile {
public:
    /// What `contents` reads at most; a file beyond it counts as unreadable. Far more than a
    /// command line program has to say.
    static constexpr std::size_t readLimit = 32u << 20;

    /// On the file system of `directory`, empty and open for reading and appending; absent when it
    /// cannot be created.
    static std::optional<PrivateTemporaryFile> create(const std::filesystem::path& directory);

    /// Not inherited by children on its own.
    int descriptor() const { return descriptor_.get(); }

    /// Whether more could be written. If not, the end of the output may be missing.
    bool hasRoom() const;

    /// Everything that was written; empty when the file cannot be read.
    std::string contents() const;

private:
    explicit PrivateTemporaryFile(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    Descriptor descriptor_;
};

} // namespace vellmark
