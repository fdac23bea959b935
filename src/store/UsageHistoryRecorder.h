#pragma once

#include "model/AgentUsageSnapshot.h"
#include "platform/WaitingFile.h"
#include "store/StorageTrouble.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryFile.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace vellmark {

/// Writes readings to the history: decides which are worth a sample and keeps memory and file
/// alike. What cannot be written now (no room, another process has the lock, the file is of another
/// form) waits on disk beside the file, or else in memory, until it can.
///
/// On the persistence thread only; the history in memory is shared with everybody.
class UsageHistoryRecorder {
public:
    /// How much may wait in memory; beyond that the oldest is given up. Weeks of readings.
    static constexpr std::size_t mostHeldBack = 10'000;

    UsageHistoryRecorder(std::filesystem::path file, std::shared_ptr<UsageHistory> history);

    /// Reads the file. To be called once, first.
    void load(Instant now);
    /// Records a live reading. True when the history in memory has changed, by this reading or by
    /// what another process has written.
    bool record(const AgentUsageSnapshot& snapshot);
    /// Thins out the file when that is due. True when the history in memory has changed.
    bool compact(Instant now);

    /// Empties history and memory, what waits included. The files are kept aside in a folder of
    /// their own, "deleted-history"; when they cannot be, all is as before.
    std::error_code deleteAll();
    /// Removes what deletions have kept aside.
    void discardDeleted();

    StorageTrouble& trouble() { return trouble_; }
    /// How many samples wait in memory.
    std::size_t heldBackCount() const { return heldBack_.size(); }

private:
    bool catchUp(const FileLock* held);
    UsageHistoryFile::Listener listener();
    void learn(const StoredHistorySample& stored);
    void takeOver();
    void write(const FileLock& held);
    bool takeOverWaiting(const FileLock& held);
    void holdBack();

    std::filesystem::path path_;
    UsageHistoryFile file_;
    WaitingFile waiting_;
    std::shared_ptr<UsageHistory> history_;
    /// In memory, but neither in the file nor in the one that waits beside it.
    std::vector<UsageHistorySample> heldBack_;
    /// What the file is telling anew, until it is complete.
    std::unique_ptr<HistorySeries> reloaded_;
    StorageTrouble trouble_;
    bool isUnreadable_ = false; ///< and that is told
};

} // namespace vellmark
