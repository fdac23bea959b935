#pragma once

#include "store/MainExecutor.h"
#include "store/UsageState.h"

#include <functional>
#include <optional>

namespace vellmark {

/// The loops that run for as long as the application does, and the refresh after a wake.
///
/// Every loop waits one period before its first turn. The periods go on while the system sleeps,
/// the executor's timers may not: what fell due meanwhile runs after the wake. Main thread;
/// everything stops with this object.
class AppLoops {
public:
    static constexpr Seconds glyphPeriod{60};
    static constexpr Seconds glyphTolerance{5};
    static constexpr Seconds refreshPeriod{300};
    static constexpr Seconds refreshTolerance{20};
    static constexpr Seconds logTrimPeriod = oneDay;
    static constexpr Seconds logTrimTolerance{600};
    static constexpr Seconds wakeHold{10};

    struct Actions {
        std::function<void()> reevaluateStatusItem;
        std::function<void(RefreshTrigger)> refresh;
        std::function<void()> trimLog;
        std::function<void(Instant)> holdAutomaticRefreshesUntil;
        std::function<Instant()> now;
        /// A clock that goes on while the system sleeps.
        std::function<Seconds()> continuousTime;
    };

    AppLoops(MainExecutor& executor, Actions actions);
    ~AppLoops();
    AppLoops(const AppLoops&) = delete;
    AppLoops& operator=(const AppLoops&) = delete;

    void start();
    /// Lets what fell due run now. Holds automatic refreshes for a while and refreshes once after
    /// it; a further wake meanwhile begins the wait anew.
    void systemDidWake();
    /// How often everything is read; a turn that is due by it already comes at once.
    void setRefreshPeriod(Seconds period);
    void stop();

private:
    struct Loop {
        Seconds period;
        Seconds tolerance;
        std::function<void()> body;
        std::optional<MainExecutor::Timer> timer;
        /// By the continuous clock.
        Seconds due{};
    };
    void schedule(Loop& loop);
    /// Sets the timer to when the loop is due.
    void arm(Loop& loop);
    void cancel(std::optional<MainExecutor::Timer>& timer);

    MainExecutor& executor_;
    Actions actions_;
    Loop glyphLoop_;
    Loop refreshLoop_;
    Loop logTrimLoop_;
    std::optional<MainExecutor::Timer> wakeTimer_;
};

} // namespace vellmark
