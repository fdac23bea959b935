#pragma once

#include "platform/DescriptorWatcher.h"
#include "platform/SignalChannel.h"
#include "store/MainExecutor.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace vellmark {

/// The main loop of a terminal program: runs what is posted, timers, and callbacks for readable
/// descriptors; sleeps in the kernel otherwise.
///
/// While it exists, SIGINT, SIGTERM, SIGHUP, SIGQUIT and SIGWINCH arrive as events of the loop in
/// place of their default effect, and SIGTSTP and SIGCONT once `onSuspension` is set. One loop at a
/// time, made and used on the main thread.
class TerminalLoop final : public MainExecutor, public DescriptorWatcher {
public:
    TerminalLoop();
    ~TerminalLoop() override;
    TerminalLoop(const TerminalLoop&) = delete;
    TerminalLoop& operator=(const TerminalLoop&) = delete;

    /// Runs until `stop`; returns the status given there.
    int run();
    /// Callable from the loop's own callbacks, also before `run`.
    void stop(int status);

    /// A signal that asks the program to end stops the loop with the status by convention,
    /// 128 + signal. This tells which one it was; 0 when none did.
    int endingSignal() const { return endingSignal_; }

    /// Called when the terminal has changed its size.
    void onResize(std::function<void()> callback) { onResize_ = std::move(callback); }

    /// `before` is called when the program is asked to stop for a while, `after` when it goes on.
    void onSuspension(std::function<void()> before, std::function<void()> after);
    /// Stops the program until somebody has it go on, as Ctrl-Z does.
    void suspend();

    void post(Task task) override;
    Timer postAfter(Seconds delay, Seconds tolerance, Task task) override;
    void cancel(Timer timer) override;
    std::unique_ptr<DescriptorWatch> watch(int descriptor,
                                           std::function<void()> onReadable) override;

private:
    using Clock = std::chrono::steady_clock;
    class Watch;
    struct Watched {
        int descriptor;
        std::function<void()> onReadable;
    };

    int pollTimeout() const;
    void waitForEvents();
    void drainWakePipe();
    void handleSignals();
    void runPostedTasks();
    void runDueTimers();
    void wake();

    int wakeRead_ = -1;
    int wakeWrite_ = -1;
    SignalChannel signals_;

    std::mutex mutex_;
    std::vector<Task> posted_;

    std::map<std::pair<Clock::time_point, Timer>, Task> timers_;
    Timer lastTimer_ = 0;
    std::map<int, Watched> watched_;
    int lastWatch_ = 0;

    std::function<void()> onResize_;
    std::function<void()> beforeSuspension_;
    std::function<void()> afterSuspension_;
    bool stopped_ = false;
    int status_ = 0;
    int endingSignal_ = 0;
};

} // namespace vellmark
