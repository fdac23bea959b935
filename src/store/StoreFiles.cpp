#include "store/StoreFiles.h"

#include "store/ActivityTexts.h"
#include "store/LastSnapshots.h"
#include "store/MainExecutor.h"
#include "store/PersistenceQueue.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryRecorder.h"

#include <utility>

namespace vellmark {

/// Owned by whoever follows the log; the persistence thread's `Reader` is that thread's alone.
class StoreFiles::Follower {
public:
    /// On the persistence thread only.
    struct Reader {
        Instant since;
        Localization words;
        ActivityLog::Place place;
    };

    Follower(Instant since, Localization words, TellActivity told)
        : reader(std::make_shared<Reader>(Reader{since, std::move(words), {}})),
          tell(std::make_shared<TellActivity>(std::move(told))) {}

    const std::shared_ptr<Reader> reader;
    const std::shared_ptr<TellActivity> tell;
};

struct StoreFiles::State {
    State(const Machine& machine, MainExecutor& mainExecutor, Callbacks mainCallbacks)
        : executor(mainExecutor), callbacks(std::make_shared<Callbacks>(std::move(mainCallbacks))),
          recorder(machine.usageHistoryFile(), history), snapshots(machine.lastSnapshotsFile()),
          snapshotsTrouble(machine.lastSnapshotsFile()), log(machine.activityLogFile()),
          logTrouble(machine.activityLogFile()) {}

    // All below run on the persistence thread.

    void tellTrouble(File file, StorageTrouble& trouble) {
        while (const auto news = trouble.takeNews()) {
            executor.post([weak = std::weak_ptr(callbacks), file, news = *news] {
                if (const auto alive = weak.lock()) {
                    alive->trouble(file, news);
                }
            });
        }
    }

    void tellHistory(bool hasChanged) {
        tellTrouble(File::history, recorder.trouble());
        if (hasChanged) {
            executor.post([weak = std::weak_ptr(callbacks)] {
                if (const auto alive = weak.lock()) {
                    alive->historyChanged();
                }
            });
        }
    }

    void note(File file, StorageTrouble& trouble, std::error_code error) {
        error ? trouble.failed(error) : trouble.worked();
        tellTrouble(file, trouble);
    }

    void tellActivity(Follower::Reader& reader, const std::weak_ptr<TellActivity>& tell) {
        if (tell.expired()) {
            return;
        }
        ActivityLog::News news = log.news(reader.place, reader.since, reader.words.timeZone());
        if (!news.startsAnew && news.entries.empty()) {
            return;
        }
        ActivityTexts::tell(news.entries, reader.words);
        // From here on the news belongs to the main thread.
        executor.post([tell, news = std::make_shared<ActivityLog::News>(std::move(news))] {
            if (const auto alive = tell.lock()) {
                (*alive)(std::move(*news));
            }
        });
    }

    MainExecutor& executor;
    std::vector<std::weak_ptr<Follower>> followers; ///< main thread
    std::shared_ptr<Callbacks> callbacks;
    std::shared_ptr<UsageHistory> history = std::make_shared<UsageHistory>();
    UsageHistoryRecorder recorder;
    LastSnapshots snapshots;
    StorageTrouble snapshotsTrouble;
    ActivityLog log;
    StorageTrouble logTrouble;
    PersistenceQueue queue; ///< last, so that its jobs find everything else alive
};

StoreFiles::StoreFiles(const Machine& machine, MainExecutor& executor, Instant now, TimeZone zone,
                       Callbacks callbacks)
    : d_(std::make_unique<State>(machine, executor, std::move(callbacks))) {
    d_->queue.post([d = d_.get(), now, zone = std::move(zone)] {
        d->recorder.load(now);
        d->tellHistory(true);
        d->note(File::log, d->logTrouble, d->log.trimWhenDue(now, zone));
    });
}

StoreFiles::~StoreFiles() = default;

const UsageHistory& StoreFiles::history() const {
    return *d_->history;
}

std::vector<AgentUsageSnapshot> StoreFiles::lastSnapshots() {
    auto contents = d_->snapshots.contents();
    auto readings = std::move(contents.readings);
    d_->queue.post([d = d_.get(), contents = std::move(contents)] {
        contents.tell(d->snapshotsTrouble);
        d->tellTrouble(File::lastSnapshots, d->snapshotsTrouble);
    });
    return readings;
}

void StoreFiles::record(AgentUsageSnapshot reading) {
    d_->queue.post([d = d_.get(), reading = std::move(reading)] {
        d->tellHistory(d->recorder.record(reading));
    });
}

void StoreFiles::save(std::map<AgentProviderID, AgentUsageSnapshot> readings, Instant now) {
    d_->queue.post([d = d_.get(), readings = std::move(readings), now] {
        d->note(File::lastSnapshots, d->snapshotsTrouble, d->snapshots.write(readings, now));
    });
}

void StoreFiles::log(ActivityEntry entry, TimeZone zone) {
    d_->queue.post([d = d_.get(), entry = std::move(entry), zone = std::move(zone)] {
        d->note(File::log, d->logTrouble, d->log.append(entry, zone));
    });
    lookAtLog();
}

void StoreFiles::deleteHistory(std::function<void(std::error_code)> done) {
    d_->queue.post([d = d_.get(), done = std::move(done)] {
        const std::error_code error = d->recorder.deleteAll();
        d->tellHistory(!error);
        d->executor.post([weak = std::weak_ptr(d->callbacks), done, error] {
            if (weak.lock()) {
                done(error);
            }
        });
    });
}

void StoreFiles::discardDeletedHistory() {
    d_->queue.post([d = d_.get()] { d->recorder.discardDeleted(); });
}

void StoreFiles::trim(Instant now, TimeZone zone) {
    d_->queue.post([d = d_.get(), now, zone = std::move(zone)] {
        d->tellHistory(d->recorder.compact(now));
        d->note(File::log, d->logTrouble, d->log.trim(now, zone));
    });
}

std::vector<ActivityEntry> StoreFiles::activity(Instant since, const TimeZone& zone,
                                                std::error_code& error) {
    std::vector<ActivityEntry> entries;
    d_->queue.run([&] { entries = d_->log.entries(since, zone, error); });
    return entries;
}

std::shared_ptr<StoreFiles::Follower> StoreFiles::follow(Instant since, const Localization& words,
                                                         TellActivity tell) {
    auto follower = std::make_shared<Follower>(since, words, std::move(tell));
    d_->followers.push_back(follower);
    lookAtLog();
    return follower;
}

void StoreFiles::lookAtLog() {
    std::erase_if(d_->followers, [](const auto& follower) { return follower.expired(); });
    for (const auto& weak : d_->followers) {
        if (const auto follower = weak.lock()) {
            d_->queue.post(
                [d = d_.get(), reader = follower->reader, tell = std::weak_ptr(follower->tell)] {
                    d->tellActivity(*reader, tell);
                });
        }
    }
}

void StoreFiles::flush() {
    d_->queue.flush();
}

} // namespace vellmark
