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
        descriptor, ///< written to `descriptor`, which stays the caller's
        capture,    ///< kept, up to `limit` bytes, for the result; the rest is read and dropped
    };
    Kind kind = Kind::nullDevice;
    int descriptor = -1;
    std::size_t limit = 0;

    static ChildOutput discarded() { return {}; }
    static ChildOutput toDescriptor(int fd) { return {Kind::descriptor, fd, 0}; }
    static ChildOutput captured(std::size_t limit) { return {Kind::capture, -1, limit}; }
};

/// What to run and how it is connected. Standard input is the null device. Nothing is inherited
/// but what is named here: every other descriptor is closed in the child, signals are handled by
/// default and none is blocked. The child leads a process group of its own, so that Ctrl-C in a
/// terminal reaches the program alone, which then stops its children in order.
struct ChildConfiguration {
    std::filesystem::path executable;
    /// Without the program's own name.
    std::vector<std::string> arguments;
    Environment environment;
    /// Empty: the program's own.
    std::filesystem::path workingDirectory;
    ChildOutput standardOutput;
    ChildOutput standardError;
    /// Standard error goes where standard output goes.
    bool mergesStandardError = false;
    /// Direct children that outlive the child are told to stop as at its limit, and killed after
    /// the grace: for an interpreter whose program may ignore that its terminal has gone.
    bool stopsSurvivingChildren = false;
};

} // namespace vellmark
