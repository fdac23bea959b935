#pragma once

#include "platform/ProcessTable.h"

#include <functional>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace vellmark {

/// A process that leads a group, with what ends with it when it must be stopped: its direct
/// children, wherever they are, and the members of its group. What has left both on purpose is not
/// of the family.
///
/// Everyone who was asked to stop is remembered and never mistaken for a later process with the
/// same number. One thread at a time.
class ProcessFamily {
public:
    /// Sends a signal to `target`, the leader, or with the leader's number below zero to its whole
    /// group. False when nobody is there any more or it cannot be known who is.
    using Send = std::function<bool(pid_t target, int number)>;

    ProcessFamily(pid_t leader, Send send);

    /// Asks all to stop: the direct children, then the leader, then the rest. The leader stands
    /// still meanwhile, so that nobody is born unseen; who was stopped before goes on and can obey.
    void tell();
    /// Asks `processes`, which an ended leader has left behind, to stop, and nobody else.
    void tellLeftBehind(std::vector<ProcessHandle> processes);

    /// Kills whoever was told, and after `tell` also who has joined the family since.
    void kill();
    /// Kills all, told or not.
    void killAll();

    /// Whether someone who is to end lives on after the leader, which has not been collected.
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
