#include "process/LaunchedChild.h"

#include "platform/ChildLaunch.h"
#include "process/ChildWatcher.h"
#include "process/ProcessFamily.h"
#include "process/RunningChildren.h"

#include <cerrno>
#include <signal.h>
#include <sys/wait.h>
#include <system_error>
#include <utility>

namespace vellmark {
namespace {

void require(int error, const std::filesystem::path& subject) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), subject.string());
    }
}

/// A program that was started with SIGCHLD ignored hands that on to us, and the kernel would then
/// collect our children itself: no exit status, and their numbers free at once.
void keepEndedChildren() {
    struct sigaction handling {};
    ::sigaction(SIGCHLD, nullptr, &handling);
    const bool isIgnored = handling.sa_handler == SIG_IGN;
    if (!isIgnored && (handling.sa_flags & SA_NOCLDWAIT) == 0) {
        return;
    }
    handling.sa_flags &= ~SA_NOCLDWAIT;
    if (isIgnored) {
        handling.sa_handler = SIG_DFL;
    }
    ::sigaction(SIGCHLD, &handling, nullptr);
}

pid_t launch(const ChildConfiguration& configuration, const ChildStreams& streams) {
    keepEndedChildren();
    ChildLaunch launch;
    launch.program = configuration.executable;
    launch.arguments = configuration.arguments;
    for (const auto& [name, value] : configuration.environment) {
        launch.environment.push_back(name + "=" + value);
    }
    launch.directory = configuration.workingDirectory;
    launch.streams = {streams.input, streams.output, streams.error};
    launch.hasOwnSession = !configuration.sharesTerminal;
    launch.announce = announceToChildWatcher;
    return launchChild(launch);
}

} // namespace

LaunchedChild::LaunchedChild(const ChildConfiguration& configuration, const ChildStreams& streams) {
    if (RunningChildren::refusesLaunch()) {
        require(ECANCELED, configuration.executable);
    }
    pid_ = launch(configuration, streams);
    try {
        // Closed since the look above: nobody else will end this child.
        require(RunningChildren::insert(pid_) ? 0 : ECANCELED, configuration.executable);
        end_.emplace(pid_);
    } catch (...) {
        kill();
        throw;
    }
}

LaunchedChild::LaunchedChild(LaunchedChild&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)), end_(std::move(other.end_)) {}

LaunchedChild::~LaunchedChild() {
    if (pid_ > 0) {
        kill();
    }
}

void LaunchedChild::kill() {
    ProcessFamily(pid_, [](pid_t target, int number) {
        return ::kill(target, number) == 0;
    }).killAll();
    collect();
}

ChildExit LaunchedChild::awaitEnd() const {
    siginfo_t info{};
    while (::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    return {info.si_status, info.si_code != CLD_EXITED};
}

ChildExit LaunchedChild::collect() {
    const ChildExit exit = awaitEnd();
    RunningChildren::reportEnd(pid_);
    siginfo_t info{};
    while (::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED) != 0 && errno == EINTR) {
    }
    pid_ = -1;
    return exit;
}

void LaunchedChild::handOver() {
    RunningChildren::handOver(pid_);
}

} // namespace vellmark
