#include "platform/NotificationCenter.h"
#include "platform/linux/OpenBus.h"
#include "platform/linux/PrivateBus.h"
#include "platform/linux/ShownNotifications.h"
#include "support/Matchers.h"
#include "support/NotificationServer.h"
#include "support/PollLoop.h"

#include <atomic>
#include <map>

namespace vellmark::tests {
namespace {

using Availability = NotificationCenter::Availability;

class NotificationCenterTest : public BusTest {
protected:
    std::unique_ptr<NotificationCenter> makeCenter() {
        return makeNotificationCenter(
            loop_, {.side = 1, .pixels = {0xFF102030}},
            {.availabilityChanged = [this] { ++changes_; },
             .chosen = [this](const std::string& id,
                              const std::string& action) { told_.push_back(id + ":" + action); },
             .gone = [this](const std::string& id) { told_.push_back("gone " + id); },
             .failed = [this](const std::string& id) { told_.push_back("failed " + id); },
             .allGone = [this] { told_.emplace_back("all gone"); }});
    }
    /// Looks for a service until it is as expected.
    [[nodiscard]] bool becomes(Availability availability) {
        center_->lookForService(false);
        return loop_.turnUntil([&] { return center_->availability() == availability; });
    }
    [[nodiscard]] bool isTold(std::vector<std::string> told) {
        return loop_.turnUntil([&] { return told_ == told; });
    }
    /// The number that each notice, by its title, took the place of.
    static std::map<std::string, std::uint32_t> replacedIn(const NotificationServer& server) {
        std::map<std::string, std::uint32_t> replaced;
        for (const auto& shown : server.shown()) {
            replaced[shown.title] = shown.replaces;
        }
        return replaced;
    }
    [[nodiscard]] bool areShown(const NotificationServer& server, std::size_t count) {
        return loop_.turnUntil([&] { return server.shown().size() == count; });
    }
    PollLoop loop_;
    int changes_ = 0;
    std::vector<std::string> told_;
    std::unique_ptr<NotificationCenter> center_ = makeCenter();
};

TEST_F(NotificationCenterTest, ShowsReplacesClosesAndTellsWhatIsChosen) {
    NotificationServer server;
    ASSERT_TRUE(becomes(Availability::available));
    center_->post({.id = "a",
                   .title = "Claude & <co>",
                   .body = "left < 5 & more",
                   .actions = {{"open", "Open"}, {"mute", "Not again"}}});
    ASSERT_TRUE(areShown(server, 1));
    EXPECT_EQ(server.shown()[0].title, "Claude & <co>");
    EXPECT_EQ(server.shown()[0].body, "left &lt; 5 &amp; more");
    EXPECT_THAT(server.shown()[0].actions,
                ElementsAre("default", "Claude & <co>", "open", "Open", "mute", "Not again"));
    EXPECT_TRUE(server.shown()[0].hasPicture);
    // The next of the same window takes its place, another one does not, whoever is faster.
    center_->post({.id = "a", .title = "again", .body = {}});
    center_->post({.id = "b", .title = "other", .body = {}});
    center_->post({.id = "b", .title = "other again", .body = {}});
    ASSERT_TRUE(areShown(server, 4));
    EXPECT_THAT(replacedIn(server),
                UnorderedElementsAre(Pair("Claude & <co>", 0U), Pair("again", 41U),
                                     Pair("other", 0U), Pair("other again", 42U)));

    server.click(41, "default");
    server.click(41, "mute");
    server.click(7, "mute");
    server.dismiss(7);
    server.dismiss(41);
    ASSERT_TRUE(isTold({"a:", "a:mute", "gone a"})) << "notices of other programs are not ours";
    center_->close("a");
    center_->close("b");
    ASSERT_TRUE(loop_.turnUntil([&] { return !server.closed().empty(); }));
    EXPECT_THAT(server.closed(), ElementsAre(42U));
    // Closed before the service has answered.
    center_->post({.id = "c", .title = "brief", .body = {}});
    center_->close("c");
    ASSERT_TRUE(loop_.turnUntil([&] { return server.closed().size() == 2; }));
    EXPECT_EQ(server.closed().back(), 43U);
    center_->post({.id = "d", .title = "refuse", .body = {}});
    ASSERT_TRUE(isTold({"a:", "a:mute", "gone a", "failed d"}));
}

TEST_F(NotificationCenterTest, APlainServiceGetsPlainTextAndNoButtons) {
    NotificationServer server({"body"});
    ASSERT_TRUE(becomes(Availability::available));
    center_->post({.id = "a", .title = "t", .body = "5 < 6 & 7", .actions = {{"open", "Open"}}});
    ASSERT_TRUE(areShown(server, 1));
    EXPECT_EQ(server.shown()[0].body, "5 < 6 & 7");
    EXPECT_THAT(server.shown()[0].actions, IsEmpty());
}

TEST_F(NotificationCenterTest, FollowsAServiceThatComesLateAndRestarts) {
    EXPECT_EQ(center_->availability(), Availability::unknown);
    ASSERT_TRUE(becomes(Availability::unserved));
    for (int start = 0; start < 2; ++start) {
        told_.clear();
        {
            NotificationServer server;
            ASSERT_TRUE(loop_.turnUntil(
                [&] { return center_->availability() == Availability::available; }));
            center_->post({.id = "a", .title = "t", .body = {}});
            ASSERT_TRUE(areShown(server, 1));
            EXPECT_EQ(server.shown()[0].replaces, 0U) << "the former one's number means nothing";
            server.click(41, "open");
            ASSERT_TRUE(isTold({"a:open"})) << "the answer came before";
        }
        ASSERT_TRUE(isTold({"a:open", "all gone"}));
        EXPECT_EQ(center_->availability(), Availability::unserved);
    }
    EXPECT_EQ(changes_, 5);
}

/// Any message wakes the program, and with it the library looks which calls have waited too long.
void wake(NotificationServer& server) {
    server.dismiss(7);
}

// A desktop that stood still for longer than calls may take carried out what it had been sent,
// while the program believed it refused, and told everything once more.
TEST_F(NotificationCenterTest, AServiceThatStandsStillTellsEachNoticeOnceWhenItGoesOn) {
    NotificationServer server;
    ASSERT_TRUE(becomes(Availability::available));
    server.freeze();
    const auto late = makeCenter();
    late->lookForService(false);
    center_->post({.id = "a", .title = "first", .body = {}});
    for (int change = 0; change < 1000; ++change) {
        center_->post({.id = "a", .title = "outdated", .body = {}});
    }
    center_->post({.id = "a", .title = "last", .body = {}});
    center_->post({.id = "b", .title = "over", .body = {}});
    center_->close("b");
    EXPECT_TRUE(center_->isUnderWay("a"));
    const auto until = std::chrono::steady_clock::now() + busAnswerLimit * 1.1;
    ASSERT_TRUE(loop_.turnUntil([&] { return std::chrono::steady_clock::now() > until; }));
    wake(server);
    ASSERT_TRUE(areShown(server, 0));
    EXPECT_THAT(told_, IsEmpty()) << "it has refused nothing";

    server.thaw();
    ASSERT_TRUE(areShown(server, 3));
    ASSERT_TRUE(loop_.turnUntil([&] { return server.closed().size() == 1; }));
    ASSERT_TRUE(loop_.turnUntil([&] { return late->availability() == Availability::available; }));
    EXPECT_THAT(replacedIn(server),
                UnorderedElementsAre(Pair("first", 0U), Pair("last", 41U), Pair("over", 0U)));
    EXPECT_THAT(server.closed(), ElementsAre(42U));
    ASSERT_TRUE(loop_.turnUntil([&] { return !center_->isUnderWay("a"); }));
    EXPECT_THAT(told_, IsEmpty());
}

TEST_F(NotificationCenterTest, OutlivesTheBusAndFindsTheNext) {
    {
        NotificationServer server;
        ASSERT_TRUE(becomes(Availability::available));
        center_->post({.id = "a", .title = "t", .body = {}});
        ASSERT_TRUE(areShown(server, 1));
    }
    bus_.reset();
    ASSERT_TRUE(loop_.turnUntil([&] { return center_->availability() == Availability::unserved; }));
    center_->lookForService(false);
    EXPECT_EQ(center_->availability(), Availability::unserved);
    bus_.emplace();
    SetUp();
    NotificationServer server;
    ASSERT_TRUE(becomes(Availability::available));
    center_->post({.id = "a", .title = "t", .body = {}});
    ASSERT_TRUE(areShown(server, 1));
}

/// Answers with these, of which a true service's are a list of texts and a number, and signals with
/// anything.
class WrongServer {
public:
    template<typename Capabilities, typename Number>
    WrongServer(const Capabilities& capabilities, const Number& number)
        : connection_(sdbus::createSessionBusConnection()),
          object_(sdbus::createObject(*connection_,
                                      sdbus::ObjectPath("/org/freedesktop/Notifications"))) {
        bus::Interface(*object_, service)
            .method("GetCapabilities", [capabilities] { return capabilities; })
            .method("Notify",
                    [this, number](const std::string&, std::uint32_t, const std::string&,
                                   const std::string&, const std::string&,
                                   const std::vector<std::string>&,
                                   const std::map<std::string, sdbus::Variant>&, std::int32_t) {
                        hasShown_ = true;
                        return number;
                    })
            .publish();
        connection_->requestName(bus::ServiceName(service));
        connection_->enterEventLoopAsync();
    }
    ~WrongServer() { connection_->leaveEventLoop(); }
    WrongServer(const WrongServer&) = delete;
    WrongServer& operator=(const WrongServer&) = delete;

