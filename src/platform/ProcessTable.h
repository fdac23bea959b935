#pragma once

#include <memory>
#include <optional>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// The system's table of processes. Every function may be called from any thread.

/// The direct children of `parent`, without zombies.
std::vector<pid_t> directChildren(pid_t parent);

/// True when `pid` exists and is no zombie.
bool isProcessAlive(pid_t pid);

/// One process, remembered for good: a later process with the same number is never taken for it.
/// Holds a descriptor on Linux, number and start time on macOS. Movable.
class ProcessHandle {
public:
    /// Absent when there is no such process or the system cannot remember it (no descriptors left).
    static std::optional<ProcessHandle> open(pid_t pid);
    /// The same, and absent as well when `pid` is no child of `parent`.
    static std::optional<ProcessHandle> openChild(pid_t pid, pid_t parent);

    ProcessHandle(ProcessHandle&&) noexcept;
    ProcessHandle& operator=(ProcessHandle&&) noexcept;
    ~ProcessHandle();

    pid_t pid() const;
    /// False for a zombie.
    bool isAlive() const;
    /// Sends `number`; false when the process is gone or may not be signalled.
    bool signal(int number) const;
    /// Handles of its direct children, without zombies; never those of a later process with its
    /// number.
    std::vector<ProcessHandle> directChildren() const;

private:
    struct Identity;
    explicit ProcessHandle(std::unique_ptr<Identity> identity);
    std::unique_ptr<Identity> identity_;
};

/// Handles of the direct children of `parent`, without zombies. For who knows that the number is
/// taken: a child of this program that has not been collected.
std::vector<ProcessHandle> directChildHandles(pid_t parent);

} // namespace vellmark
