#include "platform/linux/SessionBusReturn.h"

#include "platform/Descriptor.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/DirectoryWatch.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <sys/timerfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

/// The socket is there a moment before the bus listens at it.
constexpr std::array pauses{std::chrono::milliseconds(50), std::chrono::milliseconds(200),
                            std::chrono::milliseconds(1000), std::chrono::milliseconds(3000)};

} // namespace

/// Shared by all that wait: the bus is looked for once.
class SessionBusReturn::Search : public std::enable_shared_from_this<Search> {
public:
    explicit Search(DescriptorWatcher& loop) : loop_(loop) {
        timer_ = Descriptor(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
        if (timer_.isOpen()) {
            timerWatch_ = loop_.watch(timer_.get(), [this] { timeIsUp(); });
        }
        hold(BusConnection::session(loop_));
        if (!bus_) {
            watchForSocket();
        }
    }

    ~Search() {
        if (bus_) {
            bus_->onLoss = {};
        }
    }

    static std::shared_ptr<Search> shared(DescriptorWatcher& loop) {
        static std::weak_ptr<Search> only;
        auto search = only.lock();
        if (!search) {
            search = std::make_shared<Search>(loop);
            only = search;
        }
        return search;
    }

    void add(const Handlers& handlers) { waiting_.push_back(&handlers); }
    void remove(const Handlers& handlers) { std::erase(waiting_, &handlers); }

private:
    void hold(std::shared_ptr<BusConnection> bus) {
        bus_ = std::move(bus);
        if (bus_) {
            bus_->onLoss = [this] { lose(); };
        }
    }

    /// In the middle of the lost connection's work: the rest in the loop's next turn.
    void lose() {
        isLost_ = true;
        watchForSocket();
        turn_ = 0;
        startTimer(std::chrono::nanoseconds(1));
    }

    void watchForSocket() {
        const std::filesystem::path socket = sessionBusSocket();
        if (!socket.empty()) {
            files_ = watchDirectories(
                loop_, {socket.parent_path()}, {socket.filename().string()},
                [this] {
                    turn_ = 0;
                    startTimer(pauses.front());
                },
                NewFiles::atOnce);
        }
    }

    void startTimer(std::chrono::nanoseconds pause) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(pause);
        const itimerspec wait{
            .it_interval = {},
            .it_value = {.tv_sec = seconds.count(), .tv_nsec = (pause - seconds).count()}};
        ::timerfd_settime(timer_.get(), 0, &wait, nullptr);
    }

    void timeIsUp() {
        const auto keepAlive = shared_from_this();
        std::uint64_t times = 0;
        (void)!::read(timer_.get(), &times, sizeof times);
        if (std::exchange(isLost_, false)) {
            bus_.reset();
            tell([](const Handlers& each) {
                if (each.onLoss) {
                    each.onLoss();
                }
            });
        }
        if (!bus_) {
            look();
        }
    }

    void look() {
        std::error_code ignored;
        const std::filesystem::path socket = sessionBusSocket();
        if (!socket.empty() && std::filesystem::exists(socket, ignored)) {
            takeSessionBusBack();
            hold(BusConnection::session(loop_));
        }
        if (bus_) {
            files_.reset();
            tell([this](const Handlers& each) { each.onReturn(bus_); });
        } else if (turn_ < pauses.size()) {
            startTimer(pauses[turn_++]);
        }
    }

    /// A handler may end others, and the search with the last of them.
    void tell(const std::function<void(const Handlers&)>& each) {
        for (const Handlers* handlers : std::vector(waiting_)) {
            if (std::ranges::find(waiting_, handlers) != waiting_.end()) {
                each(*handlers);
            }
        }
    }

    DescriptorWatcher& loop_;
    std::vector<const Handlers*> waiting_;
    std::shared_ptr<BusConnection> bus_;
    bool isLost_ = false;
    std::size_t turn_ = 0;
    Descriptor timer_;
    std::unique_ptr<DescriptorWatch> timerWatch_;
    std::unique_ptr<FileWatch> files_;
};

SessionBusReturn::SessionBusReturn(DescriptorWatcher& loop, Handlers handlers)
    : search_(Search::shared(loop)), handlers_(std::move(handlers)) {
    search_->add(handlers_);
}

SessionBusReturn::~SessionBusReturn() {
    search_->remove(handlers_);
}

} // namespace vellmark
