#include "probes/LaunchedChild.h"

#include "platform/ChildPipes.h"
#include "platform/ProcessTable.h"
#include "probes/RunningChildren.h"

#include <cerrno>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

void require(int error, const std::filesystem::path& subject) {
    if (error != 0)
        throw std::system_error(error, std::generic_category(), subject.string());
}

/// What the child does between its start and the program: streams, folder, other descriptors.
class FileActions {
public:
    FileActions(const ChildConfiguration& configuration, const ChildStreams& streams)
        : program_(configuration.executable) {
        require(posix_spawn_file_actions_init(&actions_), program_);
        try {
            connect(streams.input, STDIN_FILENO, O_RDONLY);
            connect(streams.output, STDOUT_FILENO, O_WRONLY);
            connect(streams.error, STDERR_FILENO, O_WRONLY);
            if (!configuration.workingDirectory.empty())
                require(posix_spawn_file_actions_addchdir_np(
                            &actions_, configuration.workingDirectory.c_str()),
                        program_);
            require(inheritStandardStreamsOnly(actions_, flags_), program_);
        } catch (...) {
            posix_spawn_file_actions_destroy(&actions_);
            throw;
        }
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    const posix_spawn_file_actions_t* get() const { return &actions_; }
    short flags() const { return flags_; }

private:
    void connect(int source, int stream, int mode) {
        if (source < 0) {
            require(posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", mode, 0),
                    program_);
            return;
        }
        if (source <= STDERR_FILENO) {
            // One of the program's own streams: the actions before this one may have replaced it.
            moved_.emplace_back(::fcntl(source, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
            require(moved_.back().isOpen() ? 0 : errno, program_);
            source = moved_.back().get();
        }
        require(posix_spawn_file_actions_adddup2(&actions_, source, stream), program_);
    }

    const std::filesystem::path& program_;
    posix_spawn_file_actions_t actions_;
    short flags_ = 0;
    std::vector<Descriptor> moved_;
};

class Attributes {
public:
    Attributes(short flags, const std::filesystem::path& program) {
        require(posix_spawnattr_init(&attributes_), program);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setflags(&attributes_,
                                 static_cast<short>(flags | POSIX_SPAWN_SETSIGMASK |
                                                    POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP));
    }
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

/// Strings in the form in which the system takes them: pointers, ended by a null one.
class StringVector {
public:
    void add(std::string text) { texts_.push_back(std::move(text)); }
    char* const* get() {
        pointers_.clear();
        for (std::string& text : texts_)
            pointers_.push_back(text.data());
        pointers_.push_back(nullptr);
        return pointers_.data();
    }

private:
    std::vector<std::string> texts_;
    std::vector<char*> pointers_;
};

/// A program that was started with SIGCHLD ignored hands that on to us, and the kernel would then
/// collect our children itself: no exit status, and their numbers free at once.
void keepEndedChildren() {
    struct sigaction handling {};
    ::sigaction(SIGCHLD, nullptr, &handling);
    const bool isIgnored = handling.sa_handler == SIG_IGN;
    if (!isIgnored && (handling.sa_flags & SA_NOCLDWAIT) == 0)
        return;
    handling.sa_flags &= ~SA_NOCLDWAIT;
    if (isIgnored)
        handling.sa_handler = SIG_DFL;
    ::sigaction(SIGCHLD, &handling, nullptr);
}

pid_t spawn(const ChildConfiguration& configuration, const ChildStreams& streams) {
    keepEndedChildren();
    const FileActions actions(configuration, streams);
    const Attributes attributes(actions.flags(), configuration.executable);
    StringVector arguments;
    arguments.add(configuration.executable.string());
    for (const std::string& argument : configuration.arguments)
        arguments.add(argument);
    StringVector environment;
    for (const auto& [name, value] : configuration.environment)
        environment.add(name + "=" + value);
    pid_t pid = -1;
    require(posix_spawn(&pid, configuration.executable.c_str(), actions.get(), attributes.get(),
                        arguments.get(), environment.get()),
            configuration.executable);
    return pid;
}

} // namespace

LaunchedChild::LaunchedChild(const ChildConfiguration& configuration, const ChildStreams& streams) {
    if (RunningChildren::refusesLaunch())
        require(ECANCELED, configuration.executable);
    pid_ = spawn(configuration, streams);
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
    : pid_(std::exchange(other.pid_, -1)), isHandedOver_(other.isHandedOver_),
      end_(std::move(other.end_)) {}

LaunchedChild::~LaunchedChild() {
    if (pid_ > 0)
        kill();
}

void LaunchedChild::kill() {
    for (const ProcessHandle& grandchild : directChildHandles(pid_))
        grandchild.signal(SIGKILL);
    ::kill(pid_, SIGKILL);
    collect();
}

ChildExit LaunchedChild::collect() {
    siginfo_t info{};
    while (::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    isHandedOver_ ? RunningChildren::reportEnd(pid_) : RunningChildren::remove(pid_);
    while (::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED) != 0 && errno == EINTR) {
    }
    pid_ = -1;
    return {info.si_status, info.si_code != CLD_EXITED};
}

void LaunchedChild::handOver() {
    RunningChildren::handOver(pid_);
    isHandedOver_ = true;
}

} // namespace vellmark
