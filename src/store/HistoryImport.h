#pragma once

#include "model/UsageHistoryReader.h"
#include "store/UsageHistoryFile.h"
#include "text/Instant.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace vellmark {

/// What came of taking samples into the history.
struct HistoryImport {
    enum class State {
        done,
        unreadable, ///< the input cannot be read (`error`); nothing was taken
        busy,       ///< another process keeps the history to itself, or its lock cannot be had
        notWritten, ///< the history cannot be written (`error`) and is as before
        foreign,    ///< the history is of another form and is left alone
    };
    State state = State::done;
    std::error_code error;
    /// Of the input; a damaged or foreign one was looked through for samples.
    HistoryFileScan::Form form = HistoryFileScan::Form::whole;
    /// The history was damaged and is repaired; this is what it was.
    std::filesystem::path aside;

    std::uint64_t taken = 0;
    /// Already there: the same identifier, or the same window at the same moment.
    std::uint64_t known = 0;
    /// Dated after `now` or before what is kept, or with figures that cannot be; and objects that
    /// are no samples.
    std::uint64_t refused = 0;
};

/// Takes the samples of an open file, which is of the history's form or damaged or holds such
/// samples somewhere, into the history `file`. Nothing that is there is lost or changed: either all
/// of the new samples are added or none. Waits for the disk and for the lock, as UsageHistoryFile
/// does.
HistoryImport importHistory(const std::filesystem::path& file, int input, Instant now);

} // namespace vellmark
