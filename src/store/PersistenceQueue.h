#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace vellmark {

/// The one thread that writes the program's files, in the order in which it is asked to. Destroying
/// the queue does what is left to do. Jobs must not throw.
class PersistenceQueue {
public:
    PersistenceQueue();
    ~PersistenceQueue();
    PersistenceQueue(const PersistenceQueue&) = delete;
    PersistenceQueue& operator=(const PersistenceQueue&) = delete;

    void post(std::function<void()> job);
    /// Posts `job` and waits until it has run, and with it all that was posted before.
    void run(const std::function<void()>& job);
    void flush() {
        run([] {});
    }

private:
    void work();

    std::mutex lock_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> jobs_; ///< under `lock_`
    bool closing_ = false;                   ///< under `lock_`
    std::thread thread_;
};

} // namespace vellmark
