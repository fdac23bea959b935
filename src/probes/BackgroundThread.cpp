#include "probes/BackgroundThread.h"

#include <pthread.h>
#include <signal.h>
#include <thread>
#include <utility>

namespace vellmark {
namespace {

/// Blocks every signal for a while; a thread made meanwhile is born with them blocked.
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

} // namespace

void startBackgroundThread(std::function<void()> work) {
    const AllSignalsBlocked blocked;
    std::thread(std::move(work)).detach();
}

} // namespace vellmark
