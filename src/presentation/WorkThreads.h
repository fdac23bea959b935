#pragma once

#include <functional>
#include <list>
#include <memory>

namespace vellmark {

/// Runs work beside the main thread, every piece at once and on a thread of its own. Destroying it
/// waits for all of it. Main thread.
class WorkThreads {
public:
    WorkThreads();
    ~WorkThreads();
    WorkThreads(const WorkThreads&) = delete;
    WorkThreads& operator=(const WorkThreads&) = delete;

    /// `work` must not throw. Where no thread is to be had it runs here.
    void run(std::function<void()> work);

private:
    struct Worker;
    std::list<std::unique_ptr<Worker>> workers_;
};

} // namespace vellmark
