#include "cli/ProgramRun.h"

#include "support/ProcessCensus.h"
#include "support/ProjectDirectories.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace vellmark::tests {
namespace {

/// The settings of whoever runs the tests, in `configuration`'s place, shall not matter.
std::vector<std::string> environmentOf(const ProgramRun::Setting& setting,
                                       const std::string& configuration) {
    std::map<std::string, std::string> variables;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        variables[text.substr(0, text.find('='))] = text.substr(text.find('=') + 1);
    }
    for (const char* name :
         {"LC_ALL", "LC_TIME", "LC_NUMERIC", "LC_MESSAGES", "LANGUAGE", "NO_COLOR"}) {
        variables.erase(name);
    }
    variables["LANG"] = "en_US.UTF-8";
    variables["XDG_CONFIG_HOME"] = configuration;
    variables["TERM"] = "xterm-256color";
    for (const auto& [name, value] : setting.environment) {
        variables[name] = value;
    }
    std::vector<std::string> entries;
    for (const auto& [name, value] : variables) {
        entries.push_back(name + "=" + value);
    }
    return entries;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

ProgramRun::ProgramRun(const Setting& setting) {
    if (setting.columns > 0) {
        terminal_.emplace(setting.columns, setting.rows);
        setUpTerminal();
    }
    const std::string input =
        setting.input ? directory_.write("input", *setting.input).string() : "/dev/null";
    outputPath_ =
        setting.outputPath.empty() ? (directory_ / "output").string() : setting.outputPath;
    const std::string errorPath = (directory_ / "errors").string();

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    constexpr int create = O_WRONLY | O_CREAT;
    if (terminal_) {
        const std::string name = terminal_->name();
        // The first terminal that a session's leader opens becomes its own.
        for (const int descriptor : {0, 1, 2}) {
            posix_spawn_file_actions_addopen(&actions, descriptor, name.c_str(), O_RDWR, 0);
        }
    } else {
        posix_spawn_file_actions_addopen(&actions, 0, input.c_str(), O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 1, outputPath_.c_str(), create, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, errorPath.c_str(), create, 0600);
    }
    for (const int descriptor : setting.closed) {
        posix_spawn_file_actions_addclose(&actions, descriptor);
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);

    const std::string program = builtProgram("vellmark");
    std::vector<std::string> arguments{program};
    if (!setting.shellCommands.empty()) {
        arguments = {"/bin/sh", "-mc", "\"$@\"; " + setting.shellCommands, "sh", program};
    }
    arguments.insert(arguments.end(), setting.arguments.begin(), setting.arguments.end());
    std::vector<std::string> environment =
        environmentOf(setting, (directory_ / "configuration").string());
    const int error = posix_spawn(&pid_, arguments.front().c_str(), &actions, &attributes,
                                  pointersTo(arguments).data(), pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), program);
    }
}

ProgramRun::~ProgramRun() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

ProgramResult ProgramRun::of(const Setting& setting) {
    return ProgramRun(setting).wait();
}

void ProgramRun::setUpTerminal() {
    termios settings = terminalSettings();
    settings.c_cc[VERASE] = '\b';
    settings.c_cc[VMIN] = 7;
    settings.c_cc[VTIME] = 3;
    settings.c_iflag &= ~static_cast<tcflag_t>(IXON);
    settings.c_lflag &= ~static_cast<tcflag_t>(ECHOK);
    tcsetattr(terminal_->descriptor(), TCSANOW, &settings);
    firstSettings_ = terminalSettings();
}

void ProgramRun::type(std::string_view keys) const {
    if (write(terminal_->controller(), keys.data(), keys.size()) !=
        static_cast<ssize_t>(keys.size())) {
        throw std::runtime_error("the terminal takes no keys");
    }
}

bool ProgramRun::readTerminal() {
    pollfd ready{.fd = terminal_->controller(), .events = POLLIN, .revents = 0};
    if (poll(&ready, 1, 20) <= 0) {
        return false;
    }
    std::array<char, 4096> block{};
    const ssize_t count = read(ready.fd, block.data(), block.size());
    if (count > 0) {
        shown_.append(block.data(), static_cast<std::size_t>(count));
    }
    return count > 0;
}

bool ProgramRun::shows(std::string_view text) {
    return becomesTrue([&] {
        readTerminal();
        return shown_.find(text) != std::string::npos;
    });
}

ProgramResult ProgramRun::wait(std::chrono::duration<double> limit) {
    int waitStatus = 0;
    const bool ended = becomesTrue(
        [&] {
            while (terminal_ && readTerminal()) {
            }
            return waitpid(pid_, &waitStatus, WNOHANG) == pid_;
        },
        limit);
    ProgramResult result;
    if (!ended) {
        return result;
    }
    pid_ = -1;
    result.status = WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : 128 + WTERMSIG(waitStatus);
    while (terminal_ && readTerminal()) {
    }
    if (terminal_) {
        result.output = shown_;
    } else if (fs::is_regular_file(outputPath_)) {
        result.output = contentOf(outputPath_);
    }
    result.errors = contentOf(directory_ / "errors");
    return result;
}

} // namespace vellmark::tests
