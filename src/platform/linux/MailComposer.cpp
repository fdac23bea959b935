// First the desktop portal's org.freedesktop.portal.Email, which knows the user's mail program;
// where there is none, or it fails, the program xdg-email.

#include "platform/MailComposer.h"

#include "platform/ChildLaunch.h"
#include "platform/Descriptor.h"
#include "platform/linux/BusLibrary.h"
#include "platform/linux/OpenBus.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <map>
#include <optional>
#include <poll.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto look = std::chrono::milliseconds(50);
/// The portal may have to be started first.
constexpr auto portalAnswers = std::chrono::seconds(20);
/// And may ask the user for a program. A draft that takes longer is in somebody's hands.
constexpr auto portalOpens = std::chrono::seconds(60);
/// A program that fails does so at once; one that runs on is the mail program itself.
constexpr auto programFails = std::chrono::seconds(5);

constexpr auto portalName = "org.freedesktop.portal.Desktop";
constexpr auto portalPath = "/org/freedesktop/portal/desktop";
constexpr auto mailInterface = "org.freedesktop.portal.Email";
constexpr auto requestInterface = "org.freedesktop.portal.Request";

using Options = std::map<std::string, sdbus::Variant>;

/// One call of the portal, on a connection of its own.
class PortalMail {
public:
    PortalMail(sdbus::IConnection& connection, const std::atomic<bool>& isStopped)
        : connection_(connection), isStopped_(isStopped) {}

    /// Absent where the portal knows no mail, or could not open it.
    std::optional<MailOutcome> compose(const MailDraft& draft) {
        const Descriptor file(::open(draft.attachment.c_str(), O_RDONLY | O_CLOEXEC));
        if (!file.isOpen()) {
            return std::nullopt;
        }
        constexpr auto token = "vellmark_mail";
        std::string sender = connection_.getUniqueName().substr(1);
        std::ranges::replace(sender, '.', '_');
        const auto request = sdbus::createProxy(
            connection_, bus::ServiceName(portalName),
            sdbus::ObjectPath(std::string(portalPath) + "/request/" + sender + "/" + token));
        request->uponSignal("Response")
            .onInterface(requestInterface)
            .call([this](std::uint32_t response, const Options&) { response_ = response; });
        bus::receiveSignals(*request);
        const auto portal = sdbus::createProxy(connection_, bus::ServiceName(portalName),
                                               sdbus::ObjectPath(portalPath));
        bus::receiveSignals(*portal);
        const Options options{{"handle_token", sdbus::Variant(std::string(token))},
                              {"address", sdbus::Variant(draft.recipient)},
                              {"subject", sdbus::Variant(draft.subject)},
                              {"body", sdbus::Variant(draft.body)},
                              {"attachment_fds", sdbus::Variant(std::vector<sdbus::UnixFd>{
                                                     sdbus::UnixFd(file.get())})}};
        portal->callMethodAsync("ComposeEmail")
            .onInterface(mailInterface)
            .withTimeout(portalAnswers)
            .withArguments(std::string(), options)
            .uponReplyInvoke([this](bus::CallError error, const sdbus::ObjectPath&) {
                isRefused_ = bool(error);
            });
        handleMessages();
        constexpr std::uint32_t done = 0;
        constexpr std::uint32_t cancelled = 1;
        // The response may come before the call returns.
        const bool isRefused = isRefused_.value_or(!response_.has_value());
        if (isRefused || response_.value_or(done) > cancelled) {
            return std::nullopt;
        }
        return response_ == cancelled ? MailOutcome::cancelled : MailOutcome::opened;
    }

private:
    void handleMessages() {
        const auto end = Clock::now() + portalOpens;
        while (!isStopped_ && !response_ && !isRefused_.value_or(false) && Clock::now() < end) {
            while (bus::processPendingEvent(connection_)) {
            }
            const auto wanted = connection_.getEventLoopPollData();
            pollfd descriptor{wanted.fd, wanted.events, 0};
            ::poll(&descriptor, 1, static_cast<int>(look.count()));
        }
    }

    sdbus::IConnection& connection_;
    const std::atomic<bool>& isStopped_;
    std::optional<bool> isRefused_;
    std::optional<std::uint32_t> response_;
};

std::optional<MailOutcome> composeByPortal(const MailDraft& draft,
                                           const std::atomic<bool>& isStopped) {
    auto connection = openBus(MessageBus::session);
    if (!connection) {
        return std::nullopt;
    }
    std::optional<MailOutcome> outcome;
    try {
        outcome = PortalMail(*connection, isStopped).compose(draft);
    } catch (const sdbus::Error&) {
        outcome.reset();
    }
    closeBus(std::move(connection));
    return outcome;
}

fs::path programOnPath(const Environment& environment, std::string_view name) {
    const auto variable = environment.find("PATH");
    std::string_view rest = variable == environment.end() ? "" : std::string_view(variable->second);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        const fs::path program = fs::path(rest.substr(0, end)) / name;
        if (program.is_absolute() && ::access(program.c_str(), X_OK) == 0) {
            return program;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return {};
}

ChildLaunch launchOf(const fs::path& program, const MailDraft& draft,
                     const Environment& environment) {
    ChildLaunch launch;
    launch.program = program;
    launch.arguments = {"--utf8",
                        "--subject",
                        draft.subject,
                        "--body",
                        draft.body,
                        "--attach",
                        draft.attachment.string(),
                        draft.recipient};
    for (const auto& [name, value] : environment) {
        launch.environment.push_back(name + "=" + value);
    }
    return launch;
}

class DesktopMailComposer final : public MailComposer {
public:
    explicit DesktopMailComposer(Environment environment) : environment_(std::move(environment)) {}
    ~DesktopMailComposer() override { stop(); }

    void compose(MailDraft draft, Done done) override {
        stop();
        collect();
        isStopped_ = false;
        const auto work = [this, draft = std::move(draft), done = std::move(done)] {
            const MailOutcome outcome = opened(draft);
            if (!isStopped_) {
                done(outcome);
            }
        };
        try {
            thread_ = std::thread(work);
        } catch (const std::system_error&) {
            work(); // no thread is to be had
        }
    }

private:
    MailOutcome opened(const MailDraft& draft) {
        if (const auto outcome = composeByPortal(draft, isStopped_)) {
            return *outcome;
        }
        const fs::path program = programOnPath(environment_, "xdg-email");
        return !isStopped_ && !program.empty() ? composeBy(program, draft)
                                               : MailOutcome::unavailable;
    }

    /// The mail program is the user's: it is never ended, and outlives this one.
    MailOutcome composeBy(const fs::path& program, const MailDraft& draft) {
        pid_t child = 0;
        try {
            child = launchChild(launchOf(program, draft, environment_));
        } catch (const std::system_error&) {
            return MailOutcome::unavailable;
        }
        int status = 0;
        for (const auto end = Clock::now() + programFails; Clock::now() < end && !isStopped_;) {
            if (::waitpid(child, &status, WNOHANG) == child) {
                return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? MailOutcome::opened
                                                                     : MailOutcome::unavailable;
            }
            std::this_thread::sleep_for(look);
        }
        running_.push_back(child);
        return MailOutcome::opened;
    }

    void stop() {
        isStopped_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
    }

    /// What has ended since.
    void collect() {
        std::erase_if(running_,
                      [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
    }

    Environment environment_;
    std::atomic<bool> isStopped_ = false;
    std::vector<pid_t> running_;
    std::thread thread_;
};

} // namespace

std::unique_ptr<MailComposer> makeMailComposer(Environment environment) {
    return std::make_unique<DesktopMailComposer>(std::move(environment));
}

} // namespace vellmark
