// A panel that measures: hosts status notifiers on the session bus, starts the program given as
// arguments and prints what it costs, each figure beside its limit, and times beside what a bare Qt
// window takes on the same machine in the same minute. Used by scripts/desktop-measure.

#include "platform/linux/BusLibrary.h"
#include "support/NotifierPanel.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

extern char** environ;

namespace {

using vellmark::tests::NotifierPanel;
namespace bus = vellmark::bus;
using Clock = std::chrono::steady_clock;
using Pixmap = sdbus::Struct<std::int32_t, std::int32_t, std::vector<std::uint8_t>>;

constexpr auto itemInterface = "org.kde.StatusNotifierItem";
constexpr int launches = 7;
constexpr std::size_t firstOpenings = 3;
constexpr int openings = 15;
constexpr auto idleTime = std::chrono::seconds(60);
constexpr auto patience = std::chrono::seconds(20);
/// The first refresh is over by then.
constexpr auto firstRefresh = std::chrono::seconds(15);
/// A closed popover or window has been let go by then.
constexpr auto release = std::chrono::seconds(12);

bool isEveryLimitKept = true;
/// What a bare Qt window takes from its launch to its first painting, in milliseconds.
double bareWindow = 0;

/// A figure without a limit.
void print(const char* what, double value, const char* unit, const std::string& note = {}) {
    std::printf("%-28s %7.1f %-2s  %s\n", what, value, unit, note.c_str());
    std::fflush(stdout);
}

/// A figure with its share of the limit: the machine's noise is judged by the reader.
void printLimited(const char* what, double value, const char* unit, double limit,
                  const std::string& note = {}) {
    std::array<char, 64> share{};
    std::snprintf(share.data(), share.size(), "%.2f of the limit of %.0f%s", value / limit, limit,
                  value > limit ? ": MISSED" : "");
    isEveryLimitKept = isEveryLimitKept && value <= limit;
    print(what, value, unit, share.data() + (note.empty() ? note : "; " + note));
}

/// In milliseconds. On a slow machine what a bare window takes is the better measure.
void printTime(const char* what, double value, double limit, const std::string& note = {}) {
    std::array<char, 64> share{};
    std::snprintf(share.data(), share.size(), "%.2f of a bare window", value / bareWindow);
    printLimited(what, value, "ms", limit, share.data() + (note.empty() ? note : "; " + note));
}

std::string text(double value) {
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%.1f", value);
    return digits.data();
}

double milliseconds(Clock::duration span) {
    return std::chrono::duration<double, std::milli>(span).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// In milliseconds. What is neither is spent waiting for the disk, the display or the bus.
struct MainThread {
    double running = 0;
    double queued = 0; ///< waiting for a processor
    /// Those that were not in memory any more: it waits for each.
    double pagesRead = 0;

    MainThread operator-(const MainThread& earlier) const {
        return {running - earlier.running, queued - earlier.queued, pagesRead - earlier.pagesRead};
    }
    std::string text() const {
        return ::text(running) + " of it running, " + ::text(queued) +
               " waiting for a processor, " + std::to_string(std::lround(pagesRead)) +
               " pages read from the disk";
    }
};

class Program {
public:
    explicit Program(char** arguments) {
        if (::posix_spawn(&pid_, arguments[0], nullptr, nullptr, arguments, environ) != 0) {
            throw std::runtime_error("the program does not start");
        }
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
            if (line.starts_with(name + ":")) {
                return std::atol(line.c_str() + name.size() + 1);
            }
        }
        return 0;
    }
    double residentMegabytes() const {
        return static_cast<double>(status(directory(), "VmRSS")) / 1024;
    }
    double filesMegabytes() const {
        return static_cast<double>(status(directory(), "RssFile")) / 1024;
    }
    /// How often each thread has been woken so far.
    std::map<std::string, long> wakeUps() const {
        std::map<std::string, long> counts;
        for (const auto& thread : std::filesystem::directory_iterator(directory() / "task")) {
            counts[thread.path().filename()] = status(thread.path(), "voluntary_ctxt_switches");
        }
        return counts;
    }
    /// The main thread so far.
    MainThread mainThread() const {
        std::ifstream stream(ownDirectory() / "schedstat");
        double running = 0;
        double queued = 0;
        stream >> running >> queued;
        return {running / 1e6, queued / 1e6,
                static_cast<double>(counts(ownDirectory() / "stat").pagesRead)};
    }
    double processorMilliseconds() const {
        return static_cast<double>(counts(directory() / "stat").ticks) * 1000 /
               static_cast<double>(::sysconf(_SC_CLK_TCK));
    }

private:
    struct Counts {
        long pagesRead = 0;
        long ticks = 0;
    };
    static Counts counts(const std::filesystem::path& file) {
        std::ifstream stream(file);
        std::string text{std::istreambuf_iterator<char>(stream), {}};
        text = text.substr(text.rfind(')') + 2);
        Counts found;
        long inKernel = 0;
        std::sscanf(text.c_str(), "%*c %*d %*d %*d %*d %*d %*u %*u %*u %ld %*u %ld %ld",
                    &found.pagesRead, &found.ticks, &inKernel);
        found.ticks += inKernel;
        return found;
    }

    /// What is told of all threads together …
    std::filesystem::path directory() const { return "/proc/" + std::to_string(pid_); }
    /// … and of the main thread alone.
    std::filesystem::path ownDirectory() const {
        return directory() / "task" / std::to_string(pid_);
    }
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
        if (reply && xcb_get_image_data_length(reply.get()) >= 4) {
            std::memcpy(&value, xcb_get_image_data(reply.get()), 4);
        }
        return value & 0xFFFFFF;
    }

