#pragma once

#include "platform/Descriptor.h"
#include "support/ProcessCensus.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vellmark::tests {

/// A message bus of this test's own: nothing of the user's session is reachable on it, and it
/// starts no services but those in `services()`.
class PrivateBus {
public:
    PrivateBus() {
        std::filesystem::create_directory(services());
        configuration_ = directory_.write(
            "bus.conf",
            "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
            "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
            "<busconfig><type>session</type><listen>" +
                address() + "</listen><servicedir>" + services().string() +
                "</servicedir><policy context=\"default\"><allow send_destination=\"*\" "
                "eavesdrop=\"true\"/>"
                "<allow eavesdrop=\"true\"/>"
                "<allow own=\"*\"/></policy></busconfig>");
        start();
    }
    ~PrivateBus() { end(); }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Again, at the same address.
    void start() {
        const std::string option = "--config-file=" + configuration_.string();
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
            ::execlp("dbus-daemon", "dbus-daemon", option.c_str(), "--nofork", "--nopidfile",
                     nullptr);
            ::_exit(127);
        }
        (void)becomesTrue([this] {
            if (::waitpid(pid_, nullptr, WNOHANG) == pid_) {
                pid_ = -1;
            }
            return !isInstalled() || isListening();
        });
    }

    void end() {
        if (isInstalled()) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
            pid_ = -1;
            std::filesystem::remove(directory_ / "bus");
        }
    }

    bool isInstalled() const { return pid_ > 0; }
    std::string address() const { return "unix:path=" + (directory_ / "bus").string(); }
    /// The directory of the ".service" files by which the bus starts services.
    std::filesystem::path services() const { return directory_ / "services"; }
    /// The bus goes on accepting connections and answers none.
    void stop() const { ::kill(pid_, SIGSTOP); }

private:
    /// The socket's file is there a moment before the bus listens at it.
    bool isListening() const {
        const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        (directory_ / "bus").string().copy(name.sun_path, sizeof(name.sun_path) - 1);
        return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&name), sizeof(name)) == 0;
    }

    TemporaryDirectory directory_;
    std::filesystem::path configuration_;
    pid_t pid_ = -1;
};

/// A test whose session and system bus is a private one.
class BusTest : public testing::Test {
protected:
    void SetUp() override {
        if (!bus_->isInstalled()) {
            GTEST_SKIP() << "dbus-daemon is not installed";
        }
        for (const char* name : variables) {
            ::setenv(name, bus_->address().c_str(), 1);
        }
    }
    void TearDown() override {
        for (const char* name : variables) {
            ::unsetenv(name);
        }
    }

    std::optional<PrivateBus> bus_{std::in_place};

private:
    static constexpr std::array variables{"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"};
};

} // namespace vellmark::tests
