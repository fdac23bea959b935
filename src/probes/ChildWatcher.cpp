#include "probes/ChildWatcher.h"

#include "platform/ChildPipes.h"
#include "platform/ProgramPath.h"
#include "probes/RunningChildren.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vellmark {
namespace {

class SpawnSettings {
public:
    SpawnSettings() {
        posix_spawn_file_actions_init(&actions_);
        posix_spawnattr_init(&attributes_);
    }
    ~SpawnSettings() {
        posix_spawnattr_destroy(&attributes_);
        posix_spawn_file_actions_destroy(&actions_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    /// Reads from `input`, writes nowhere, keeps no other descriptor.
    bool connect(int input) {
        short flags = 0;
        return posix_spawn_file_actions_adddup2(&actions_, input, STDIN_FILENO) == 0 &&
               addNullDevice(STDOUT_FILENO) && addNullDevice(STDERR_FILENO) &&
               inheritStandardStreamsOnly(actions_, flags) == 0 &&
               posix_spawnattr_setflags(&attributes_, flags) == 0;
    }
    /// Absent when it cannot be launched.
    std::optional<pid_t> launch(const std::string& program) const {
        std::string name = program;
        const std::array<char*, 2> arguments{name.data(), nullptr};
        std::array<char*, 1> environment{nullptr};
        pid_t pid = 0;
        if (posix_spawn(&pid, program.c_str(), &actions_, &attributes_, arguments.data(),
                        environment.data()) != 0)
            return std::nullopt;
        return pid;
    }

private:
    bool addNullDevice(int stream) {
        return posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_WRONLY, 0) == 0;
    }

    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

/// The watcher that was launched, told of children under the lock of their registry.
class LaunchedWatcher {
public:
    LaunchedWatcher(pid_t pid, Descriptor lifeline) : pid_(pid), lifeline_(std::move(lifeline)) {}

    /// Never waits: a watcher that has stopped must not stop the program.
    void tell(RunningChildren::Event event, pid_t child) {
        const ChildWatcherMessage message{event == RunningChildren::Event::started
                                              ? ChildWatcherMessage::Event::started
                                              : ChildWatcherMessage::Event::ended,
                                          static_cast<std::int32_t>(child)};
        const ssize_t written = writeWithoutSignal(
            lifeline_.get(),
            std::string_view(reinterpret_cast<const char*>(&message), sizeof(message)));
        if (written < 0 && errno == EPIPE)
            collect();
    }

private:
    /// It has died: no zombie is to stay. It closes its end of the pipe a moment before it can be
    /// collected; then the next report does it.
    void collect() {
        if (pid_ && ::waitpid(*pid_, nullptr, WNOHANG) != 0)
            pid_.reset();
    }

    /// Until it is collected, when the number becomes free.
    std::optional<pid_t> pid_;
    /// Open for as long as the program runs, whatever ends it: that is the message.
    Descriptor lifeline_;
};

} // namespace

bool startChildWatcher() {
    const auto program = programPath().parent_path() / "vellmark-watcher";
    try {
        Pipe pipe = makePipe();
        SpawnSettings settings;
        if (!settings.connect(pipe.readEnd.get()))
            return false;
        const auto pid = settings.launch(program.string());
        if (!pid)
            return false;
        ::fcntl(pipe.writeEnd.get(), F_SETFL, O_NONBLOCK);
        // Never destroyed: threads may still report while the program ends.
        auto* const watcher = new LaunchedWatcher(*pid, std::move(pipe.writeEnd));
        RunningChildren::setObserver(
            [watcher](RunningChildren::Event event, pid_t child) { watcher->tell(event, child); });
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

} // namespace vellmark
