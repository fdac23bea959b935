#pragma once

#include <csignal>

namespace vellmark {

/// Blocks every signal for its thread while it lives; what is born meanwhile, a thread or a child,
/// begins with them blocked.
class AllSignalsBlocked {
public:
    AllSignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &previous_);
    }
    ~AllSignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked&) = delete;
    AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;

private:
    sigset_t previous_;
};

} // namespace vellmark
