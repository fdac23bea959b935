#include "presentation/AppLoops.h"

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
}

void AppLoops::schedule(Loop& loop) {
    // The next turn is set before the body runs, which may stop the loops.
    loop.timer = executor_.postAfter(loop.period, loop.tolerance, [this, &loop] {
        schedule(loop);
        loop.body();
    });
}

void AppLoops::cancel(std::optional<MainExecutor::Timer>& timer) {
    if (timer)
        executor_.cancel(*timer);
    timer.reset();
}

} // namespace vellmark
