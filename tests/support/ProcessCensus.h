#pragma once

#include "platform/ProcessTable.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace vellmark::tests {

/// What this process holds of the system: a test that starts processes compares before and after.

/// The open descriptors of this process.
inline std::size_t openDescriptorCount() {
    const std::filesystem::directory_iterator entries("/dev/fd");
    // The listing itself holds one.
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries))) - 1;
}

/// The threads of this process; 0 where the system has no /proc.
inline std::size_t threadCount() {
    std::error_code error;
    const std::filesystem::directory_iterator entries("/proc/self/task", error);
    return error ? 0 : static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// The children of this process that run, without zombies.
inline std::size_t livingChildCount() {
    return directChildren(::getpid()).size();
}

/// True when a child of this process has ended and nobody has collected it.
inline bool hasZombieChild() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

/// Waits until `condition` holds; false when it does not within `limit`.
inline bool becomesTrue(const std::function<bool()>& condition,
                        std::chrono::duration<double> limit = std::chrono::seconds(20)) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace vellmark::tests
