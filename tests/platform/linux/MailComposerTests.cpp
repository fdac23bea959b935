#include "platform/MailComposer.h"
#include "platform/linux/BusLibrary.h"
#include "platform/linux/PrivateBus.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <map>

namespace vellmark::tests {
namespace {

/// What the desktop's portal does with a draft: answers with a response, or refuses.
class MailPortal {
public:
    explicit MailPortal(std::optional<std::uint32_t> response)
        : connection_(sdbus::createSessionBusConnection()),
          portal_(sdbus::createObject(*connection_,
                                      sdbus::ObjectPath("/org/freedesktop/portal/desktop"))) {
        bus::Interface(*portal_, "org.freedesktop.portal.Email")
            .method("ComposeEmail",
                    [this, response](const std::string&,
                                     const std::map<std::string, sdbus::Variant>& options) {
                        if (!response) {
                            throw sdbus::Error(
                                bus::ErrorName("org.freedesktop.portal.Error.Failed"), "no");
                        }
                        return compose(options, *response);
                    })
            .publish();
        connection_->requestName(bus::ServiceName("org.freedesktop.portal.Desktop"));
        connection_->enterEventLoopAsync();
    }
    ~MailPortal() { connection_->leaveEventLoop(); }

    std::string received() const { return received_; }

private:
    sdbus::ObjectPath compose(const std::map<std::string, sdbus::Variant>& options,
                              std::uint32_t response) {
        const auto files = options.at("attachment_fds").get<std::vector<sdbus::UnixFd>>();
        received_ = options.at("address").get<std::string>() + "|" +
                    options.at("subject").get<std::string>() + "|" +
                    options.at("body").get<std::string>() + "|" +
                    fs::read_symlink("/proc/self/fd/" + std::to_string(files.at(0).get())).string();
        std::string sender = bus::caller(*portal_).substr(1);
        std::ranges::replace(sender, '.', '_');
        const sdbus::ObjectPath path("/org/freedesktop/portal/desktop/request/" + sender + "/" +
                                     options.at("handle_token").get<std::string>());
        request_ = sdbus::createObject(*connection_, path);
        bus::Interface(*request_, "org.freedesktop.portal.Request")
            .signal<std::uint32_t, std::map<std::string, sdbus::Variant>>("Response")
            .publish();
        request_->emitSignal("Response")
            .onInterface("org.freedesktop.portal.Request")
            .withArguments(response, std::map<std::string, sdbus::Variant>());
        return path;
    }

    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IObject> portal_;
    std::unique_ptr<sdbus::IObject> request_;
    std::string received_;
};

/// A bus of its own, and a program that writes down what it is given.
class MailComposing : public BusTest {
protected:
    MailComposing() {
        draft_.attachment = directory_.write("report.txt", "text");
        environment_["PATH"] = "relative:" + (directory_ / "none").string() + ":" +
                               directory_.path().string() + ":/usr/bin:/bin";
    }

    void installProgram(const std::string& end) {
        const auto program = directory_.write("xdg-email", "#!/bin/sh\nprintf '%s|' \"$@\" > " +
                                                               arguments().string() + "\n" + end);
        fs::permissions(program, fs::perms::owner_all);
    }
    fs::path arguments() const { return directory_ / "arguments"; }

    MailOutcome compose() {
        auto told = std::make_shared<std::promise<MailOutcome>>();
        auto outcome = told->get_future();
        composer_ = makeMailComposer(environment_);
        composer_->compose(draft_, [told](MailOutcome each) { told->set_value(each); });
        if (outcome.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
            ADD_FAILURE() << "nothing was told";
            return MailOutcome::cancelled;
        }
        return outcome.get();
    }

    TemporaryDirectory directory_;
    Environment environment_;
    MailDraft draft_{"support@example.org", "A subject", "Look & see: 'this'", {}};
    std::unique_ptr<MailComposer> composer_;
};

TEST_F(MailComposing, HandsTheDraftToThePortalAndToNobodyElse) {
    installProgram("exit 0\n");
    for (const auto& [response, outcome] :
         {std::pair(0U, MailOutcome::opened), std::pair(1U, MailOutcome::cancelled)}) {
        const MailPortal portal(response);
        EXPECT_EQ(compose(), outcome);
        EXPECT_EQ(portal.received(),
                  "support@example.org|A subject|Look & see: 'this'|" + draft_.attachment.string());
        EXPECT_FALSE(fs::exists(arguments())) << response;
    }
}

TEST_F(MailComposing, ProgramTakesOverWhereThePortalFailsOrIsNotThere) {
    installProgram("exit 0\n");
    const std::string expected = "--utf8|--subject|A subject|--body|Look & see: 'this'|--attach|" +
                                 draft_.attachment.string() + "|support@example.org|";
    EXPECT_EQ(compose(), MailOutcome::opened);
    EXPECT_EQ(contentOf(arguments()), expected);
    for (const std::optional<std::uint32_t> response :
         {std::optional<std::uint32_t>(), std::optional<std::uint32_t>(2)}) {
        fs::remove(arguments());
        const MailPortal portal(response);
        EXPECT_EQ(compose(), MailOutcome::opened);
        EXPECT_EQ(contentOf(arguments()), expected);
    }
}

TEST_F(MailComposing, WithoutAProgramThereIsNone) {
    environment_["PATH"] = directory_.path().string();
    EXPECT_EQ(compose(), MailOutcome::unavailable);
    installProgram("exit 3\n");
    EXPECT_EQ(compose(), MailOutcome::unavailable);
}

// The mail program may be the child itself: it is not waited for, and never ended.
TEST_F(MailComposing, ProgramThatRunsOnOutlivesTheComposer) {
    installProgram("echo $$ > " + (directory_ / "pid").string() + "\nexec sleep 60\n");
    composer_ = makeMailComposer(environment_);
    composer_->compose(draft_, [](MailOutcome) {});
    ASSERT_TRUE(becomesTrue([this] { return contentOf(directory_ / "pid").ends_with("\n"); }));
    const pid_t child = std::stoi(contentOf(directory_ / "pid"));
    const auto start = std::chrono::steady_clock::now();
    composer_.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
    EXPECT_EQ(::kill(child, 0), 0);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

} // namespace
} // namespace vellmark::tests
