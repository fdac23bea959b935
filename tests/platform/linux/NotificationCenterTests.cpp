#include "platform/NotificationCenter.h"
#include "platform/linux/PrivateBus.h"
#include "support/NotificationServer.h"
#include "support/PollLoop.h"

#include <gmock/gmock.h>

#include <map>

namespace vellmark::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
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
        const bool isSo = loop_.turnUntil([&] { return told_ == told; });
        return isSo;
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
    std::map<std::string, std::uint32_t> replaced;
    for (const auto& shown : server.shown()) {
        replaced[shown.title] = shown.replaces;
    }
    EXPECT_EQ(replaced["again"], 41U);
    EXPECT_EQ(replaced["other"], 0U);
    EXPECT_EQ(replaced["other again"], 42U);

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

} // namespace
} // namespace vellmark::tests
