// A panel that measures: hosts status notifiers on the session bus, starts the program given as
// arguments and prints what it costs. Used by scripts/desktop-measure.

#include <sdbus-c++/sdbus-c++.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;
using Pixmap = sdbus::Struct<std::int32_t, std::int32_t, std::vector<std::uint8_t>>;

constexpr auto watcherName = "org.kde.StatusNotifierWatcher";
constexpr auto itemInterface = "org.kde.StatusNotifierItem";
constexpr int launches = 7;
constexpr int openings = 15;
constexpr auto idleTime = std::chrono::seconds(60);

double milliseconds(Clock::duration span) {
    return std::chrono::duration<double, std::milli>(span).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

class Panel {
public:
    Panel()
        : connection_(sdbus::createSessionBusConnection()),
          watcher_(sdbus::createObject(*connection_, "/StatusNotifierWatcher")) {
        watcher_->registerMethod("RegisterStatusNotifierItem")
            .onInterface(watcherName)
            .implementedAs([this](const std::string& service) {
                const std::lock_guard hold(lock_);
                service_ = service;
                arrived_.notify_all();
            });
        watcher_->registerProperty("IsStatusNotifierHostRegistered")
            .onInterface(watcherName)
            .withGetter([] { return true; });
        watcher_->finishRegistration();
        connection_->requestName(watcherName);
        connection_->enterEventLoopAsync();
    }
    ~Panel() { connection_->leaveEventLoop(); }

    void forget() {
        const std::lock_guard hold(lock_);
        service_.clear();
    }

    /// Waits until an item has registered.
    std::string waitForItem() {
        std::unique_lock hold(lock_);
        if (!arrived_.wait_for(hold, std::chrono::seconds(20), [&] { return !service_.empty(); }))
            throw std::runtime_error("no item has come");
        return service_;
    }

private:
    std::mutex lock_;
    std::condition_variable arrived_;
    std::string service_;
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IObject> watcher_;
};

class Program {
public:
    explicit Program(char** arguments) {
        if (::posix_spawn(&pid_, arguments[0], nullptr, nullptr, arguments, environ) != 0)
            throw std::runtime_error("the program does not start");
    }
    ~Program() {
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
    pid_t pid() const { return pid_; }

    /// A number behind "name:" in every thread's or the process's status.
    long status(const std::filesystem::path& file, const std::string& name) const {
        std::ifstream stream(file / "status");
        for (std::string line; std::getline(stream, line);) {
            if (line.starts_with(name + ":"))
                return std::atol(line.c_str() + name.size() + 1);
        }
        return 0;
    }
    long residentKilobytes() const { return status(directory(), "VmRSS"); }
    long sharedFileKilobytes() const { return status(directory(), "RssFile"); }
    /// How often each thread has been woken so far.
    std::map<std::string, long> wakeUps() const {
        std::map<std::string, long> counts;
        for (const auto& thread : std::filesystem::directory_iterator(directory() / "task"))
            counts[thread.path().filename()] = status(thread.path(), "voluntary_ctxt_switches");
        return counts;
    }
    /// What the main thread has run so far, without waiting for a processor.
    double mainThreadMilliseconds() const {
        std::ifstream stream(directory() / "schedstat");
        double nanoseconds = 0;
        stream >> nanoseconds;
        return nanoseconds / 1e6;
    }
    double processorMilliseconds() const {
        std::ifstream stream(directory() / "stat");
        std::string text{std::istreambuf_iterator<char>(stream), {}};
        text = text.substr(text.rfind(')') + 2);
        std::array<long, 2> ticks{};
        std::sscanf(text.c_str(), "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld", &ticks[0],
                    &ticks[1]);
        return static_cast<double>(ticks[0] + ticks[1]) * 1000 /
               static_cast<double>(::sysconf(_SC_CLK_TCK));
    }

private:
    std::filesystem::path directory() const { return "/proc/" + std::to_string(pid_); }
    pid_t pid_ = 0;
};

/// The screen's pixels.
class Screen {
public:
    Screen() : connection_(xcb_connect(nullptr, nullptr)) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    }
    ~Screen() { xcb_disconnect(connection_); }

    std::uint32_t pixel(std::int16_t x, std::int16_t y) const {
        const auto cookie =
            xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, x, y, 1, 1, ~0U);
        const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
            xcb_get_image_reply(connection_, cookie, nullptr), &std::free);
        std::uint32_t value = 0;
        if (reply && xcb_get_image_data_length(reply.get()) >= 4)
            std::memcpy(&value, xcb_get_image_data(reply.get()), 4);
        return value & 0xFFFFFF;
    }

