#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// The system's table of processes. Every function may be called from any thread.

/// The direct children of `parent`, without zombies.
std::vector<pid_t> directChildren(pid_t parent);

/// The members of a process group, without zombies; absent when the table cannot be read (no
/// descriptors left).
std::optional<std::vector<pid_t>> processGroupMembers(pid_t group);

/// A moment on the clock by which the system notes when a process began, in its own units.
using ProcessTime = std::int64_t;
/// May be asked where a signal handler may.
ProcessTime processTimeNow();

/// True when `pid` exists and is no zombie.
bool isProcessAlive(pid_t pid);

/// True when `pid` exists and stands still, as SIGSTOP makes it.
bool isProcessStopped(pid_t pid);

/// One process, remembered for good: a later process with the same number is never taken for it.
/// Holds a descriptor on Linux, number and start time on macOS. Movable.
class ProcessHandle {
public:
    /// Absent when there is no such process or the system cannot remember it (no descriptors left).
    static std::optional<ProcessHandle> open(pid_t pid);
    /// The same, and absent as well when `pid` is no child of `parent`.
    static std::optional<ProcessHandle> openChild(pid_t pid, pid_t parent);

    /// The process that had the number at that moment: any other with that number began later.
    static std::optional<ProcessHandle> openBegunBy(pid_t pid, ProcessTime time);

    ProcessHandle(ProcessHandle&&) noexcept;
    ProcessHandle& operator=(ProcessHandle&&) noexcept;
    ~ProcessHandle();

    pid_t pid() const;
    /// False for a zombie.
    bool isAlive() const;
    /// Sends `number`; false when the process is gone or may not be signalled.
    bool signal(int number) const;
    /// False for a zombie.
    bool isInGroup(pid_t group) const;

private:
    struct Identity;
    explicit ProcessHandle(std::unique_ptr<Identity> identity);
    std::unique_ptr<Identity> identity_;
};

/// Handles of the direct children of `parent`, without zombies. Only for callers that know the
/// number to be taken: by a child of this program that has not been collected.
std::vector<ProcessHandle> directChildHandles(pid_t parent);

/// Handles of the members of a group, without zombies; absent when the table cannot be read. Only
/// for callers that know, or find out afterwards, that the number belonged to the group they mean:
/// through a leader that has not been collected, or a living member.
std::optional<std::vector<ProcessHandle>> groupMemberHandles(pid_t group);

} // namespace vellmark
