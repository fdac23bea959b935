#include "store/PersistenceQueue.h"

#include <utility>

namespace vellmark {

PersistenceQueue::PersistenceQueue() : thread_([this] { work(); }) {}

PersistenceQueue::~PersistenceQueue() {
    {
        const std::lock_guard hold(lock_);
        closing_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void PersistenceQueue::post(std::function<void()> job) {
    {
        const std::lock_guard hold(lock_);
        jobs_.push_back(std::move(job));
    }
    changed_.notify_all();
}

void PersistenceQueue::run(const std::function<void()>& job) {
    bool done = false;
    post([&] {
        job();
        const std::lock_guard hold(lock_);
        done = true;
        changed_.notify_all();
    });
    std::unique_lock hold(lock_);
    changed_.wait(hold, [&] { return done; });
}

void PersistenceQueue::work() {
    std::unique_lock hold(lock_);
    for (;;) {
        changed_.wait(hold, [this] { return closing_ || !jobs_.empty(); });
        if (jobs_.empty()) {
            return;
        }
        const auto job = std::move(jobs_.front());
        jobs_.pop_front();
        hold.unlock();
        job();
        hold.lock();
    }
}

} // namespace vellmark
