#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// A program that is to run as a child of this one, and how it is connected.
struct ChildLaunch {
    /// Run as it is, never looked up and never through a shell.
    std::filesystem::path program;
    /// Without the program's own name.
    std::vector<std::string> arguments;
    /// "NAME=value" each.
    std::vector<std::string> environment;
    /// Empty: this program's own.
    std::filesystem::path directory;
    /// What becomes standard input, output and error; -1 is the null device.
    std::array<int, 3> streams{-1, -1, -1};
    /// A session of its own, without a terminal, and thereby a process group of its own; else the
    /// group alone.
    bool hasOwnSession = true;

    enum class Stage {
        begins, ///< right before the program
        failed, ///< the program cannot be run and the child ends
    };
    /// Called in the child, because a program that is killed at this moment can no longer report
    /// it. May do only what a signal handler may. SIGPIPE is ignored meanwhile.
    void (*announce)(Stage) = nullptr;
};

/// Launches a child that inherits nothing but what is named: other descriptors are closed in it,
/// signals are handled by default and none is blocked. Returns its number once it runs the program.
/// Throws std::system_error, with nothing left of the child.
pid_t launchChild(const ChildLaunch& launch);

} // namespace vellmark
