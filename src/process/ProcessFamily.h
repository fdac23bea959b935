#pragma once

#include "platform/ProcessTable.h"

#include <functional>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace vellmark {

/// A process that leads a group, together with what ends with it when it must be stopped: its
/// direct children, wherever they are, and the members of its group. What has left both on purpose
/// is not part of the family.
///
/// Every process that was asked to stop is remembered and never mistaken for a later one with the
/// same number. One thread at a time.
class ProcessFamily {
public:
    /// Sends a signal to `target`: the leader or, if negative, the leader's whole group. False when
    /// nothing is there any more, or when it is unclear what is.
    using Send = std::function<bool(pid_t target, int number)>;

    ProcessFamily(pid_t leader, Send send);

    /// Asks all to stop: the direct children, then the leader, then the rest. The leader is held
    /// still meanwhile, so that nothing is born unseen; a process that was stopped before is
    /// continued, so that it can obey.
    void tell();
    /// Asks `processes`, left behind by a leader that has ended, to stop, and nothing else.
    void tellLeftBehind(std::vector<ProcessHandle> processes);

    /// Kills whatever was told to stop and, after `tell`, whatever has joined the family since.
    void kill();
    /// Kills all, told or not.
    void killAll();

    /// Whether anything that is to end is still alive after the leader, which has not been
    /// collected.
    bool outlivesLeader() const;

    const std::vector<ProcessHandle>& told() const { return told_; }
    std::vector<ProcessHandle> takeTold() { return std::exchange(told_, {}); }

private:
    void makeLeaderStandStill() const;
    bool isTold(pid_t pid) const;
    void ask(std::vector<ProcessHandle> processes);
    bool isNumberTaken() const;

    pid_t leader_;
    Send send_;
    bool isWholeFamilyTold_ = false;
    std::vector<ProcessHandle> told_;
};

} // namespace vellmark
