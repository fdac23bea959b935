#include "process/watcher/WatchedChildren.h"

#include "process/ProcessFamily.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>
#include <utility>

namespace vellmark {
namespace {

constexpr auto lookInterval = std::chrono::milliseconds(20);

bool anyAlive(const std::vector<ProcessHandle>& handles) {
    return std::ranges::any_of(handles, &ProcessHandle::isAlive);
}

ProcessFamily familyOf(const ProcessHandle& leader) {
    // A group's number says nothing here: nobody keeps it from being used again.
    return ProcessFamily(leader.pid(), [&leader](pid_t target, int number) {
        return target == leader.pid() && leader.signal(number);
    });
}

} // namespace

void WatchedChildren::started(pid_t pid, ProcessTime at) {
    if (auto handle = ProcessHandle::openBegunBy(pid, at)) {
        children_.insert_or_assign(pid, std::move(*handle));
    }
}

void WatchedChildren::ended(pid_t pid) {
    children_.erase(pid);
    std::erase_if(attached_, [](const ProcessHandle& process) { return !process.isAlive(); });
}

void WatchedChildren::attached(pid_t pid, ProcessTime at) {
    if (auto handle = ProcessHandle::openBegunBy(pid, at)) {
        attached_.push_back(std::move(*handle));
    }
}

void WatchedChildren::endAll(Seconds grace) {
    std::vector<ProcessFamily> families;
    for (const auto& [pid, child] : children_) {
        families.push_back(familyOf(child));
    }
    for (ProcessFamily& family : families) {
        family.tell();
    }
    for (const ProcessHandle& process : attached_) {
        process.signal(SIGTERM);
        process.signal(SIGCONT);
    }
    const auto isAnythingAlive = [&] {
        return anyAlive(attached_) ||
               std::ranges::any_of(children_,
                                   [](const auto& child) { return child.second.isAlive(); }) ||
               std::ranges::any_of(
                   families, [](const ProcessFamily& family) { return anyAlive(family.told()); });
    };
    const auto deadline = std::chrono::steady_clock::now() + grace;
    while (isAnythingAlive() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(lookInterval);
    }
    for (ProcessFamily& family : families) {
        family.kill();
    }
    for (const ProcessHandle& process : attached_) {
        process.signal(SIGKILL);
    }
    children_.clear();
    attached_.clear();
}

} // namespace vellmark
