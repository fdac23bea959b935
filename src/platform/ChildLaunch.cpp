#include "platform/ChildLaunch.h"

#include "platform/AllSignalsBlocked.h"
#include "platform/ChildPipes.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <system_error>
#include <utility>

namespace vellmark {
namespace {

[[noreturn]] void throwFor(int error, const std::filesystem::path& subject) {
    throw std::system_error(error, std::generic_category(), subject.string());
}

/// Strings in the form in which the system takes them: pointers, ended by a null one.
class StringVector {
public:
    explicit StringVector(std::vector<std::string> texts) : texts_(std::move(texts)) {
        for (std::string& text : texts_) {
            pointers_.push_back(text.data());
        }
        pointers_.push_back(nullptr);
    }
    StringVector(const StringVector&) = delete;
    StringVector& operator=(const StringVector&) = delete;

    char* const* get() const { return pointers_.data(); }

private:
    std::vector<std::string> texts_;
    std::vector<char*> pointers_;
};

/// The child between fork and exec. Made before the fork: other threads may have held any lock at
/// that moment, so the child may do only what a signal handler may.
class Newborn {
public:
    Newborn(const ChildLaunch& launch, int failure)
        : launch_(launch), failure_(failure), arguments_(withProgram(launch)),
          environment_(launch.environment), sources_(launch.streams) {
        for (int& source : sources_) {
            if (source < 0 || source > STDERR_FILENO) {
                continue;
            }
            // One of this program's own streams: connecting another may replace it.
            moved_.emplace_back(::fcntl(source, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
            if (!moved_.back().isOpen()) {
                throwFor(errno, launch.program);
            }
            source = moved_.back().get();
        }
    }

    [[noreturn]] void becomeProgram() const {
        launch_.hasOwnSession ? ::setsid() : ::setpgid(0, 0);
        handleSignalsByDefault();
        announce(ChildLaunch::Stage::begins);
        if (areStreamsConnected() && isInDirectory()) {
            leaveOpenStandardStreamsOnly();
            ::signal(SIGPIPE, SIG_DFL);
            sigset_t none;
            sigemptyset(&none);
            ::sigprocmask(SIG_SETMASK, &none, nullptr);
            ::execve(launch_.program.c_str(), arguments_.get(), environment_.get());
        }
        const int error = errno;
        ::signal(SIGPIPE, SIG_IGN);
        announce(ChildLaunch::Stage::failed);
        [[maybe_unused]] const auto written = ::write(failure_, &error, sizeof error);
        ::_exit(127);
    }

private:
    static std::vector<std::string> withProgram(const ChildLaunch& launch) {
        std::vector<std::string> words{launch.program.string()};
        words.insert(words.end(), launch.arguments.begin(), launch.arguments.end());
        return words;
    }

    static void handleSignalsByDefault() {
        for (int number = 1; number < NSIG; ++number) {
            if (number != SIGKILL && number != SIGSTOP) {
                ::signal(number, number == SIGPIPE ? SIG_IGN : SIG_DFL);
            }
        }
    }

    void announce(ChildLaunch::Stage stage) const {
        if (launch_.announce != nullptr) {
            launch_.announce(stage);
        }
    }

    bool areStreamsConnected() const {
        for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
            const int given = sources_[static_cast<std::size_t>(stream)];
            const int source =
                given >= 0 ? given
                           : ::open("/dev/null", stream == STDIN_FILENO ? O_RDONLY : O_WRONLY);
            if (source < 0 || (source != stream && ::dup2(source, stream) < 0)) {
                return false;
            }
        }
        return true;
    }

    bool isInDirectory() const {
        return launch_.directory.empty() || ::chdir(launch_.directory.c_str()) == 0;
    }

    const ChildLaunch& launch_;
    int failure_;
    StringVector arguments_;
    StringVector environment_;
    std::array<int, 3> sources_;
    std::vector<Descriptor> moved_;
};

/// The error that the child reports instead of running its program; 0 when it runs it.
int reportedFailure(int descriptor) {
    int error = 0;
    ssize_t count = 0;
    while ((count = ::read(descriptor, &error, sizeof error)) < 0 && errno == EINTR) {
    }
    return count == static_cast<ssize_t>(sizeof error) ? error : 0;
}

} // namespace

pid_t launchChild(const ChildLaunch& launch) {
    Pipe failure = makePipe();
    const Newborn newborn(launch, failure.writeEnd.get());
    pid_t child = -1;
    int forkError = 0;
    {
        // No handler of this program is to run in the child.
        const AllSignalsBlocked blocked;
        child = ::fork();
        if (child == 0) {
            newborn.becomeProgram();
        }
        forkError = errno;
    }
    if (child < 0) {
        throwFor(forkError, launch.program);
    }
    failure.writeEnd.reset();
    if (const int error = reportedFailure(failure.readEnd.get()); error != 0) {
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
        throwFor(error, launch.program);
    }
    return child;
}

} // namespace vellmark
