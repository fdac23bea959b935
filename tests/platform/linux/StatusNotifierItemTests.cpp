#include "platform/linux/OpenBus.h"
#include "platform/linux/PrivateBus.h"
#include "platform/linux/StatusNotifierItem.h"
#include "support/Matchers.h"
#include "support/NotifierPanel.h"
#include "support/PollLoop.h"

#include <atomic>
#include <thread>
#include <unistd.h>

namespace vellmark::tests {
namespace {

constexpr auto itemInterface = "org.kde.StatusNotifierItem";
constexpr auto menuInterface = "com.canonical.dbusmenu";

using Pixmap = sdbus::Struct<std::int32_t, std::int32_t, std::vector<std::uint8_t>>;
using ToolTip = sdbus::Struct<std::string, std::vector<Pixmap>, std::string, std::string>;
using Properties = std::map<std::string, sdbus::Variant>;
using Layout = sdbus::Struct<std::int32_t, Properties, std::vector<sdbus::Variant>>;

class StatusNotifierItemTest : public BusTest {
protected:
    void SetUp() override {
        BusTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        item_ = std::make_unique<StatusNotifierItem>(
            loop_, "vellmark", "Vellmark",
            StatusNotifierItem::Handlers{
                .activate = [this](int x, int y) { activated_.emplace_back(x, y); },
                .menuItemChosen = [this](const std::string& action) { chosen_.push_back(action); },
                .hostChanged = [this](bool isShown) { shown_.push_back(isShown); }});
        ASSERT_TRUE(item_->isOnBus());
    }

    /// Calls the item as a panel does, while this thread answers.
    template<typename Call>
    void ask(const char* path, Call&& call) {
        std::atomic<bool> isDone = false;
        std::exception_ptr failure;
        std::thread panel([&] {
            try {
                const auto connection = sdbus::createSessionBusConnection();
                const auto proxy = sdbus::createProxy(*connection, bus::ServiceName(name()),
                                                      sdbus::ObjectPath(path));
                call(*proxy);
            } catch (...) {
                failure = std::current_exception();
            }
            isDone = true;
        });
        EXPECT_TRUE(loop_.turnUntil([&] { return isDone.load(); }));
        panel.join();
        if (failure) {
            std::rethrow_exception(failure);
        }
    }

    template<typename Value>
    Value property(const char* property) {
        sdbus::Variant value;
        ask("/StatusNotifierItem", [&](sdbus::IProxy& item) {
            value = item.getProperty(property).onInterface(itemInterface);
        });
        return value.get<Value>();
    }

    static std::string name() {
        return std::string(itemInterface) + "-" + std::to_string(::getpid()) + "-1";
    }

