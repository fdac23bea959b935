#include "store/UsageFetcher.h"

#include "probes/BoundedProcess.h"
#include "probes/ChildGroup.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace vellmark {

namespace {

/// How long children that are told to stop may take before they are killed.
constexpr Seconds stopGrace{1};

FetchOutcome fetchOutcome(AgentUsageProvider& provider) {
    try {
        return provider.fetch();
    } catch (const UsageProviderError& error) {
        return error;
    } catch (const std::exception& fault) {
        return UnexpectedFault{fault.what()};
    } catch (...) {
        return UnexpectedFault{};
    }
}

} // namespace

struct UsageFetcher::State : std::enable_shared_from_this<State> {
    struct Worker {
        std::thread thread;
        Completion completion;
        std::shared_ptr<ChildGroup> children = std::make_shared<ChildGroup>();
    };

    explicit State(MainExecutor& mainExecutor) : executor(&mainExecutor) {}

    /// On a worker thread: hands the outcome over, unless the fetcher has gone.
    void report(Ticket ticket, FetchOutcome outcome) {
        const std::lock_guard hold(lock);
        ++finished;
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
        std::vector<pid_t> running = worker.children->close();
        if (running.empty()) {
            return;
        }
        ++started;
        try {
            std::thread([self = shared_from_this(), running] {
                BoundedProcess::terminateAll(running, stopGrace);
                self->countEnd();
            }).detach();
        } catch (const std::system_error&) {
            BoundedProcess::terminateAll(running, Seconds(0));
            countEnd();
        }
    }

    void countEnd() {
        const std::lock_guard hold(lock);
        ++finished;
        someoneFinished.notify_all();
    }

    std::mutex lock;
    std::condition_variable someoneFinished;
    MainExecutor* executor; ///< null once the fetcher has gone; under `lock`
    Ticket lastTicket = 0;
    std::uint64_t started = 0;  ///< threads, on the main thread
    std::uint64_t finished = 0; ///< threads, under `lock`
    std::map<Ticket, Worker> workers;
};

UsageFetcher::UsageFetcher(MainExecutor& executor) : d_(std::make_shared<State>(executor)) {}

UsageFetcher::~UsageFetcher() {
    for (auto& [ticket, worker] : d_->workers) {
        d_->drop(worker);
    }
    std::unique_lock hold(d_->lock);
    d_->executor = nullptr;
    const bool allEnded = d_->someoneFinished.wait_for(
        hold, exitPatience, [this] { return d_->finished == d_->started; });
    hold.unlock();
    for (auto& [ticket, worker] : d_->workers) {
        if (!worker.thread.joinable()) {
            continue;
        }
        if (allEnded) {
            worker.thread.join();
        } else {
            worker.thread.detach();
        }
    }
}

UsageFetcher::Ticket UsageFetcher::start(std::shared_ptr<AgentUsageProvider> provider,
                                         Completion completion) {
    const Ticket ticket = ++d_->lastTicket;
    ++d_->started;
    State::Worker& worker = d_->workers[ticket];
    worker.completion = std::move(completion);
    try {
        worker.thread = std::thread(
            [state = d_, ticket, provider = std::move(provider), children = worker.children] {
                const ChildGroup::Scope scope(*children);
                state->report(ticket, fetchOutcome(*provider));
            });
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
