#include "screenshots/ChartSheet.h"

#include "screenshots/SampleHistory.h"
#include "screenshots/SampleStates.h"
#include "ui/ChartView.h"
#include "ui/kit/Theme.h"

#include <QPainter>

#include <vector>

namespace vellmark {

namespace {

constexpr QSize smallSize(368, 128);
constexpr QSize largeSize(784, 350);
constexpr int gap = 32;

struct Shown {
    ChartRequest request;
    std::optional<double> readAt;
};

std::vector<Shown> shownCharts() {
    const AgentProviderID claude = AgentProviderID::claude();
    const AgentProviderID antigravity = AgentProviderID::antigravity();
    const auto ahead = [](AgentProviderID agent, std::string window, ChartRange range) {
        return ChartRequest{.agent = std::move(agent),
                            .windowIDs = {std::move(window)},
                            .range = range,
                            .looksAhead = true};
    };
    return {
        {ahead(claude, "session", ChartRange::day), {}},
        {ahead(claude, "weekly", ChartRange::week), 0.3},
        {ahead(claude, "fable-weekly", ChartRange::week), {}},
        {ahead(antigravity, "pool:Gemini Models|5h", ChartRange::day), 0.9},
        {{claude, {"weekly", "fable-weekly"}, ChartRange::month}, 0.245},
        {{claude, {"weekly", "fable-weekly", "session"}, ChartRange::week}, {}},
        {{claude, {"weekly"}, ChartRange::month, false, true}, {}},
        {{claude, {"session"}, ChartRange::month}, 0.8},
        {{claude, {"session"}, ChartRange::day}, {}},
        {{claude, {"weekly", "session"}, ChartRange::quarter}, {}},
        {{claude, {"weekly"}, ChartRange::year}, {}},
    };
}

} // namespace

QImage drawChartSheet(const std::string& language, double scale) {
    const UsageState state = samples::normal();
    UsageHistory history;
    samples::addHistory(history, state);
    QImage image(QSize(2 * gap + largeSize.width(),
                       3 * smallSize.height() + 3 * gap + 7 * (largeSize.height() + gap)) *
                     scale,
                 QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(kit::color(kit::ColorRole::card));
    QPainter painter(&image);
    int index = 0;
    int top = gap;
    for (const Shown& shown : shownCharts()) {
        const bool isSmall = shown.request.looksAhead;
        ChartView view(isSmall ? ChartView::Size::small : ChartView::Size::large);
        view.setContent(
            chartContent(state, history, shown.request, samples::now(), samples::words(language)));
        view.resize(isSmall ? smallSize : largeSize);
        QPalette palette;
        palette.setColor(QPalette::Window, kit::color(kit::ColorRole::card));
        view.setPalette(palette);
        view.readAt(shown.readAt);
        const bool isSecond = isSmall && index % 2 == 1;
        view.render(&painter, QPoint(gap + (isSecond ? smallSize.width() + gap + 16 : 0), top));
        if (!isSmall || isSecond) {
            top += view.height() + gap;
        }
        ++index;
    }
    return image;
}

} // namespace vellmark
