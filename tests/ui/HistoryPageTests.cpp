#include "screenshots/SampleHistory.h"
#include "screenshots/SampleStates.h"
#include "ui/ChartView.h"
#include "ui/QtEnvironment.h"
#include "ui/kit/ChartPainting.h"
#include "ui/kit/HeatMap.h"
#include "ui/window/HistoryCards.h"
#include "ui/window/HistoryPage.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

class History : public ::testing::Test {
protected:
    History() {
        actions.chooseAgent = recorded.note("agent");
        actions.chooseRange = recorded.note("range");
        actions.toggle = recorded.note("toggle");
        actions.save = [this](const std::function<std::string()>& drawn) { picture = drawn(); };
        samples::addHistory(history, state);
        show({.agent = AgentProviderID::claude()});
    }

    void show(const HistoryPageChoice& choice) {
        page.resize(872, 760);
        page.setContent(
            historyPageContent(state, history, choice, samples::now(), samples::words("en")));
        page.show();
    }
    QAbstractButton* button(const QString& name) { return partNamed(page, name); }
    static void pointAt(QWidget* widget, QPointF place) {
        sendMouse(*widget, QEvent::MouseMove, place, Qt::NoButton);
    }

    AgentUIActions program;
    HistoryPageActions actions;
    RecordedActions recorded;
    std::string picture;
    UsageState state = samples::normal();
    UsageHistory history;
    HistoryPage page{program, actions, nullptr};
};

TEST_F(History, ControlsDoWhatTheySay) {
    button("Antigravity")->click();
    button("90 d")->click();
    button("Session")->click();
    button("30 d before")->click();
    EXPECT_EQ(recorded.calls, (std::vector<std::string>{"agent antigravity", "range 90d",
                                                        "toggle session", "toggle "}));
    button("Export …")->click();
    const QImage drawn = QImage::fromData(QByteArray::fromStdString(picture), "PNG");
    EXPECT_EQ(drawn.size(), page.chartCard()->size() * 2);
}

TEST_F(History, TheChartIsReadByPointerAndByKeys) {
    ChartView* chart = page.chartCard()->chart();
    EXPECT_FALSE(chart->readout());
    pointAt(chart, {chart->width() * 0.3, 100});
    ASSERT_TRUE(chart->readout());
    EXPECT_EQ(chart->readout()->rows.size(), 2u);
    const double pointed = chart->readout()->x;
    pressKey(*chart, Qt::Key_Left);
    EXPECT_LT(chart->readout()->x, pointed);
    pressKey(*chart, Qt::Key_Right);
    EXPECT_NEAR(chart->readout()->x, pointed, 0.01);
    pressKey(*chart, Qt::Key_End);
    EXPECT_EQ(chart->readout()->x, 1);
    EXPECT_EQ(chart->readout()->rows.at(0).value, "29% left");
    const QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(chart);
    EXPECT_EQ(spoken->role(), QAccessible::Chart);
    EXPECT_TRUE(spoken->text(QAccessible::Name).startsWith("Claude, last 30 days"));
    EXPECT_TRUE(spoken->text(QAccessible::Value).contains("Week 29% left"));
    pressKey(*chart, Qt::Key_Escape);
    EXPECT_FALSE(chart->readout());
}

TEST_F(History, TheHeatMapIsReadByPointerAndByKeys) {
    kit::HeatMap* map = page.heatCard()->map();
    const QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(map);
    EXPECT_EQ(spoken->text(QAccessible::Name), "Use by weekday and hour");
    pressKey(*map, Qt::Key_Down);
    EXPECT_EQ(map->cell(), (kit::HeatMap::Cell{0, 0})) << "the first key reads the first cell";
    pressKey(*map, Qt::Key_Down);
    pressKey(*map, Qt::Key_End);
    EXPECT_EQ(map->cell(), (kit::HeatMap::Cell{1, 23}));
    pressKey(*map, Qt::Key_Right);
    EXPECT_EQ(map->cell()->column, 23) << "no cell beyond";
    EXPECT_TRUE(spoken->text(QAccessible::Value).startsWith("Mon, 11 PM: "));
    pointAt(map, {map->width() / 2.0, 4});
    EXPECT_EQ(map->cell()->row, 0);
    pointAt(map, {2, 4});
    EXPECT_FALSE(map->cell()) << "the names are no cells";
}

TEST_F(History, LetsThePointsGoWhenItIsLeft) {
    EXPECT_FALSE(page.chartCard()->chart()->content().lines.empty());
    page.hide();
    page.pageHidden();
    EXPECT_TRUE(page.chartCard()->chart()->content().lines.empty());
    show({.agent = AgentProviderID::codex(), .range = ChartRange::year});
    EXPECT_EQ(page.chartCard()->chart()->content().agent, AgentProviderID::codex());
}

constexpr QSize size(400, 120);

QImage drawn(const kit::ChartLook& look, const kit::ChartLayout& layout) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    kit::drawChart(painter, look, layout, kit::ColorRole::card);
    return image;
}

TEST(Chart, TheNamesOfNeighbouringSpansDoNotLieOverEachOther) {
    bool areBothNamed = false;
    for (double width = 0.01; width < 0.3; width += 0.005) {
        kit::ChartLook look;
        look.spans = {{.begin = 0.2, .end = 0.2 + width, .isHatched = true},
                      {.begin = 0.2 + width, .end = 0.2 + 2 * width, .isHatched = true}};
        const kit::ChartLayout layout = kit::chartLayout(look, size);
        const QImage bare = drawn(look, layout);
        look.spans[0].label = QStringLiteral("stale");
        const QImage first = drawn(look, layout);
        look.spans[1].label = look.spans[0].label;
        const QImage both = drawn(look, layout);
        areBothNamed = first != bare && both != first;
        for (int x = 0; x < size.width(); ++x) {
            for (int y = 0; y < size.height(); ++y) {
                ASSERT_TRUE(first.pixel(x, y) == bare.pixel(x, y) ||
                            both.pixel(x, y) == first.pixel(x, y))
                    << width << " " << x << " " << y;
            }
        }
    }
    EXPECT_TRUE(areBothNamed) << "there is room at last";
}

} // namespace
} // namespace vellmark::tests
