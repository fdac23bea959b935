#pragma once

#include "model/UsageHistoryReader.h"
#include "model/UsageHistorySample.h"
#include "platform/Descriptor.h"
#include "platform/FileLock.h"
#include "store/RecordedDays.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace vellmark {

/// "usage-history.json" on disk: a JSON array of samples, one a line, mode 0600 when it is made.
///
/// Promises: the file is valid JSON after every append, which writes the new samples over the
/// closing bracket and nothing else; a file cut off or spoilt anywhere is read as far as it can be,
/// kept aside as "usage-history.damaged.json" ("…damaged-2.json" to "…damaged-5.json" when it
/// happens again; then the last one makes room) and repaired; one of another form is never written,
/// and lines of a newer form among the others stay as they are. What is too old goes by way of
/// "usage-history.removed.json". A link in the file's place is read and not written. Writing needs
/// the lock, which several processes share. Not for use by several threads.
class UsageHistoryFile {
public:
    /// Told what the file holds, in its order; `restart` means that everything told so far is void.
    struct Listener {
        std::function<void()> restart;
        std::function<void(const StoredHistorySample&)> sample;
    };

    enum class State {
        writable,
        repaired,   ///< was damaged until now; `aside` is what it was
        damaged,    ///< cannot be repaired now (`error` says why), or not without the lock
        unreadable, ///< `error` says why; what was told is not all
        foreign,
    };
    struct Status {
        State state = State::writable;
        std::error_code error;
        std::filesystem::path aside;
    };

    /// Hundreds of years; a longer file is `unreadable`.
    static constexpr std::uint64_t mostBytes = std::uint64_t{4} << 30;

    explicit UsageHistoryFile(std::filesystem::path file);
    UsageHistoryFile(const UsageHistoryFile&) = delete;
    UsageHistoryFile& operator=(const UsageHistoryFile&) = delete;

    std::optional<FileLock> lock(std::error_code& error) { return lock_.acquire(error); }

    /// Tells what is in the file and was not told yet: at first all, then what other processes
    /// appended, all again when one replaced the file. Repairs it when `held` is given.
    Status catchUp(const FileLock* held, const Listener& listener);

    /// The lock is held and the file caught up with since. On an error the file is as before.
    std::error_code append(const FileLock& held, std::span<const UsageHistorySample> samples);
    /// The same with samples in the persisted form, one a line: those that the file does not have
    /// yet are appended and told.
    std::error_code appendLines(const FileLock& held, std::string_view lines,
                                const UsageHistoryReader::Visitor& visit);
    /// The same with many samples in the persisted form, each of one line and not in the file yet:
    /// by an atomic replace, so that all are there or none.
    std::error_code add(const FileLock& held, const std::vector<std::string>& samples);
    /// Waits until what was appended would survive a power loss.
    void sync();

    /// Once a day at most: thins out what is older than 35 days to one sample per window and hour
    /// (the highest), drops what is older than 400, by an atomic replace. The age is counted from
    /// what RecordedDays says of the samples' own dates. What goes is kept in
    /// "usage-history.removed.json" until a later day agrees; when that says that it was not old,
    /// it comes back. Tells what is kept when anything changed. The lock is held and the file
    /// caught up with since.
    std::error_code compact(const FileLock& held, Instant now, const Listener& listener);

private:
    using Offsets = std::vector<std::uint64_t>;
    using Texts = std::set<std::string, std::less<>>;

    std::error_code open();
    void close();
    std::error_code ensureWritable();
    bool wasReplaced() const;
    std::error_code repair(std::filesystem::path& aside);
    std::error_code keepAside(std::filesystem::path& aside) const;
    std::error_code write(std::string_view lines, std::size_t count);
    struct Changes {
        Offsets dropped; ///< in order
        std::vector<std::string> added;
        UsageHistoryReader::Visitor leave; ///< told of those that are dropped
        std::function<std::error_code()> beforeCommit;
    };
    std::error_code rewrite(const Changes& changes, const Listener& listener);
    std::filesystem::path removedFile() const;
    void dropKnown(Texts& samples) const;

    std::filesystem::path file_;
    LockFile lock_;
    Descriptor descriptor_; ///< held open, so that its number tells whether the file was replaced
    std::error_code writeRefusal_; ///< why the file could be opened for reading alone
    HistoryFileScan scan_;
    RecordedDays days_; ///< of the samples
    std::uint64_t knownSize_ = 0;
};

} // namespace vellmark
