#include "support/AgentSandbox.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace vellmark::tests {
namespace {

/// The running program on a screen that nobody sees, and a reader of what it says that goes away at
/// once.
class UnseenProgram {
public:
    explicit UnseenProgram(const AgentSandbox& sandbox) : sandbox_(sandbox) {
        int said[2];
        EXPECT_EQ(::pipe(said), 0);
        pid_ = ::fork();
        if (pid_ == 0) {
            // As nohup does it.
            ::signal(SIGHUP, SIG_IGN);
            ::signal(SIGPIPE, SIG_DFL);
            ::dup2(said[1], STDERR_FILENO);
            ::close(said[0]);
            ::close(said[1]);
            ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
            ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
            const std::string program = builtProgram("vellmark-desktop");
            ::execl(program.c_str(), program.c_str(), "--language", "en", "--sandbox",
                    sandbox_.path().c_str(), static_cast<char*>(nullptr));
            ::_exit(127);
        }
        ::close(said[0]);
        ::close(said[1]);
    }
    ~UnseenProgram() {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    UnseenProgram(const UnseenProgram&) = delete;
    UnseenProgram& operator=(const UnseenProgram&) = delete;

    pid_t pid() const { return pid_; }
    /// Whether its log says that it has begun to read.
    bool isUp() const { return !log().empty(); }
    std::string log() const {
        return contentOf(sandbox_.machine().supportDirectory() / "activity.log");
    }
    /// In bytes.
    std::size_t residentMemory() const {
        std::size_t all = 0;
        std::size_t resident = 0;
        std::istringstream(contentOf("/proc/" + std::to_string(pid_) + "/statm")) >> all >>
            resident;
        return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    }
    /// The status of `waitpid`; absent while it runs.
    std::optional<int> end() const {
        int status = 0;
        return ::waitpid(pid_, &status, WNOHANG) == pid_ ? std::optional(status) : std::nullopt;
    }

private:
    const AgentSandbox& sandbox_;
    pid_t pid_ = -1;
};

TEST(RunningProgram, OutlivesItsTerminalAndItsReadersWhereItIsAskedTo) {
    const AgentSandbox sandbox;
    const UnseenProgram program(sandbox);
    ASSERT_TRUE(becomesTrue([&] { return program.isUp(); }));
    ::kill(program.pid(), SIGPIPE);
    ::kill(program.pid(), SIGHUP);
    std::optional<int> end;
    EXPECT_FALSE(becomesTrue([&] { return (end = program.end()).has_value(); },
                             std::chrono::milliseconds(500)));
    ::kill(program.pid(), SIGTERM);
    EXPECT_TRUE(becomesTrue([&] { return (end = program.end()).has_value(); }));
    EXPECT_EQ(end, 0);
}

TEST(RunningProgram, GivesBackWhatLongAnswersTook) {
#ifdef VELLMARK_SANITIZED
    GTEST_SKIP() << "a sanitizer keeps what is freed";
#endif
    AgentSandbox sandbox;
    for (const char* agent : {"claude", "codex", "agy"}) {
        sandbox.play(agent, "huge"); // 20 MB each
    }
    const UnseenProgram program(sandbox);
    ASSERT_TRUE(
        becomesTrue([&] { return program.log().find("Refresh finished") != std::string::npos; },
                    std::chrono::minutes(2)))
        << program.log();
    EXPECT_TRUE(
        becomesTrue([&] { return program.residentMemory() < 45'000'000; }, std::chrono::minutes(1)))
        << program.residentMemory();
}

TEST(WithoutDisplay, TheProgramSaysSoAndEnds) {
    for (const std::string setting : {"-u DISPLAY", "DISPLAY=:nowhere"}) {
        const std::string command = "env -u WAYLAND_DISPLAY " + setting + " QT_QPA_PLATFORM=xcb " +
                                    builtProgram("vellmark-desktop") + " --demo --language en 2>&1";
        std::FILE* output = ::popen(command.c_str(), "r");
        ASSERT_TRUE(output);
        std::string text;
        for (int byte = std::fgetc(output); byte != EOF; byte = std::fgetc(output)) {
            text += static_cast<char>(byte);
        }
        const int status = ::pclose(output);
        EXPECT_TRUE(WIFEXITED(status)) << text;
        EXPECT_EQ(WEXITSTATUS(status), 1) << text;
        EXPECT_NE(text.find("no display"), std::string::npos) << text;
    }
}

} // namespace
} // namespace vellmark::tests
