#include "presentation/WorkThreads.h"

#include <atomic>
#include <system_error>
#include <thread>
#include <utility>

namespace vellmark {

struct WorkThreads::Worker {
    std::atomic<bool> isDone = false;
    std::thread thread;
};

WorkThreads::WorkThreads() = default;

WorkThreads::~WorkThreads() {
    for (const auto& worker : workers_) {
        worker->thread.join();
    }
}

void WorkThreads::run(std::function<void()> work) {
    workers_.remove_if([](const std::unique_ptr<Worker>& worker) {
        if (worker->isDone) {
            worker->thread.join();
        }
        return worker->isDone.load();
    });
    auto worker = std::make_unique<Worker>();
    try {
        worker->thread = std::thread([&isDone = worker->isDone, work] {
            work();
            isDone = true;
        });
        workers_.push_back(std::move(worker));
    } catch (const std::system_error&) {
        work();
    }
}

} // namespace vellmark
