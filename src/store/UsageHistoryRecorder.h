#pragma once

#include "model/AgentUsageSnapshot.h"
#include "store/StorageTrouble.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryFile.h"

#include <map>
#include <memory>
#include <vector>

namespace vellmark {

/// Writes readings to the history: decides which are worth a sample, keeps memory and file alike,
/// and holds back what cannot be written now (no room, another process has the lock) until it can.
///
/// On the persistence thread only; the history in memory is shared with everybody.
class UsageHistoryRecorder {
public:
    /// How long another process may keep the file to itself before this one only reads it.
    static constexpr Seconds lockPatience{1};

    UsageHistoryRecorder(std::filesystem::path file, std::shared_ptr<UsageHistory> history);

    /// Reads the file. To be called once, first.
    void load(Instant now);
    /// Records a live reading. True when the history in memory has changed, by this reading or by
    /// what another process has written.
    bool record(const AgentUsageSnapshot& snapshot);
    /// Thins out the file when that is due. True when the history in memory has changed.
    bool compact(Instant now);

    StorageTrouble& trouble() { return trouble_; }
    std::size_t heldBackCount() const { return heldBack_.size(); }

private:
    bool catchUp(const FileLock* held);
    UsageHistoryFile::Listener listener();
    void takeOver();
    void write(const FileLock* held, bool mayWrite);

    UsageHistoryFile file_;
    std::shared_ptr<UsageHistory> history_;
    std::map<WindowKey, Instant> lastOnDisk_;
    /// In memory, but not in the file.
    std::vector<UsageHistorySample> heldBack_;
    /// What the file is telling anew, until it is complete.
    std::unique_ptr<HistorySeries> reloaded_;
    StorageTrouble trouble_;
};

} // namespace vellmark
