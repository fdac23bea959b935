#pragma once

#include "platform/Machine.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace vellmark {

/// Where one of a child's output streams goes.
struct ChildOutput {
    enum class Kind {
        nullDevice,
        descriptor, ///< written to `descriptor`, which stays the caller's, without a limit
        capture,    ///< kept, up to `limit` bytes, for the result; the rest is read and dropped
        recording,  ///< copied to `descriptor`, up to `limit` bytes; more stops the child
    };
    Kind kind = Kind::nullDevice;
    int descriptor = -1;
    std::size_t limit = 0;

    static ChildOutput toDescriptor(int fd) { return {Kind::descriptor, fd, 0}; }
    static ChildOutput recorded(int fd, std::size_t limit) { return {Kind::recording, fd, limit}; }
    static ChildOutput captured(std::size_t limit) { return {Kind::capture, -1, limit}; }
};

/// What to run and how it is connected. The child inherits only what is named here: every other
/// descriptor is closed in it, signals have their default handling and none is blocked. It leads a
/// session and a process group of its own. So Ctrl-C in a terminal reaches the program alone, which
/// then stops its children in order, and a child that asks for the terminal finds none; reaching
/// for the program's would get it stopped.
struct ChildConfiguration {
    std::filesystem::path executable;
    /// Without the program's own name.
    std::vector<std::string> arguments;
    Environment environment;
    /// Empty: the program's own.
    std::filesystem::path workingDirectory;
    /// What the child finds on its standard input, followed by its end: at most `longestInput`
    /// bytes, what any pipe takes at once. Empty: the null device.
    std::string standardInput;
    static constexpr std::size_t longestInput = 4096;
    ChildOutput standardOutput;
    ChildOutput standardError;
    /// Standard error goes where standard output goes.
    bool mergesStandardError = false;
    /// Direct children that outlive the child are told to stop, as at its limit, and killed after
    /// the grace: for an interpreter whose program may ignore that its terminal is gone.
    bool stopsSurvivingChildren = false;
    /// The child stays in the program's session, in a process group of its own: for programs that
    /// the user is meant to see and answer.
    bool sharesTerminal = false;
};

} // namespace vellmark
