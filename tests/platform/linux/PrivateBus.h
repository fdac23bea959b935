#pragma once

#include "support/TemporaryDirectory.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace vellmark::tests {

/// A message bus of this test's own: nothing of the user's session is reachable on it, and it
/// starts no services but those in `services()`.
class PrivateBus {
public:
    PrivateBus() {
        std::filesystem::create_directory(services());
        const auto configuration = directory_.write(
            "bus.conf",
            "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
            "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
            "<busconfig><type>session</type><listen>" +
                address() + "</listen><servicedir>" + services().string() +
                "</servicedir><policy context=\"default\"><allow send_destination=\"*\" "
                "eavesdrop=\"true\"/>"
                "<allow eavesdrop=\"true\"/>"
                "<allow own=\"*\"/></policy></busconfig>");
        std::string option = "--config-file=" + configuration.string();
        std::string name = "dbus-daemon", noFork = "--nofork", noPid = "--nopidfile";
        char* arguments[] = {name.data(), option.data(), noFork.data(), noPid.data(), nullptr};
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        if (::posix_spawnp(&pid_, "dbus-daemon", &actions, nullptr, arguments, environ) != 0) {
            pid_ = -1;
        }
        ::posix_spawn_file_actions_destroy(&actions);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (isInstalled() && !std::filesystem::exists(directory_ / "bus") &&
               std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    ~PrivateBus() {
        if (isInstalled()) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
    }

    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    bool isInstalled() const { return pid_ > 0; }
    std::string address() const { return "unix:path=" + (directory_ / "bus").string(); }
    /// The directory of the ".service" files by which the bus starts services.
    std::filesystem::path services() const { return directory_ / "services"; }
    /// The bus goes on accepting connections and answers none.
    void stop() const { ::kill(pid_, SIGSTOP); }

private:
    TemporaryDirectory directory_;
    pid_t pid_ = -1;
};

} // namespace vellmark::tests
