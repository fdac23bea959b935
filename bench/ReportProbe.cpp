// What the support report costs the window, with a log of nine megabytes: how long until it opens
// and until the text is there, and the longest time in which the window could not have answered.
//
//   vellmark-report-probe [MEGABYTES]

#include "app/QtExecutor.h"
#include "app/SupportReportWindowController.h"
#include "store/ActivityLines.h"
#include "ui/report/ReportTextView.h"
#include "ui/report/SupportReportView.h"

#include <QApplication>
#include <QScrollBar>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>

namespace vellmark {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

/// A log of a month: what is written by itself, and now and then a failure that says too much.
void writeLog(const std::filesystem::path& file, std::size_t size) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream log(file, std::ios::binary);
    const TimeZone zone = TimeZone::system();
    const Instant now = ReferenceClock::now();
    const std::size_t lines = size / 80;
    for (std::size_t line = 0; line < lines; ++line) {
        const Seconds age(29.0 * 86400 * static_cast<double>(lines - line) /
                          static_cast<double>(lines));
        ActivityEntry entry;
        entry.time = now - age;
        entry.level = line % 20 == 0 ? ActivityEntry::Level::error : ActivityEntry::Level::info;
        entry.agent = AgentProviderID::codex();
        entry.text = line % 20 == 0 ? "anna@example.org: /Users/anna/.codex/auth.json was refused, "
                                      "token: abcdefghijklmnopqrstuvwxyz"
                                    : "Session 78% left, Week 71% left (2.1 s)";
        log << ActivityLines::text(entry, zone) << '\n';
    }
}

/// What this thread, or the whole program, has computed: the same however busy the machine is.
Milliseconds computed(clockid_t clock = CLOCK_THREAD_CPUTIME_ID) {
    timespec spent{};
    ::clock_gettime(clock, &spent);
    return std::chrono::seconds(spent.tv_sec) + std::chrono::nanoseconds(spent.tv_nsec);
}

/// Lets the window's loop turn until `isDone`, and tells how long one turn took at most.
struct Waiting {
    Milliseconds total{};
    Milliseconds longest{};
    Milliseconds longestComputed{};
    Milliseconds elsewhere{};

    explicit Waiting(const std::function<void()>& deed, const std::function<bool()>& isDone) {
        const auto start = Clock::now();
        auto turn = start;
        auto computedBefore = computed();
        const auto others = [] { return computed(CLOCK_PROCESS_CPUTIME_ID) - computed(); };
        const auto othersBefore = others();
        deed();
        do {
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            QCoreApplication::sendPostedEvents();
            const auto now = Clock::now();
            longest = std::max<Milliseconds>(longest, now - turn);
            longestComputed = std::max(longestComputed, computed() - computedBefore);
            turn = now;
            computedBefore = computed();
        } while (!isDone());
        total = Clock::now() - start;
        elsewhere = others() - othersBefore;
    }
    void report(const char* what) const {
        std::printf("%-20s %7.1f ms, computed elsewhere %6.1f ms; longest turn %5.1f ms, "
                    "computing %5.1f ms\n",
                    what, total.count(), elsewhere.count(), longest.count(),
                    longestComputed.count());
    }
};

void measure(std::size_t size) {
    const QTemporaryDir directory;
    const Machine machine = Machine::sandbox(directory.path().toStdString());
    writeLog(machine.activityLogFile(), size);
    QtExecutor executor;
    const auto preferences = makePreferences(machine);
    LanguageManager language(*preferences, UserLocale::of(machine.environment), "en");
    WindowPresenceController presence([](ActivationPolicy) {});
    AgentUsageStore store({.machine = machine,
                           .registrations = providerRegistry(),
                           .words = [&language] { return language.words(); },
                           .agents = {},
                           .way = {}},
                          executor, *preferences);
    SupportReportWindowController controller({.store = store,
                                              .machine = machine,
                                              .executor = executor,
                                              .preferences = *preferences,
                                              .language = language,
                                              .presence = presence,
                                              .attachMenu = [](QWidget&) {}});
    store.flush();
    SupportReportModel& model = controller.model();
    const auto hasText = [&model] { return model.text() != nullptr; };
    Waiting([&controller] { controller.show(); }, [] { return true; }).report("open the window");
    Waiting([] {}, hasText).report("build the report");
    std::printf("%-20s %7.1f MB, %zu places\n", "",
                static_cast<double>(model.text()->text.size()) / 1e6, model.text()->places.size());

    const auto* former = model.text().get();
    const auto isOther = [&model, &former] { return model.text().get() != former; };
    Waiting([&model] { model.setIncludeEmails(true); }, isOther).report("leave addresses in");
    Waiting([&model] { model.lookFor("refused"); },
            [&model] { return model.content().matches != nullptr; })
        .report("look for a word");
    SupportReportView* view = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        view = view != nullptr ? view : dynamic_cast<SupportReportView*>(window);
    }
    QScrollBar* bar = view->text()->verticalScrollBar();
    Waiting([bar] { bar->setValue(bar->maximum() / 2); }, [] { return true; }).report("scroll");
    Waiting([view] { view->resize(view->width() - 90, view->height()); }, [] { return true; })
        .report("resize");
    Waiting([&model] { model.copy(); }, [] { return true; }).report("copy");
    controller.cancel();
}

} // namespace
} // namespace vellmark

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const double megabytes = argc > 1 ? std::atof(argv[1]) : 9;
    vellmark::measure(static_cast<std::size_t>(megabytes * 1e6));
    return 0;
}
