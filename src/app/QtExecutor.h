#pragma once

#include "store/MainExecutor.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <map>
#include <mutex>
#include <vector>

namespace vellmark {

/// The main thread as Qt's event loop has it.
///
/// All timers share one of Qt's: it fires at the earliest moment at which one of them can no longer
/// wait, and then everything that is due runs, so that loops with tolerance share their wake-ups.
class QtExecutor final : public QObject, public MainExecutor {
public:
    QtExecutor();

    void post(Task task) override;
    Timer postAfter(Seconds delay, Seconds tolerance, Task task) override;
    void cancel(Timer timer) override;

private:
    using Clock = std::chrono::steady_clock;
    struct Alarm {
        Clock::time_point due;
        Clock::time_point latest;
        Task task;
    };
    void runPosted();
    void arm();
    void runDue();

    std::mutex lock_;
    /// Guarded by `lock_`; Qt only wakes the loop up for it.
    std::vector<Task> posted_;

    std::map<Timer, Alarm> alarms_;
    Timer lastTimer_ = 0;
    QTimer wake_;
};

} // namespace vellmark