    /// Looks at a pixel until it is no longer as it was. Not all the time: a display and a
    /// processor that answer nothing but this would be slower for the program.
    void waitForChange(std::int16_t x, std::int16_t y, std::uint32_t before,
                       const char* what) const {
        constexpr auto betweenLooks = std::chrono::microseconds(250);
        const auto start = Clock::now();
        while (pixel(x, y) == before) {
            if (Clock::now() - start > patience) {
                throw std::runtime_error(std::string(what) + " does not react");
            }
            std::this_thread::sleep_for(betweenLooks);
        }
    }

    /// To the window that has the keyboard.
    void pressWithControl(int keycode) const {
        const std::unique_ptr<xcb_get_input_focus_reply_t, decltype(&std::free)> focus(
            xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr),
            &std::free);
        if (!focus) {
            throw std::runtime_error("no window has the keyboard");
        }
        xcb_key_press_event_t event{};
        event.detail = static_cast<xcb_keycode_t>(keycode);
        event.root = root_;
        event.event = focus->focus;
        event.state = XCB_MOD_MASK_CONTROL;
        event.same_screen = 1;
        for (const int type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
            event.response_type = static_cast<std::uint8_t>(type);
            xcb_send_event(connection_, 0, focus->focus, XCB_EVENT_MASK_KEY_PRESS,
                           reinterpret_cast<const char*>(&event));
        }
        xcb_flush(connection_);
    }

private:
    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
};

class Item {
public:
    explicit Item(const std::string& service)
        : connection_(sdbus::createSessionBusConnection()),
          proxy_(sdbus::createProxy(*connection_, bus::ServiceName(service),
                                    sdbus::ObjectPath("/StatusNotifierItem"))) {}

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

/// The application as other launches find it, and its main window as a user does.
class MainWindow {
public:
    MainWindow(pid_t program, const Screen& screen)
        : screen_(screen), connection_(sdbus::createSessionBusConnection()) {
        for (const std::string& name : names()) {
            if (name.starts_with("app.vellmark.")) {
                identifier_ = name;
            }
        }
        if (identifier_.empty()) {
            throw std::runtime_error("process " + std::to_string(program) + " has no name");
        }
    }

    /// Until the pixels of its sidebar are on the screen.
    double show() {
        std::string path = "/" + identifier_;
        std::replace(path.begin(), path.end(), '.', '/');
        const std::uint32_t before = screen_.pixel(entryX, firstEntryY);
        const auto application = sdbus::createProxy(*connection_, bus::ServiceName(identifier_),
                                                    sdbus::ObjectPath(path));
        const auto start = Clock::now();
        application->callMethod("Activate")
            .onInterface("org.freedesktop.Application")
            .withArguments(std::map<std::string, sdbus::Variant>());
        return waitForChange(before, start);
    }

    /// Presses Control with a digit's key, until the first entry of the sidebar is chosen or is no
    /// longer.
    double choosePage(int digit) {
        const std::uint32_t before = screen_.pixel(entryX, firstEntryY);
        const auto start = Clock::now();
        screen_.pressWithControl(firstDigitKey + digit - 1);
        return waitForChange(before, start);
    }

