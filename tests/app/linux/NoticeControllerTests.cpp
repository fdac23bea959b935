#include "app/NoticeController.h"
#include "app/QtDescriptorWatcher.h"
#include "app/QtExecutor.h"
#include "platform/linux/PrivateBus.h"
#include "process/RunningChildren.h"
#include "support/AgentSandbox.h"
#include "support/Matchers.h"
#include "support/NotificationServer.h"
#include "ui/QtEnvironment.h"

#include <chrono>

namespace vellmark::tests {
namespace {

/// The store with simulated agents, and a service that shows notices.
class NoticeControllerTest : public BusTest {
protected:
    void TearDown() override {
        controller_.reset();
        store_->abortRefresh();
        store_.reset();
        RunningChildren::reopen();
        BusTest::TearDown();
    }

    void makeController() {
        controller_ = std::make_unique<NoticeController>(NoticeController::Sources{
            .store = *store_,
            .machine = sandbox_.machine(),
            .executor = executor_,
            .preferences = *preferences_,
            .loop = loop_,
            .words = [this]() -> const Localization& { return words_; },
            .actions = {.refresh = {},
                        .openWindow = [this] { opened_.emplace_back("window"); },
                        .openProvider =
                            [this](const AgentProviderID& id) { opened_.push_back(id.rawValue); }},
            .update = [this] { ++updates_; },
            .isFirstRun = [this] { return isFirstRun_; }});
    }
    [[nodiscard]] bool refresh() {
        store_->refresh(RefreshTrigger::manual);
        return waitUntil([this] { return !store_->state().isRefreshing; });
    }

    AgentSandbox sandbox_{"codex"};
    QtExecutor executor_;
    QtDescriptorWatcher loop_;
    Localization words_{"en", "en_US", "UTC"};
    std::unique_ptr<Preferences> preferences_ = makePreferences(sandbox_.machine());
    std::unique_ptr<AgentUsageStore> store_ = std::make_unique<AgentUsageStore>(
        AgentUsageStore::Configuration{.machine = sandbox_.machine(),
                                       .registrations = providerRegistry(),
                                       .words = [this] { return words_; },
                                       .agents = std::set{AgentProviderID::codex()}},
        executor_, *preferences_);
    std::vector<std::string> opened_;
    int updates_ = 0;
    bool isFirstRun_ = false;
    std::unique_ptr<NoticeController> controller_;
};

TEST_F(NoticeControllerTest, TellsOnceOpensTheAgentsPageAndRemembers) {
    makeController();
    sandbox_.play("codex", "used-up");
    ASSERT_TRUE(refresh());
    ASSERT_TRUE(refresh());
    // Nobody shows notices yet; whoever comes shows it, once the user was asked about notices.
    ASSERT_TRUE(waitUntil([this] { return controller_->delivery() == NoticeDelivery::unserved; }));
    isFirstRun_ = true;
    NotificationServer server;
    ASSERT_TRUE(waitUntil([this] { return controller_->delivery() == NoticeDelivery::works; }));
    EXPECT_EQ(server.shown().size(), 0U);
    isFirstRun_ = false;
    controller_->look();
    ASSERT_TRUE(waitUntil([&] { return server.shown().size() == 1; }));
    EXPECT_EQ(server.shown().front().title, "Codex · Session: used up");
    EXPECT_EQ(controller_->delivery(), NoticeDelivery::works);
    EXPECT_GE(updates_, 2);
    server.click(41, "open");
    ASSERT_TRUE(waitUntil([this] { return !opened_.empty(); }));
    EXPECT_THAT(opened_, ElementsAre("codex"));
    ASSERT_TRUE(waitUntil([&] { return server.closed().size() == 1; }));

    // The next run knows that it was told, and closes at its end what it has told itself.
    controller_->end();
    makeController();
    ASSERT_TRUE(refresh());
    ASSERT_TRUE(refresh());
    sandbox_.play("codex", "normal\nsession-used=20\nsession-resets-in=9000");
    ASSERT_TRUE(refresh());
    ASSERT_TRUE(waitUntil([&] { return server.shown().size() == 2; }));
    EXPECT_EQ(server.shown().back().title, "Codex · Session: back again");
    server.click(42, "mute");
    controller_->end();
    ASSERT_TRUE(waitUntil([&] { return server.closed().size() == 2; }));
}

TEST_F(NoticeControllerTest, AServiceThatRefusesIsNotAskedWithoutEnd) {
    NotificationServer server({"refuses"});
    makeController();
    sandbox_.play("codex", "used-up");
    for (int reading = 0; reading < 4; ++reading) {
        ASSERT_TRUE(refresh());
        controller_->look();
    }
    ASSERT_TRUE(waitUntil([&] { return server.refusals() > 0; }));
    ASSERT_TRUE(refresh());
    EXPECT_EQ(server.refusals(), 1);
    EXPECT_EQ(server.shown().size(), 0U);
}

// The desktop stood still, and the user ended the session.
TEST_F(NoticeControllerTest, WhatTheServiceHasNotTakenIsToldByTheNextRun) {
    {
        NotificationServer server;
        makeController();
        ASSERT_TRUE(refresh());
        controller_->lookForService();
        ASSERT_TRUE(waitUntil([this] { return controller_->delivery() == NoticeDelivery::works; }));
        server.freeze();
        sandbox_.play("codex", "used-up");
        ASSERT_TRUE(refresh());
        ASSERT_TRUE(refresh());
        const auto start = std::chrono::steady_clock::now();
        controller_->end();
        controller_.reset();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    }
    const NotificationServer server;
    makeController();
    ASSERT_TRUE(refresh());
    ASSERT_TRUE(refresh());
    ASSERT_TRUE(waitUntil([&] { return server.shown().size() == 1; }));
    EXPECT_EQ(server.shown().front().title, "Codex · Session: used up");
}

} // namespace
} // namespace vellmark::tests