private:
    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
};

class Item {
public:
    explicit Item(const std::string& service)
        : connection_(sdbus::createSessionBusConnection()),
          proxy_(sdbus::createProxy(*connection_, service, "/StatusNotifierItem")) {}

    std::size_t iconSizes() {
        return proxy_->getProperty("IconPixmap")
            .onInterface(itemInterface)
            .get<std::vector<Pixmap>>()
            .size();
    }
    void activate() {
        proxy_->callMethod("Activate").onInterface(itemInterface).withArguments(640, 10);
    }

private:
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IProxy> proxy_;
};

void measureLaunch(Panel& panel, char** arguments) {
    std::vector<double> times;
    std::vector<double> running;
    for (int launch = 0; launch < launches; ++launch) {
        panel.forget();
        const auto start = Clock::now();
        const Program program(arguments);
        Item item(panel.waitForItem());
        if (item.iconSizes() == 0)
            throw std::runtime_error("the item has no icon");
        times.push_back(milliseconds(Clock::now() - start));
        running.push_back(program.mainThreadMilliseconds());
    }
    std::printf("launch to drawn item    %6.1f ms   (target 150, median of %d)\n"
                "  of it running         %6.1f ms   (the rest waits for a processor or the disk)\n",
                median(times), launches, median(running));
}

/// Toggles the popover and waits until a pixel inside it has changed.
double measureToggle(Item& item, const Screen& screen) {
    const std::uint32_t before = screen.pixel(640, 60);
    const auto start = Clock::now();
    item.activate();
    while (screen.pixel(640, 60) == before) {
        if (Clock::now() - start > std::chrono::seconds(10))
            throw std::runtime_error("the popover does not react");
    }
    return milliseconds(Clock::now() - start);
}

void measurePopover(Item& item) {
    const Screen screen;
    std::vector<double> times;
    for (int opening = 0; opening < openings; ++opening) {
        times.push_back(measureToggle(item, screen));
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        measureToggle(item, screen);
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
    }
    std::printf("popover on screen       %6.1f ms   (target 50, median of %d; the first %.1f)\n",
                median(times), openings, times.front());
}

void measureIdle(const Program& program) {
    const auto before = program.wakeUps();
    const double processor = program.processorMilliseconds();
    std::this_thread::sleep_for(idleTime);
    long wakeUps = 0;
    for (const auto& [thread, count] : program.wakeUps()) {
        const auto known = before.find(thread);
        wakeUps += count - (known != before.end() ? known->second : 0);
    }
    std::printf("wake-ups in 60 s idle   %6ld      (target 2)\n", wakeUps);
    std::printf("processor in 60 s idle  %6.0f ms\n", program.processorMilliseconds() - processor);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: vellmark-panel-probe PROGRAM [ARGUMENT...]\n", stderr);
        return 2;
    }
    try {
        Panel panel;
        measureLaunch(panel, argv + 1);
        panel.forget();
        const Program program(argv + 1);
        Item item(panel.waitForItem());
        // The first refresh is over by then.
        std::this_thread::sleep_for(std::chrono::seconds(15));
        const long before = program.residentKilobytes();
        const long shared = program.sharedFileKilobytes();
        measureIdle(program);
        measurePopover(item);
        std::printf("resident memory         %6.1f MB   (target 40; of it files shared with others "
                    "%.1f)\n",
                    static_cast<double>(before) / 1024,
                    static_cast<double>(shared) / 1024);
        std::printf("after the popover       %6.1f MB\n",
                    static_cast<double>(program.residentKilobytes()) / 1024);
    } catch (const std::exception& error) {
        std::printf("failed: %s\n", error.what());
        return 1;
    }
}
