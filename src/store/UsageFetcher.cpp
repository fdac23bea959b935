#include "store/UsageFetcher.h"

#include "platform/ProgramEnd.h"
#include "process/BoundedProcess.h"
#include "process/ChildGroup.h"
#include "text/Redaction.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace vellmark {

namespace {

/// How long children that are told to stop may take before they are killed.
constexpr Seconds stopGrace{1};
/// Nobody waits for this limit to the second; the system can join wake-ups.
constexpr Seconds limitTolerance{5};

/// Removes what a CLI may have let slip: a failure's words are shown, logged and kept.
FetchOutcome fetchOutcome(AgentUsageProvider& provider, UsageFetcher::Occasion occasion,
                          const std::string& home) {
    const auto redact = [&home](const std::string& words) { return redactedWords(words, home); };
    try {
        AgentUsageSnapshot snapshot = occasion == UsageFetcher::Occasion::automatic
                                          ? provider.fetchAutomatically()
                                          : provider.fetch();
        if (snapshot.error) {
            snapshot.error = snapshot.error->withTexts(redact);
        }
        for (SnapshotNote& note : snapshot.notes) {
            if (auto* said = std::get_if<SnapshotNote::AgentSays>(&note.value)) {
                said->text = redact(said->text);
            }
        }
        return snapshot;
    } catch (const UsageProviderError& error) {
        return error.withTexts(redact);
    } catch (const std::exception& fault) {
        return UnexpectedFault{redact(fault.what())};
    } catch (...) {
        return UnexpectedFault{};
    }
}

} // namespace

struct UsageFetcher::State : std::enable_shared_from_this<State> {
    struct Worker {
        std::shared_ptr<AgentUsageProvider> provider;
        std::string name;
        Completion completion;
        std::shared_ptr<ChildGroup> children = std::make_shared<ChildGroup>();
        std::thread thread;
        std::optional<MainExecutor::Timer> limit;
        bool isAbandoned = false;
    };

    State(MainExecutor& onMain, std::string homeDirectory)
        : mainExecutor(onMain), home(std::move(homeDirectory)), executor(&onMain) {}

    /// On a worker thread: hands the outcome over, unless the fetcher has gone.
    void report(Ticket ticket, FetchOutcome outcome) {
        const std::lock_guard hold(lock);
        awaited.erase(ticket);
        if (executor) {
            executor->post([weak = weak_from_this(), ticket, outcome = std::move(outcome)] {
                if (const auto self = weak.lock()) {
                    self->land(ticket, outcome);
                }
            });
        }
        someoneFinished.notify_all();
    }

    /// On the main thread.
    void land(Ticket ticket, const FetchOutcome& outcome) {
        const auto found = workers.find(ticket);
        if (found == workers.end()) {
            return;
        }
        Worker worker = std::move(found->second);
        workers.erase(found);
        cancelLimit(worker);
        if (worker.thread.joinable()) {
            worker.thread.join(); // it has posted, so it is at its end
        }
        if (worker.completion) {
            worker.completion(outcome);
        }
    }

    /// On the main thread. Children may take their time to end, so another thread sees to that.
    void drop(Worker& worker) {
        worker.completion = nullptr;
        cancelLimit(worker);
        std::vector<pid_t> running = worker.children->close();
        if (running.empty()) {
            return;
        }
        const Ticket ending = await();
        try {
            std::thread([self = shared_from_this(), ending, running] {
                BoundedProcess::terminateAll(running, stopGrace);
                self->countEnd(ending);
            }).detach();
        } catch (const std::system_error&) {
            BoundedProcess::terminateAll(running, Seconds(0));
            countEnd(ending);
        }
    }

    /// On the main thread, when the fetch has used up its time.
    void abandon(Ticket ticket) {
        Worker& worker = workers.at(ticket); // whose end cancels the timer
        worker.limit.reset();
        worker.isAbandoned = true;
        const Completion completion = std::exchange(worker.completion, nullptr);
        const auto timedOut = UsageProviderError::timeout(worker.name);
        drop(worker);
        countEnd(ticket);
        completion(timedOut);
    }

    void cancelLimit(Worker& worker) {
        if (const auto limit = std::exchange(worker.limit, std::nullopt)) {
            mainExecutor.cancel(*limit);
        }
    }

    /// Fetches of `provider` that nobody waits for any more and that have not ended.
    std::ptrdiff_t stuckCount(const AgentUsageProvider* provider) const {
        return std::ranges::count_if(workers, [provider](const auto& entry) {
            return entry.second.provider.get() == provider && !entry.second.completion;
        });
    }

    /// Counts a thread as one to be waited for at the end.
    Ticket await() {
        const std::lock_guard hold(lock);
        awaited.insert(++lastTicket);
        return lastTicket;
    }

    void countEnd(Ticket ticket) {
        const std::lock_guard hold(lock);
        awaited.erase(ticket);
        someoneFinished.notify_all();
    }

    MainExecutor& mainExecutor; ///< for the main thread
    const std::string home;
    std::mutex lock;
    std::condition_variable someoneFinished;
    MainExecutor* executor;   ///< for the workers; null once the fetcher has gone; under `lock`
    std::set<Ticket> awaited; ///< threads that have not ended, but those abandoned; under `lock`
    Ticket lastTicket = 0;    ///< under `lock`
    std::map<Ticket, Worker> workers;
};

UsageFetcher::UsageFetcher(MainExecutor& executor, std::string homeDirectory)
    : d_(std::make_shared<State>(executor, std::move(homeDirectory))) {}

UsageFetcher::~UsageFetcher() {
    for (auto& [ticket, worker] : d_->workers) {
        d_->drop(worker);
    }
    std::unique_lock hold(d_->lock);
    d_->executor = nullptr;
    d_->someoneFinished.wait_for(hold, exitPatience, [this] { return d_->awaited.empty(); });
    const std::set<Ticket> stuck = d_->awaited;
    hold.unlock();
    for (auto& [ticket, worker] : d_->workers) {
        if (!worker.thread.joinable()) {
            continue;
        }
        if (!stuck.contains(ticket) && !worker.isAbandoned) {
            worker.thread.join();
        } else {
            worker.thread.detach();
            noteThreadLeftBehind();
        }
    }
}

UsageFetcher::Ticket UsageFetcher::start(std::shared_ptr<AgentUsageProvider> provider,
                                         std::string name, Occasion occasion,
                                         Completion completion) {
    const Ticket ticket = d_->await();
    const bool isHopeless = d_->stuckCount(provider.get()) >= mostStuck;
    State::Worker& worker = d_->workers[ticket];
    worker.provider = std::move(provider);
    worker.name = std::move(name);
    worker.completion = std::move(completion);
    if (isHopeless) {
        d_->report(ticket, UsageProviderError::timeout(worker.name));
        return ticket;
    }
    try {
        worker.thread = std::thread(
            [state = d_, ticket, provider = worker.provider, occasion, children = worker.children] {
                const ChildGroup::Scope scope(*children);
                state->report(ticket, fetchOutcome(*provider, occasion, state->home));
            });
        worker.limit = d_->mainExecutor.postAfter(
            fetchLimit, limitTolerance, [state = d_.get(), ticket] { state->abandon(ticket); });
    } catch (const std::system_error& noThread) {
        d_->report(ticket, UnexpectedFault{noThread.what()});
    }
    return ticket;
}

void UsageFetcher::drop(Ticket ticket) {
    if (const auto found = d_->workers.find(ticket); found != d_->workers.end()) {
        d_->drop(found->second);
    }
}

} // namespace vellmark