    bool hasShown() const { return hasShown_; }
    template<typename... Values>
    void signal(const std::string& name, const Values&... values) {
        object_->emitSignal(name).onInterface(service).withArguments(values...);
    }

private:
    static constexpr auto service = "org.freedesktop.Notifications";

    std::atomic<bool> hasShown_ = false;
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IObject> object_;
};

TEST_F(NotificationCenterTest, TakesAnswersOfOtherTypesForRefusalsAndLeavesOutSuchSignals) {
    const std::string text = "41";
    const std::vector list = {text};
    const std::uint32_t number = 41;
    {
        const WrongServer server(text, number);
        center_ = makeCenter();
        ASSERT_TRUE(becomes(Availability::unserved));
    }
    {
        center_ = makeCenter();
        const WrongServer server(list, list);
        ASSERT_TRUE(becomes(Availability::available));
        center_->post({.id = "a", .title = "t", .body = {}});
        ASSERT_TRUE(isTold({"failed a"}));
        EXPECT_TRUE(loop_.turnUntil([&] { return server.hasShown(); }));
    }
    center_ = makeCenter();
    told_.clear();
    WrongServer server(list, number);
    ASSERT_TRUE(becomes(Availability::available));
    center_->post({.id = "a", .title = "t", .body = {}});
    ASSERT_TRUE(loop_.turnUntil([&] { return server.hasShown(); }));
    for (const char* const name : {"ActionInvoked", "NotificationClosed", "ActivationToken"}) {
        server.signal(name);
        server.signal(name, text, std::string("default"));
        server.signal(name, list);
        server.signal(name, number);
    }
    server.signal("ActionInvoked", number, std::string("open"));
    ASSERT_TRUE(isTold({"a:open"})) << "on the same connection";
    EXPECT_EQ(center_->availability(), Availability::available);
}

// What a service may do that the one above does not.

TEST(ShownNotifications, AnswersOfALostServiceMeanNothing) {
    ShownNotifications shown;
    const auto before = shown.post({.id = "a", .title = "1", .body = {}});
    EXPECT_THAT(shown.lost(), ElementsAre("a"));
    const auto after = shown.post({.id = "a", .title = "2", .body = {}});
    ASSERT_TRUE(before && after);
    // Whoever has handed over the name still answers what he was asked.
    shown.answered(before->ticket, 5);
    EXPECT_FALSE(shown.idOf(5));
    EXPECT_FALSE(shown.answered(before->ticket, std::nullopt).failed);
    shown.answered(after->ticket, 6);
    EXPECT_EQ(shown.idOf(6), "a");
}

TEST(ShownNotifications, WhatCouldNotBeReplacedIsClosed) {
    ShownNotifications shown;
    shown.answered(shown.post({.id = "a", .title = "1", .body = {}})->ticket, 5);
    const auto refused =
        shown.answered(shown.post({.id = "a", .title = "2", .body = {}})->ticket, std::nullopt);
    EXPECT_EQ(refused.failed, "a");
    EXPECT_EQ(refused.close, 5U);
    EXPECT_FALSE(shown.close("a"));
}

TEST(ShownNotifications, ANumberStandsForTheLastNoticeThatGotIt) {
    ShownNotifications shown;
    shown.answered(shown.post({.id = "a", .title = "1", .body = {}})->ticket, 1);
    EXPECT_EQ(shown.answered(shown.post({.id = "b", .title = "2", .body = {}})->ticket, 1).gone,
              "a");
    EXPECT_EQ(shown.idOf(1), "b");
    // None at all: it is shown, but can neither be closed nor replaced.
    shown.answered(shown.post({.id = "c", .title = "3", .body = {}})->ticket, 0);
    EXPECT_FALSE(shown.closed(0));
    EXPECT_FALSE(shown.close("c"));
}

} // namespace
} // namespace vellmark::tests
