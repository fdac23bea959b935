// What a chart costs over a year of history: from 200,000 samples to the drawn picture, and one
// frame while the pointer moves over it; and the history page as a whole. Each figure stands beside
// its limit. Needs no display.

#include "presentation/HistoryPageContent.h"
#include "ui/ChartView.h"

#include <QApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

using namespace vellmark;
using Clock = std::chrono::steady_clock;

constexpr int sampleCount = 200'000;
constexpr int runs = 9;
constexpr double year = 365 * 86'400.0;
constexpr double week = 7 * 86'400.0;
/// In the window as it is at first, and in one that fills a large screen.
constexpr QSize firstSize(784, 350);
constexpr QSize largeSize(1400, 700);

bool isEveryLimitKept = true;

double median(const std::function<void()>& work) {
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        const auto start = Clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::ranges::sort(times);
    return times[times.size() / 2];
}

void print(const std::string& what, double value, double limit) {
    isEveryLimitKept = isEveryLimitKept && value <= limit;
    std::printf("%-44s %7.2f ms  %.2f of the limit of %.1f%s\n", what.c_str(), value, value / limit,
                limit, value > limit ? ": MISSED" : "");
}

struct Made {
    Instant now = Instant(Seconds(785'339'280));
    UsageState state;
    UsageHistory history;
    Localization words{"en", "en_US", "Europe/Berlin"};

    Made() {
        const AgentProviderID claude = AgentProviderID::claude();
        AgentUsageSnapshot snapshot;
        snapshot.id = claude;
        snapshot.windows = {{"weekly", 40, 7 * 24 * 60.0, now + Seconds(week / 3)}};
        snapshot.source = SnapshotSource::live;
        snapshot.updatedAt = now;
        state.snapshots = {snapshot};
        state.enabledProviderIDs = {claude};
        state.providerOrder = {claude};
        state.lastSuccess[claude] = now;
        HistorySeries series;
        for (int index = 0; index < sampleCount; ++index) {
            const double ago = year * (1 - (index + 1.0) / sampleCount);
            const double phase = std::fmod(year - ago, week) / week;
            const Instant at = now - Seconds(ago);
            series.add(claude.rawValue, "weekly",
                       HistoryPoint(at, std::round(100 * phase * phase),
                                    at + Seconds(week * (1 - phase))));
        }
        history.replace(std::move(series));
    }
};

/// At two pixels a point.
void measureDrawing(const ChartContent& content, QSize size, double reduction) {
    const std::string where =
        ", " + std::to_string(size.width()) + " x " + std::to_string(size.height());
    ChartView view(ChartView::Size::large);
    view.resize(size);
    view.setContent(content);
    QImage image(size * 2, QImage::Format_RGB32);
    image.setDevicePixelRatio(2);
    const auto draw = [&] { view.render(&image); };
    draw(); // fonts and formats are found once
    const double drawing = median(draw);
    double place = 0.1;
    view.readAt(place);
    draw();
    const double frame = median([&] {
        place += 0.05;
        view.readAt(place);
        draw();
    });
    print("drawn" + where, drawing, 100);
    print("with its samples" + where, reduction + drawing, 100);
    print("a frame while the pointer reads" + where, frame, 1000.0 / 60);
}

void measure(const Made& made) {
    const ChartRequest request{
        .agent = AgentProviderID::claude(), .windowIDs = {"weekly"}, .range = ChartRange::year};
    ChartContent content;
    const double reduction = median(
        [&] { content = chartContent(made.state, made.history, request, made.now, made.words); });
    print("a year's chart from its samples", reduction, 100);
    measureDrawing(content, firstSize, reduction);
    measureDrawing(content, largeSize, reduction);
    print("the page's content", median([&] {
              static_cast<void>(historyPageContent(made.state, made.history,
                                                   {.agent = request.agent, .range = request.range},
                                                   made.now, made.words));
          }),
          50);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    measure(Made());
    return isEveryLimitKept ? 0 : 1;
}
