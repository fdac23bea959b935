#pragma once

#include "platform/Machine.h"

#include <cstdint>

namespace vellmark {

/// How much the program keeps on disk, in bytes.
struct DataFolderSize {
    std::uintmax_t all = 0;
    /// The recorded samples with what belongs to them.
    std::uintmax_t history = 0;
    bool operator==(const DataFolderSize&) const = default;
};

/// Reads the sizes of a dozen files, now. A file that cannot be looked at counts as nothing.
DataFolderSize dataFolderSize(const Machine& machine);

} // namespace vellmark
