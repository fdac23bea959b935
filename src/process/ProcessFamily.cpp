#include "process/ProcessFamily.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iterator>
#include <thread>
#include <utility>

namespace vellmark {
namespace {

/// A process that has not come to a standstill after this many looks, about as many milliseconds,
/// hangs in the system and has no children meanwhile.
constexpr int mostLooks = 50;
constexpr std::chrono::microseconds longestPause{1000};

} // namespace

ProcessFamily::ProcessFamily(pid_t leader, Send send) : leader_(leader), send_(std::move(send)) {}

void ProcessFamily::tell() {
    isWholeFamilyTold_ = true;
    makeLeaderStandStill();
    auto children = directChildHandles(leader_);
    auto group = groupMemberHandles(leader_);
    // Asked only now: if the leader still has its number, it had it all the while.
    if (!send_(leader_, 0)) {
        send_(leader_, SIGCONT);
        return;
    }
    ask(std::move(children));
    // Without a table of processes, the group's number must do.
    const bool isGroupReached = !group && send_(-leader_, SIGTERM) && send_(-leader_, SIGCONT);
    if (!isGroupReached) {
        send_(leader_, SIGTERM);
        send_(leader_, SIGCONT);
    }
    if (group) {
        ask(std::move(*group));
    }
}

void ProcessFamily::tellLeftBehind(std::vector<ProcessHandle> processes) {
    std::erase_if(processes, [](const ProcessHandle& each) { return !each.isAlive(); });
    ask(std::move(processes));
}

void ProcessFamily::ask(std::vector<ProcessHandle> processes) {
    for (ProcessHandle& process : processes) {
        if (process.pid() == leader_ || isTold(process.pid()) || !process.signal(SIGTERM)) {
            continue;
        }
        process.signal(SIGCONT);
        told_.push_back(std::move(process));
    }
}

void ProcessFamily::kill() {
    std::vector<ProcessHandle> joined;
    if (isWholeFamilyTold_) {
        makeLeaderStandStill();
        joined = directChildHandles(leader_);
        if (auto group = groupMemberHandles(leader_)) {
            std::ranges::move(*group, std::back_inserter(joined));
        }
        if (!isNumberTaken()) {
            joined.clear();
        }
    }
    for (const auto* const processes : {&told_, &joined}) {
        for (const ProcessHandle& process : *processes) {
            process.signal(SIGKILL);
        }
    }
    if (isWholeFamilyTold_ && !send_(-leader_, SIGKILL)) {
        send_(leader_, SIGKILL);
    }
}

void ProcessFamily::killAll() {
    isWholeFamilyTold_ = true;
    kill();
}

/// A birth that is under way when the signal comes is still completed.
void ProcessFamily::makeLeaderStandStill() const {
    if (!send_(leader_, SIGSTOP)) {
        return;
    }
    // Most stand still at once; a whole millisecond would be most of what a soft stop is late.
    std::chrono::microseconds pause{50};
    for (int look = 0; look < mostLooks && isProcessAlive(leader_) && !isProcessStopped(leader_);
         ++look) {
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, longestPause);
    }
}

bool ProcessFamily::outlivesLeader() const {
    if (std::ranges::any_of(told_, &ProcessHandle::isAlive)) {
        return true;
    }
    if (!isWholeFamilyTold_) {
        return false;
    }
    const auto members = processGroupMembers(leader_);
    return !members || std::ranges::any_of(*members, [this](pid_t pid) { return pid != leader_; });
}

bool ProcessFamily::isTold(pid_t pid) const {
    return std::ranges::any_of(
        told_, [pid](const ProcessHandle& each) { return each.pid() == pid && each.isAlive(); });
}

/// By the leader itself or by a member of its group.
bool ProcessFamily::isNumberTaken() const {
    return send_(leader_, 0) || std::ranges::any_of(told_, [this](const ProcessHandle& each) {
               return each.isInGroup(leader_);
           });
}

} // namespace vellmark
