#pragma once

#include "model/UsageHistoryReader.h"
#include "model/UsageHistorySample.h"
#include "platform/Descriptor.h"
#include "store/FileLock.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace vellmark {

/// "usage-history.json" on disk: a JSON array of samples, one a line, mode 0600.
///
/// Promises: the file is valid JSON after every append, which writes the new samples over the
/// closing bracket and nothing else; a file cut off or spoilt anywhere is read as far as it can be,
/// kept aside once as "usage-history.damaged.json" and repaired; one of another form is never
/// written. Writing needs the lock, which several processes share. Not for use by several threads.
class UsageHistoryFile {
public:
    /// Told what the file holds, in its order; `restart` means that everything told so far is void.
    struct Listener {
        std::function<void()> restart;
        std::function<void(const StoredHistorySample&)> sample;
    };

    enum class State {
        writable,
        repaired,   ///< was damaged until now
        damaged,    ///< cannot be repaired now (`error` says why), or not without the lock
        unreadable, ///< `error` says why; what was told is not all
        foreign,
    };
    struct Status {
        State state = State::writable;
        std::error_code error;
    };

    explicit UsageHistoryFile(std::filesystem::path file);
    UsageHistoryFile(const UsageHistoryFile&) = delete;
    UsageHistoryFile& operator=(const UsageHistoryFile&) = delete;

    std::optional<FileLock> lock(Seconds patience, std::error_code& error) const;

    /// Tells what is in the file and was not told yet: at first all, then what other processes
    /// appended, all again when one replaced the file. Repairs it when `held` is given.
    Status catchUp(const FileLock* held, const Listener& listener);

    /// The lock is held and the file caught up with since. On an error the file is as before.
    std::error_code append(const FileLock& held, std::span<const UsageHistorySample> samples);
    /// Waits until what was appended would survive a power loss.
    void sync();

    /// Once a day at most: thins out what is older than 35 days to one sample per window and hour
    /// (the highest), drops what is older than 400, by an atomic replace. Tells what is kept when
    /// anything changed. The lock is held and the file caught up with since.
    std::error_code compact(const FileLock& held, Instant now, const Listener& listener);

private:
    std::error_code open();
    void close();
    std::error_code ensureWritable();
    bool wasReplaced() const;
    std::error_code repair();
    std::error_code rewrite(const std::function<bool(const StoredHistorySample&)>& keeps,
                            const Listener& listener);
    std::vector<std::uint64_t> expendable(Instant now) const;

    std::filesystem::path file_;
    Descriptor descriptor_; ///< held open, so that its number tells whether the file was replaced
    std::error_code writeRefusal_; ///< why the file could be opened for reading alone
    HistoryFileScan scan_;
    std::uint64_t knownSize_ = 0;
};

} // namespace vellmark
