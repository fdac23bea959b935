#include "presentation/AppLoops.h"

#include <algorithm>
#include <utility>

namespace vellmark {

AppLoops::AppLoops(MainExecutor& executor, Actions actions)
    : executor_(executor), actions_(std::move(actions)),
      glyphLoop_{glyphPeriod, glyphTolerance, [this] { actions_.reevaluateStatusItem(); }, {}},
      refreshLoop_{
          refreshPeriod, refreshTolerance, [this] { actions_.refresh(RefreshTrigger::timer); }, {}},
      logTrimLoop_{logTrimPeriod, logTrimTolerance, [this] { actions_.trimLog(); }, {}} {}

AppLoops::~AppLoops() {
    stop();
}

void AppLoops::start() {
    stop();
    schedule(glyphLoop_);
    schedule(refreshLoop_);
    schedule(logTrimLoop_);
}

void AppLoops::stop() {
    cancel(glyphLoop_.timer);
    cancel(refreshLoop_.timer);
    cancel(logTrimLoop_.timer);
    cancel(wakeTimer_);
}

void AppLoops::systemDidWake() {
    actions_.holdAutomaticRefreshesUntil(actions_.now() + wakeHold);
    cancel(wakeTimer_);
    wakeTimer_ = executor_.postAfter(wakeHold, Seconds(0), [this] {
        wakeTimer_.reset();
        actions_.refresh(RefreshTrigger::wake);
    });
    for (Loop* loop : {&glyphLoop_, &refreshLoop_, &logTrimLoop_}) {
        if (loop->timer) {
            arm(*loop);
        }
    }
}

void AppLoops::setRefreshPeriod(Seconds period) {
    const Seconds change = period - refreshLoop_.period;
    refreshLoop_.period = period;
    if (refreshLoop_.timer && change != Seconds(0)) {
        refreshLoop_.due += change;
        arm(refreshLoop_);
    }
}

void AppLoops::schedule(Loop& loop) {
    loop.due = actions_.continuousTime() + loop.period;
    arm(loop);
}

void AppLoops::arm(Loop& loop) {
    cancel(loop.timer);
    const Seconds wait = std::max(loop.due - actions_.continuousTime(), Seconds(0));
    loop.timer = executor_.postAfter(wait, loop.tolerance, [this, &loop] {
        // The next turn is set before the body runs, which may stop the loops.
        schedule(loop);
        loop.body();
    });
}

void AppLoops::cancel(std::optional<MainExecutor::Timer>& timer) {
    if (timer) {
        executor_.cancel(*timer);
    }
    timer.reset();
}

} // namespace vellmark
