#include "probes/BackgroundReaper.h"

#include "platform/ChildPipes.h"
#include "probes/BackgroundThread.h"
#include "probes/ChildLimit.h"

#include <exception>
#include <list>
#include <mutex>
#include <optional>
#include <poll.h>
#include <utility>

namespace vellmark {
namespace {

constexpr Seconds killGrace{3};

class Reaper {
public:
    /// Never destroyed: it works until the program is gone.
    static Reaper& shared() {
        static auto* const only = new Reaper;
        return *only;
    }

    void adopt(LaunchedChild& child) {
        {
            // One step for `work`, which must not collect a child that is still in the registry.
            const std::lock_guard hold(lock_);
            startOnce();
            wards_.emplace_back(child);
            wards_.back().child.handOver();
        }
        writeWithoutSignal(wake_->writeEnd.get(), "+");
    }

    std::vector<pid_t> snapshot() {
        const std::lock_guard hold(lock_);
        std::vector<pid_t> pids;
        for (const Ward& ward : wards_)
            pids.push_back(ward.child.pid());
        return pids;
    }

private:
    struct Ward {
        explicit Ward(LaunchedChild& adopted)
            : limit(adopted.pid(), Seconds::zero(), killGrace), child(std::move(adopted)) {}

        ChildLimit limit;
        LaunchedChild child;
    };

    void startOnce() {
        if (wake_)
            return;
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
            if (::poll(events.data(), static_cast<nfds_t>(events.size()), -1) <= 0)
                continue;
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
        for (const Ward& ward : wards_)
            events.push_back({ward.child.endDescriptor(), POLLIN, 0});
        return events;
    }

    void collectEnded() {
        const std::lock_guard hold(lock_);
        std::erase_if(wards_, [](Ward& ward) {
            pollfd end{ward.child.endDescriptor(), POLLIN, 0};
            if (::poll(&end, 1, 0) <= 0)
                return false;
            ward.limit.cancel();
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
        Reaper::shared().adopt(child);
    } catch (const std::exception&) {
        // `child` is still here and ends with this scope.
    }
}

std::vector<pid_t> BackgroundReaper::snapshot() {
    return Reaper::shared().snapshot();
}

} // namespace vellmark
