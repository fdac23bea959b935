#pragma once

#include "text/Instant.h"

#include <cstdint>
#include <functional>

namespace vellmark {

/// The main thread as the core sees it; every front end brings its own event loop.
class MainExecutor {
public:
    using Task = std::function<void()>;
    using Timer = std::uint64_t;

    virtual ~MainExecutor() = default;

    /// Runs `task` on the main thread soon, in the order of the posts. Callable from any thread.
    virtual void post(Task task) = 0;

    /// Runs `task` on the main thread after `delay`, at most `tolerance` later than that, so that
    /// the system may join wake-ups. Main thread only.
    virtual Timer postAfter(Seconds delay, Seconds tolerance, Task task) = 0;

    /// Forgets a timer; one that has fired or is unknown is no error. Main thread only.
    virtual void cancel(Timer timer) = 0;
};

} // namespace vellmark
