// What windows cost: the activity page with 50,000 entries, listed one by one; the setup assistant
// from nothing to its first picture.

#include "screenshots/SampleActivity.h"
#include "screenshots/SampleSetup.h"
#include "screenshots/SampleStates.h"
#include "ui/kit/Motion.h"
#include "ui/setup/SetupAssistantView.h"
#include "ui/window/ActivityList.h"
#include "ui/window/ActivityPage.h"

#include <QApplication>
#include <QLineEdit>
#include <QScrollBar>
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace vellmark {
namespace {

constexpr std::size_t entryCount = 50'000;
/// What the first window leaves beside the sidebar.
constexpr QSize pageSize(872, 760);

/// The page with its entries; folded as it is at first, or listed one by one.
class ShownPage {
public:
    ShownPage()
        : words_(samples::words("en")), entries_(std::make_shared<std::vector<ActivityEntry>>(
                                            samples::longActivity(entryCount, words_))) {
        page_.resize(pageSize);
        page_.show();
        show(entries_->size());
    }

    void show(std::size_t count) {
        ActivityPageContent content =
            activityPageContent(samples::normal(), samples::now(), words_);
        content.entries = entries_;
        content.entryCount = count;
        page_.setContent(content);
        settle();
    }
    void lookFor(const char* words) {
        page_.findChild<QLineEdit*>()->setText(words);
        settle();
    }
    void hide() {
        page_.hide();
        settle();
    }
    void reveal() { page_.show(); }
    QScrollBar& bar() { return *page_.list().verticalScrollBar(); }
    void draw() { page_.list().viewport()->repaint(); }
    std::size_t count() const { return entries_->size(); }

private:
    static void settle() {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }

    Localization words_;
    ActivityPageActions actions_;
    ActivityPage page_{actions_, nullptr};
    std::shared_ptr<std::vector<ActivityEntry>> entries_;
};

/// One frame of scrolling by the wheel: every row of the page is drawn anew.
void scrollActivity(benchmark::State& state) {
    ShownPage page;
    page.lookFor("e");
    int place = 0;
    for (auto _ : state) {
        place = (place + 1'237) % page.bar().maximum();
        page.bar().setValue(place);
        page.draw();
    }
}
BENCHMARK(scrollActivity)->Unit(benchmark::kMillisecond);

/// One key in the search field.
void searchActivity(benchmark::State& state) {
    ShownPage page;
    bool isOther = false;
    for (auto _ : state) {
        page.lookFor((isOther = !isOther) ? "codex" : "session 78");
    }
}
BENCHMARK(searchActivity)->Unit(benchmark::kMillisecond);

/// The page takes its entries and draws itself.
void openActivity(benchmark::State& state) {
    ShownPage page;
    for (auto _ : state) {
        state.PauseTiming();
        page.hide();
        state.ResumeTiming();
        page.reveal();
        page.show(page.count());
        page.draw();
    }
}
BENCHMARK(openActivity)->Unit(benchmark::kMillisecond);

/// A refresh has ended while everything is listed.
void followActivity(benchmark::State& state) {
    ShownPage page;
    page.lookFor("e");
    std::size_t count = page.count() - 5;
    for (auto _ : state) {
        state.PauseTiming();
        page.show(count); // begins anew
        state.ResumeTiming();
        page.show(count + 5);
        page.draw();
    }
}
BENCHMARK(followActivity)->Unit(benchmark::kMillisecond);

void openSetup(benchmark::State& state) {
    const Localization words = samples::words("de");
    const SetupAssistantState setup = samples::failedSetup(words);
    for (auto _ : state) {
        SetupAssistantActions actions;
        actions.lookAgain = [] {};
        SetupAssistantView view(std::move(actions));
        view.setContent(setupAssistantContent(setup, samples::now(), words));
        view.show();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        view.repaint();
    }
}
BENCHMARK(openSetup)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vellmark

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    vellmark::kit::motion::setReduced(true);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
