#pragma once

#include "probes/claude/ClaudeUsageProvider.h"

namespace vellmark::tests {

/// Pauses that the simulated CLI needs; steps wait as long as shipped, so that a busy machine makes
/// no difference.
inline ClaudeUsageProvider::Limits quickClaudeLimits() {
    ClaudeUsageProvider::Limits limits;
    limits.loginCheckGrace = Seconds(0.2);
    limits.query.killGrace = Seconds(0.3);
    limits.session.least = Seconds(0.05);
    limits.session.killGrace = Seconds(0.3);
    limits.session.timings.statusPauseMs = 30;
    limits.session.timings.statusEscapePauseMs = 30;
    limits.session.timings.missingStatusPauseMs = 30;
    limits.session.timings.loggedOutPauseMs = 30;
    limits.session.timings.loggedOutExitPauseMs = 30;
    limits.session.timings.markedCapMs = 60000;
    limits.session.timings.unmarkedCapMs = 60000;
    limits.session.timings.unmarkedQuietSeconds = 1;
    limits.session.timings.leavePauseMs = 30;
    limits.session.timings.exitPauseMs = 100;
    return limits;
}

} // namespace vellmark::tests
