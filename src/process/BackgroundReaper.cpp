#include "process/BackgroundReaper.h"

#include "platform/ChildPipes.h"
#include "process/BackgroundThread.h"

#include <algorithm>
#include <exception>
#include <list>
#include <mutex>
#include <optional>
#include <poll.h>
#include <utility>

namespace vellmark {
namespace {

constexpr Seconds killGrace{3};
/// How often, in milliseconds, to check whether the processes that outlived their parent are gone.
constexpr int survivorStep = 100;

class Reaper {
public:
    /// Never destroyed: it works until the program is gone.
    static Reaper& shared() {
        static auto* const only = new Reaper;
        return *only;
    }

    void adopt(LaunchedChild& child, std::unique_ptr<ChildLimit>& limit) {
        {
            // One step for `work`, which must not collect a child that is still in the registry.
            const std::lock_guard hold(lock_);
            startOnce();
            wards_.push_back({std::move(child), std::move(limit)});
            wards_.back().child.handOver();
        }
        writeWithoutSignal(wake_->writeEnd.get(), "+");
    }

    std::vector<pid_t> snapshot() {
        const std::lock_guard hold(lock_);
        std::vector<pid_t> pids;
        for (const Ward& ward : wards_) {
            pids.push_back(ward.child.pid());
        }
        return pids;
    }

private:
    struct Ward {
        LaunchedChild child;
        std::unique_ptr<ChildLimit> limit; ///< destroyed first: the child is not collected then
        bool hasEnded = false;
    };

    void startOnce() {
        if (wake_) {
            return;
        }
        wake_ = makePipe();
        try {
            startBackgroundThread([this] { work(); });
        } catch (...) {
            wake_.reset();
            throw;
        }
    }

    [[noreturn]] void work() {
        for (;;) {
            auto events = awaitedEvents();
            const int timeout = areSurvivorsAwaited() ? survivorStep : -1;
            if (::poll(events.data(), static_cast<nfds_t>(events.size()), timeout) < 0) {
                continue;
            }
            if (events.front().revents != 0) {
                char ignored[64];
                [[maybe_unused]] const auto count =
                    ::read(wake_->readEnd.get(), ignored, sizeof ignored);
            }
            collectEnded();
        }
    }

    std::vector<pollfd> awaitedEvents() {
        const std::lock_guard hold(lock_);
        std::vector<pollfd> events{{wake_->readEnd.get(), POLLIN, 0}};
        for (const Ward& ward : wards_) {
            if (!ward.hasEnded) {
                events.push_back({ward.child.endDescriptor(), POLLIN, 0});
            }
        }
        return events;
    }

    bool areSurvivorsAwaited() {
        const std::lock_guard hold(lock_);
        return std::ranges::any_of(wards_, &Ward::hasEnded);
    }

    void collectEnded() {
        const std::lock_guard hold(lock_);
        std::erase_if(wards_, [](Ward& ward) {
            pollfd end{ward.child.endDescriptor(), POLLIN, 0};
            ward.hasEnded = ward.hasEnded || ::poll(&end, 1, 0) > 0;
            if (!ward.hasEnded || ward.limit->hasSurvivors()) {
                return false;
            }
            ward.limit.reset();
            ward.child.collect();
            return true;
        });
    }

    std::mutex lock_;
    std::optional<Pipe> wake_;
    std::list<Ward> wards_;
};

} // namespace

void BackgroundReaper::adopt(LaunchedChild child) noexcept {
    try {
        auto limit = std::make_unique<ChildLimit>(child.pid(), Seconds::zero(), killGrace);
        adopt(std::move(child), std::move(limit));
    } catch (const std::exception&) {
        // `child` is still here and ends with this scope.
    }
}

void BackgroundReaper::adopt(LaunchedChild child, std::unique_ptr<ChildLimit> limit) noexcept {
    try {
        Reaper::shared().adopt(child, limit);
    } catch (const std::exception&) {
        // The same; its limit goes before it.
        limit.reset();
    }
}

std::vector<pid_t> BackgroundReaper::snapshot() {
    return Reaper::shared().snapshot();
}

} // namespace vellmark
