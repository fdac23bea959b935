#pragma once

#include "model/AgentUsageSnapshot.h"
#include "platform/Machine.h"
#include "store/ActivityLog.h"
#include "store/StorageTrouble.h"
#include "text/Dates.h"

#include <functional>
#include <map>
#include <memory>
#include <system_error>
#include <vector>

namespace vellmark {

class Localization;
class MainExecutor;
class UsageHistory;

/// The store's files and the thread that writes them: history, last snapshots, activity log.
///
/// Called on the main thread; nothing waits for the disk but the functions that say so. Destroying
/// it writes what is left to write.
class StoreFiles {
public:
    enum class File { history, lastSnapshots, log, settings };

    /// Called on the main thread, not after the destruction.
    struct Callbacks {
        /// Samples were added, here or by another process, or the file was read (again).
        std::function<void()> historyChanged;
        std::function<void(File, const StorageTrouble::News&)> trouble;
    };

    /// Begins to read the history, and drops old log lines when that is due.
    StoreFiles(const Machine& machine, MainExecutor& executor, Instant now, TimeZone zone,
               Callbacks callbacks);
    ~StoreFiles();
    StoreFiles(const StoreFiles&) = delete;
    StoreFiles& operator=(const StoreFiles&) = delete;

    const UsageHistory& history() const;
    /// Reads the file at once; call it before anything is saved. Reports what it cannot understand.
    std::vector<AgentUsageSnapshot> lastSnapshots();

    void record(AgentUsageSnapshot reading);
    void save(std::map<AgentProviderID, AgentUsageSnapshot> readings, Instant now);
    void log(ActivityEntry entry, TimeZone zone);

    /// `done` is called on the main thread, not after the destruction.
    void deleteHistory(std::function<void(std::error_code)> done);
    void discardDeletedHistory();

    /// Drops old log lines, and thins out the history when that is due.
    void trim(Instant now, TimeZone zone);
    /// Waits: the log's entries since `since`; see ActivityLog::entries. Any thread.
    std::vector<ActivityEntry> activity(Instant since, const TimeZone& zone,
                                        std::error_code& error);

    class Follower;
    using TellActivity = std::function<void(ActivityLog::News)>;
    /// Reads the log without waiting and tells its entries since `since`, then whatever is added to
    /// it from here; all in these words. Ends with the follower.
    [[nodiscard]] std::shared_ptr<Follower> follow(Instant since, const Localization& words,
                                                   TellActivity tell);
    /// Looks for what others have added.
    void lookAtLog();
    /// Waits until everything asked for is done.
    void flush();

private:
    struct State;
    std::unique_ptr<State> d_;
};

} // namespace vellmark
