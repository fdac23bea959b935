#include "app/QtExecutor.h"

#include <algorithm>
#include <utility>

namespace vellmark {

QtExecutor::QtExecutor() {
    wake_.setSingleShot(true);
    wake_.setTimerType(Qt::PreciseTimer);
    connect(&wake_, &QTimer::timeout, this, &QtExecutor::runDue);
}

void QtExecutor::post(Task task) {
    bool isFirst = false;
    {
        const std::lock_guard hold(lock_);
        isFirst = posted_.empty();
        posted_.push_back(std::move(task));
    }
    if (isFirst) {
        QMetaObject::invokeMethod(this, &QtExecutor::runPosted, Qt::QueuedConnection);
    }
}

void QtExecutor::runPosted() {
    std::vector<Task> tasks;
    {
        const std::lock_guard hold(lock_);
        tasks.swap(posted_);
    }
    for (const Task& task : tasks) {
        task();
    }
}

MainExecutor::Timer QtExecutor::postAfter(Seconds delay, Seconds tolerance, Task task) {
    const auto due = Clock::now() + std::chrono::duration_cast<Clock::duration>(delay);
    const auto latest = due + std::chrono::duration_cast<Clock::duration>(tolerance);
    alarms_.emplace(++lastTimer_, Alarm{due, latest, std::move(task)});
    arm();
    return lastTimer_;
}

void QtExecutor::cancel(Timer timer) {
    if (alarms_.erase(timer) > 0) {
        arm();
    }
}

void QtExecutor::arm() {
    if (alarms_.empty()) {
        wake_.stop();
        return;
    }
    const auto next = std::ranges::min_element(
        alarms_, {}, [](const auto& entry) { return entry.second.latest; });
    const auto wait =
        std::chrono::ceil<std::chrono::milliseconds>(next->second.latest - Clock::now());
    wake_.start(std::max(wait, std::chrono::milliseconds(0)));
}

void QtExecutor::runDue() {
    const auto now = Clock::now();
    // A task may cancel others that are due with it.
    std::vector<Timer> due;
    for (const auto& [timer, alarm] : alarms_) {
        if (alarm.due <= now) {
            due.push_back(timer);
        }
    }
    for (const Timer timer : due) {
        const auto found = alarms_.find(timer);
        if (found == alarms_.end()) {
            continue;
        }
        const Task task = std::move(found->second.task);
        alarms_.erase(found);
        task();
    }
    arm();
}

} // namespace vellmark
