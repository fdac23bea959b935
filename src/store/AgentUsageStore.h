#pragma once

#include "platform/Machine.h"
#include "platform/Preferences.h"
#include "probes/ProviderRegistry.h"
#include "store/ActivityLog.h"
#include "store/MainExecutor.h"
#include "store/UsageState.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace vellmark {

class UsageHistory;

/// What the program knows about all agents: runs refreshes, keeps snapshots, history and log.
///
/// Lives on the main thread; fetches run on worker threads and post their outcomes to the executor,
/// files are written in order by one persistence thread. Settings are the preferences
/// "DisabledProviders" and "ProviderOrder".
class AgentUsageStore {
public:
    struct Configuration {
        Machine machine;
        std::vector<ProviderRegistration> registrations;
        /// The words for log entries; asked anew for each entry, so a language change counts.
        std::function<Localization()> words;
        std::function<Instant()> now = [] { return ReferenceClock::now(); };
        /// When set, these agents count as enabled and no others, whatever the preferences say.
        std::optional<std::set<AgentProviderID>> agents;
        /// When set, agents that can be read in this way are read so, whatever the preferences say.
        std::optional<std::string> way;
        /// Told on the main thread, in the user's words, of whatever the log says about files that
        /// cannot be read or written; for a front that does not show the log.
        std::function<void(const std::string&)> storageTrouble = [](const std::string&) {};
        /// The program goes on after a refresh: the memory that one took is given back.
        bool givesMemoryBack = true;
        /// So long the agents of a refresh wait that begins because something is about to be drawn
        /// (the program's start, a window that opens): they would take the processors from it.
        Seconds drawingTime{0};
    };

    /// Told on the main thread before a change of the state lands and again after it. `willChange`
    /// must not call the store's commands; `didChange` may.
    struct Observer {
        std::function<void()> willChange;
        std::function<void()> didChange;
    };
    /// Ends the observation when destroyed; may outlive the store.
    class Subscription;

    /// Shows the last good readings of the previous run, as stale, from the start.
    AgentUsageStore(Configuration configuration, MainExecutor& executor, Preferences& preferences);
    /// Drops a running refresh, ends its children, and writes what is left to write.
    ~AgentUsageStore();
    AgentUsageStore(const AgentUsageStore&) = delete;
    AgentUsageStore& operator=(const AgentUsageStore&) = delete;

    const UsageState& state() const;
    [[nodiscard]] std::shared_ptr<Subscription> observe(Observer observer);

    /// Refreshes the enabled agents, or those of them that are named. A request during a running
    /// refresh is merged into it and starts every agent that is not being read, whatever holds up
    /// another one. `timer` and `window` do nothing while automatic refreshes are held; `window`
    /// also not within 60 s of the end of the last refresh of all agents, or of an agent's reading.
    /// Both leave alone an agent whose service has refused lately (see ReadingSchedule). All but
    /// `manual` leave alone one that would spend quota.
    void refresh(RefreshTrigger trigger, const std::vector<AgentProviderID>& agents = {});
    /// Ends a running refresh and its children and logs that the program is ending; no result
    /// lands afterwards, and no refresh starts any more.
    void abortRefresh();

    /// After a wake, automatic refreshes wait until then. Logs the wake.
    void setAutomaticHoldUntil(std::optional<Instant> instant);
    /// Enabling reads the agent at once (trigger `settings`); disabling drops a reading under way.
    void setEnabled(const AgentProviderID& id, bool enabled);
    void setProviderOrder(std::vector<AgentProviderID> order);
    /// Applies the preferences as they are now: agents, their order, ways and programs, and what is
    /// shown first. Reads those agents that need a new reading because of it.
    void takeSettings();

    /// Takes over what the agents' own sessions have told of their windows since: it stands in the
    /// place of older figures and is recorded.
    void takeStatusLine();

    /// Removes all recorded samples, those of readings that have just ended too. They are kept in a
    /// folder beside the history until `discardDeletedHistory`; failing that, nothing is deleted.
    /// `done` is called on the main thread, with the reason where it did not work.
    void deleteHistory(std::function<void(std::error_code)> done);
    /// Removes what `deleteHistory` has kept; to be called when the program starts.
    void discardDeletedHistory();

    /// Appends an entry to the activity log, dated now. Control characters in it are dropped.
    void logActivity(ActivityEntry entry);
    class ActivitySubscription;
    /// Reads the log without waiting and tells, on the main thread, the entries of the last `days`
    /// days, then whatever is added; all in the language of now. Ends when the subscription is
    /// destroyed, which may outlive the store.
    [[nodiscard]] std::shared_ptr<ActivitySubscription>
    followActivity(int days, std::function<void(ActivityLog::News)> tell);
    /// Tells the followers what another process has added.
    void lookAtActivity();
    /// The entries of the last `days` days in the language of now, oldest first. Reads the file.
    std::vector<ActivityEntry> activity(int days);
    /// The entries since `since`, oldest first, in the language in which they were written, behind
    /// everything that was handed to the persistence thread before. Where the file cannot be read,
    /// `error` says why. Waits for the disk; usable from any thread.
    std::vector<ActivityEntry> flushedActivity(Instant since, const TimeZone& zone,
                                               std::error_code& error);
    /// The last `days` days as text, with a header, for saving and copying.
    std::string activityExportText(int days);
    /// Drops entries older than 30 days from the file; returns when that is done.
    void trimLog();

    /// Recorded samples; usable from any thread. Filled a moment after the start.
    const UsageHistory& history() const;

    /// Waits until everything handed to the persistence thread is on disk. Any thread.
    void flush();

private:
    struct State;
    std::unique_ptr<State> d_;
};

} // namespace vellmark