    PollLoop loop_;
    std::unique_ptr<StatusNotifierItem> item_;
    std::vector<std::pair<int, int>> activated_;
    std::vector<std::string> chosen_;
    std::vector<bool> shown_;
};

TEST_F(StatusNotifierItemTest, FollowsPanelsThatComeLaterAndRestart) {
    ASSERT_TRUE(loop_.turnUntil([&] { return !shown_.empty(); }));
    EXPECT_THAT(shown_, ElementsAre(false));
    for (int start = 0; start < 2; ++start) {
        {
            const NotifierPanel panel;
            ASSERT_TRUE(loop_.turnUntil([&] { return shown_.back(); }));
            EXPECT_EQ(panel.registered(), name());
        }
        ASSERT_TRUE(loop_.turnUntil([&] { return !shown_.back(); }));
    }
    EXPECT_THAT(shown_, ElementsAre(false, true, false, true, false));
}

// Otherwise the program shows itself at another place as well.
TEST_F(StatusNotifierItemTest, APanelThatStoodStillShowsItWhenItGoesOn) {
    item_.reset();
    NotifierPanel panel;
    panel.freeze();
    shown_.clear();
    SetUp();
    const auto until = std::chrono::steady_clock::now() + busAnswerLimit * 1.1;
    ASSERT_TRUE(loop_.turnUntil([&] { return std::chrono::steady_clock::now() > until; }));
    EXPECT_THAT(shown_, IsEmpty());
    panel.thaw();
    ASSERT_TRUE(loop_.turnUntil([&] { return !shown_.empty(); }));
    EXPECT_THAT(shown_, ElementsAre(true));
}

TEST_F(StatusNotifierItemTest, ShowsIconAndToolTipAndTellsTheClicksPlace) {
    item_->setIcon({{.side = 1, .pixels = {0x80FF7F01}}});
    item_->setToolTip("Claude & GPT <93%>");
    const auto icon = property<std::vector<Pixmap>>("IconPixmap");
    ASSERT_EQ(icon.size(), 1U);
    EXPECT_EQ(icon.front().get<0>(), 1);
    EXPECT_THAT(icon.front().get<2>(), ElementsAre(0x80, 0xFF, 0x7F, 0x01));
    const auto toolTip = property<ToolTip>("ToolTip");
    // The title is plain text, and nothing stands under it.
    EXPECT_EQ(toolTip.get<2>(), "Claude & GPT <93%>");
    EXPECT_EQ(toolTip.get<3>(), "");
    EXPECT_FALSE(property<bool>("ItemIsMenu"));
    // Panels show the title where there is no tooltip; neither is to lie over the popover.
    EXPECT_EQ(property<std::string>("Title"), "Vellmark");
    item_->setToolTip("");
    EXPECT_EQ(property<std::string>("Title"), "");
    item_->setToolTip("again");
    EXPECT_EQ(property<std::string>("Title"), "Vellmark");
    ask("/StatusNotifierItem", [](sdbus::IProxy& item) {
        item.callMethod("Activate").onInterface(itemInterface).withArguments(1200, 13);
    });
    EXPECT_THAT(activated_, ElementsAre(std::pair(1200, 13)));
}

TEST_F(StatusNotifierItemTest, OffersItsMenu) {
    item_->setMenu({{"Open_it", "open"},
                    {},
                    {"Quit", "quit"},
                    {"Claude", "", true, {{"Session", "agent/claude"}, {"Week", "week"}}}});
    const auto layout = [&] {
        std::uint32_t revision = 0;
        Layout root;
        ask("/StatusNotifierItem/Menu", [&](sdbus::IProxy& menu) {
            menu.callMethod("GetLayout")
                .onInterface(menuInterface)
                .withArguments(0, -1, std::vector<std::string>())
                .storeResultsTo(revision, root);
        });
        return root;
    };
    const auto click = [&](std::int32_t id) {
        ask("/StatusNotifierItem/Menu", [&](sdbus::IProxy& menu) {
            menu.callMethod("Event")
                .onInterface(menuInterface)
                .withArguments(id, std::string("clicked"), sdbus::Variant(0), std::uint32_t{0});
        });
    };
    const std::vector<sdbus::Variant> children = layout().get<2>();
    ASSERT_EQ(children.size(), 4U);
    const Layout open = children[0].get<Layout>();
    EXPECT_EQ(open.get<1>().at("label").get<std::string>(), "Open__it");
    EXPECT_EQ(children[1].get<Layout>().get<1>().at("type").get<std::string>(), "separator");
    click(open.get<0>());
    click(children[1].get<Layout>().get<0>());
    EXPECT_THAT(chosen_, ElementsAre("open"));
    const Layout agent = children[3].get<Layout>();
    EXPECT_EQ(agent.get<1>().at("children-display").get<std::string>(), "submenu");
    ASSERT_EQ(agent.get<2>().size(), 2U);
    click(agent.get<0>()); // it only opens
    click(agent.get<2>()[1].get<Layout>().get<0>());
    EXPECT_THAT(chosen_, ElementsAre("open", "week"));
    chosen_ = {"open"};

    // A click that was meant for the menu before hits nothing in the new one.
    item_->setMenu({{"Beenden", "quit"}});
    click(open.get<0>());
    EXPECT_THAT(chosen_, ElementsAre("open"));
    click(layout().get<2>().front().get<Layout>().get<0>());
    EXPECT_THAT(chosen_, ElementsAre("open", "quit"));
}

TEST_F(StatusNotifierItemTest, OutlivesTheBusAndIsShownOnTheNext) {
    {
        NotifierPanel panel;
        ASSERT_TRUE(loop_.turnUntil([&] { return !shown_.empty() && shown_.back(); }));
        panel.freeze();
        bus_->end();
    }
    EXPECT_TRUE(loop_.turnUntil([&] { return !shown_.back(); }));
    item_->setIcon({{.side = 1, .pixels = {0}}});
    item_->setToolTip("still here");
    item_->setMenu({{"Quit", "quit"}});
    bus_->start();
    const NotifierPanel panel;
    ASSERT_TRUE(loop_.turnUntil([&] { return shown_.back(); }));
    EXPECT_EQ(property<ToolTip>("ToolTip").get<2>(), "still here");
}

} // namespace
} // namespace vellmark::tests
