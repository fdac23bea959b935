#include "watcher/WatchedChildren.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iterator>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

constexpr auto lookInterval = std::chrono::milliseconds(20);

bool anyAlive(const std::vector<ProcessHandle>& handles) {
    return std::ranges::any_of(handles, &ProcessHandle::isAlive);
}

} // namespace

void WatchedChildren::started(pid_t pid) {
    auto handle = ProcessHandle::openChild(pid, program_);
    // When the program has died meanwhile, its children and this process have the same new parent.
    if (!handle && ::getppid() != program_)
        handle = ProcessHandle::openChild(pid, ::getppid());
    if (handle)
        children_.insert_or_assign(pid, std::move(*handle));
}

void WatchedChildren::endAll(Seconds grace) {
    std::vector<ProcessHandle> family;
    for (auto& [pid, child] : children_) {
        std::ranges::move(child.directChildren(), std::back_inserter(family));
        family.push_back(std::move(child));
    }
    children_.clear();
    for (const ProcessHandle& member : family)
        member.signal(SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + grace;
    while (anyAlive(family) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(lookInterval);
    for (const ProcessHandle& member : family)
        member.signal(SIGKILL);
}

} // namespace vellmark