    void close() { screen_.pressWithControl(closeKey); }

private:
    // In a window at the screen's corner: the ground of the first entry, beside its icon.
    static constexpr std::int16_t entryX = 17;
    static constexpr std::int16_t firstEntryY = 28;
    static constexpr int firstDigitKey = 10;
    static constexpr int closeKey = 25; // W

    std::vector<std::string> names() {
        std::vector<std::string> result;
        sdbus::createProxy(*connection_, bus::ServiceName("org.freedesktop.DBus"),
                           sdbus::ObjectPath("/org/freedesktop/DBus"))
            ->callMethod("ListNames")
            .onInterface("org.freedesktop.DBus")
            .storeResultsTo(result);
        return result;
    }

    double waitForChange(std::uint32_t before, Clock::time_point start) const {
        screen_.waitForChange(entryX, firstEntryY, before, "the main window");
        return milliseconds(Clock::now() - start);
    }

    const Screen& screen_;
    std::unique_ptr<sdbus::IConnection> connection_;
    std::string identifier_;
};

std::string waitForItem(NotifierPanel& panel) {
    const std::string service = panel.waitForItem(patience);
    if (service.empty()) {
        throw std::runtime_error("no item has come");
    }
    return service;
}

void measureLaunch(NotifierPanel& panel, char** arguments) {
    std::vector<double> times;
    std::vector<double> running;
    std::vector<double> queued;
    std::vector<double> pagesRead;
    for (int launch = 0; launch < launches; ++launch) {
        panel.forget();
        const auto start = Clock::now();
        const Program program(arguments);
        Item item(waitForItem(panel));
        if (item.iconSizes() == 0) {
            throw std::runtime_error("the item has no icon");
        }
        times.push_back(milliseconds(Clock::now() - start));
        const MainThread thread = program.mainThread();
        running.push_back(thread.running);
        queued.push_back(thread.queued);
        pagesRead.push_back(thread.pagesRead);
    }
    printTime("launch to drawn item", median(times), 50,
              MainThread{median(running), median(queued), median(pagesRead)}.text() +
                  ", medians of " + std::to_string(launches));
}

/// Toggles the popover and waits until a pixel inside it has changed.
double measureToggle(Item& item, const Screen& screen) {
    const std::uint32_t before = screen.pixel(640, 60);
    const auto start = Clock::now();
    item.activate();
    screen.waitForChange(640, 60, before, "the popover");
    return milliseconds(Clock::now() - start);
}

struct Opening {
    double time;
    MainThread thread;
};

/// Opens and closes the popover, with pauses: a click right after the one that closed is refused.
Opening measureOpening(const Program& program, Item& item, const Screen& screen) {
    constexpr auto pause = std::chrono::milliseconds(400);
    const MainThread before = program.mainThread();
    Opening opening{.time = measureToggle(item, screen)};
    opening.thread = program.mainThread() - before;
    std::this_thread::sleep_for(pause);
    measureToggle(item, screen);
    std::this_thread::sleep_for(pause);
    return opening;
}

void printOpening(const char* what, const Opening& opening, const std::string& note = {}) {
    printTime(what, opening.time, 25, opening.thread.text() + note);
}

/// Of a program that has been idle for a minute.
Opening measureFirstOpening(NotifierPanel& panel, char** arguments, const Screen& screen) {
    panel.forget();
    const Program program(arguments);
    Item item(waitForItem(panel));
    std::this_thread::sleep_for(firstRefresh + idleTime);
    return measureOpening(program, item, screen);
}

void printFirstOpening(std::vector<Opening> openings) {
    std::ranges::sort(openings, {}, &Opening::time);
    printOpening("popover the first time", openings[openings.size() / 2],
                 ", median of " + std::to_string(openings.size()) + " launches");
}

void measurePopover(const Program& program, Item& item, const Screen& screen) {
    const double kept = program.residentMegabytes();
    std::vector<double> times;
    for (int opening = 0; opening < openings; ++opening) {
        times.push_back(measureOpening(program, item, screen).time);
    }
    printTime("popover on screen", median(times), 25, "median of " + std::to_string(openings));
    std::this_thread::sleep_for(release);
    printOpening("  after a pause", measureOpening(program, item, screen));
    std::this_thread::sleep_for(release);
    printLimited("memory after the popover", program.residentMegabytes(), "MB", 32,
                 text(kept) + " before it was let go");
}

/// A wake-up is a moment in which any thread runs: while one thread asks another, or the display,
/// the processor has no time to go to sleep. What lies less than two looks apart is one moment.
void measureIdle(const Program& program) {
    constexpr auto look = std::chrono::milliseconds(20);
    const double processor = program.processorMilliseconds();
    const auto end = Clock::now() + idleTime;
    auto last = program.wakeUps();
    const auto first = last;
    long moments = 0;
    bool wasAwake = false;
    while (Clock::now() < end) {
        std::this_thread::sleep_for(look);
        auto current = program.wakeUps();
        const bool isAwake = current != last;
        moments += isAwake && !wasAwake ? 1 : 0;
        wasAwake = isAwake;
        last = std::move(current);
    }
    long switches = 0;
    for (const auto& [thread, count] : last) {
        const auto known = first.find(thread);
        switches += count - (known != first.end() ? known->second : 0);
    }
    printLimited("wake-ups in 60 s idle", static_cast<double>(moments), "", 1,
                 std::to_string(switches) + " times one of its threads waited");
    print("processor in 60 s idle", program.processorMilliseconds() - processor, "ms");
}

void measureItem(NotifierPanel& panel, char** arguments) {
    const Screen screen;
    std::vector<Opening> first;
    while (first.size() + 1 < firstOpenings) {
        first.push_back(measureFirstOpening(panel, arguments, screen));
    }
    panel.forget();
    const Program program(arguments);
    Item item(waitForItem(panel));
    std::this_thread::sleep_for(firstRefresh);
    printLimited("resident memory", program.residentMegabytes(), "MB", 32,
                 text(program.filesMegabytes()) + " of it files shared with others");
    measureIdle(program);
    first.push_back(measureOpening(program, item, screen));
    printFirstOpening(std::move(first));
    measurePopover(program, item, screen);
}

/// In a program of its own, so that no timed refresh falls into its idle minute.
void measureMainWindow(NotifierPanel& panel, char** arguments) {
    constexpr auto pause = std::chrono::milliseconds(400);
    constexpr int lastPage = 9;
    constexpr double memoryNoise = 2;
    panel.forget();
    const Program program(arguments);
    waitForItem(panel);
    std::this_thread::sleep_for(firstRefresh);
    const double idleMemory = program.residentMegabytes();
    const Screen screen;
    MainWindow window(program.pid(), screen);
    printTime("window on screen", window.show(), 150);
    std::this_thread::sleep_for(pause);
    double slowestFirst = 0;
    int slowestPage = 0;
    std::vector<double> times;
    for (int round = 0; round < 3; ++round) {
        for (int page = 2; page <= lastPage; ++page) {
            const double there = window.choosePage(page);
            std::this_thread::sleep_for(pause);
            const double back = window.choosePage(1);
            std::this_thread::sleep_for(pause);
            if (round == 0 && there > slowestFirst) {
                slowestFirst = there;
                slowestPage = page;
            } else if (round > 0) {
                times.insert(times.end(), {there, back});
            }
        }
    }
    printTime("page switch", median(times), 50,
              "the slowest " + text(*std::max_element(times.begin(), times.end())));
    printTime("  a page's first time", slowestFirst, 50,
              "the slowest of them, page " + std::to_string(slowestPage));
    std::this_thread::sleep_for(firstRefresh);
    measureIdle(program);
    window.close();
    std::this_thread::sleep_for(release);
    printLimited("memory after the window", program.residentMegabytes(), "MB", 32,
                 text(idleMemory) + " before it was opened");
    if (program.residentMegabytes() > idleMemory + memoryNoise) {
        print("  grown by", program.residentMegabytes() - idleMemory, "MB");
    }
}

} // namespace

int main(int argc, char** argv) {
    bareWindow = argc < 3 ? 0 : std::strtod(argv[1], nullptr);
    if (bareWindow <= 0) {
        std::fputs("usage: vellmark-panel-probe BARE-WINDOW PROGRAM [ARGUMENT...]\n"
                   "    BARE-WINDOW: milliseconds of a bare Qt window to its first painting\n",
                   stderr);
        return 2;
    }
    try {
        NotifierPanel panel;
        char** arguments = argv + 2;
        measureLaunch(panel, arguments);
        measureItem(panel, arguments);
        measureMainWindow(panel, arguments);
    } catch (const std::exception& error) {
        std::printf("failed: %s\n", error.what());
        return 1;
    }
    return isEveryLimitKept ? 0 : 1;
}
