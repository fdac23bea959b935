#include "probes/RunningChildren.h"

#include "probes/ChildGroup.h"

#include <map>
#include <mutex>
#include <utility>

namespace vellmark {

class RunningChildrenRegistry {
public:
    /// Never destroyed: threads may still use it while the program ends.
    static RunningChildrenRegistry& only() {
        static auto* const registry = new RunningChildrenRegistry;
        return *registry;
    }

    std::mutex lock;
    /// With the group that each was launched in; null for none.
    std::map<pid_t, const ChildGroup*> children;
    bool closed = false;
    RunningChildren::Observer observer;

    void report(RunningChildren::Event event, pid_t pid) const {
        if (observer)
            observer(event, pid);
    }

    /// Whether this thread must not launch anything.
    bool refuses(const ChildGroup* group) const { return closed || (group && group->isClosed_); }

    std::vector<pid_t> close(ChildGroup& group) {
        const std::lock_guard hold(lock);
        group.isClosed_ = true;
        std::vector<pid_t> members;
        for (const auto& [pid, owner] : children) {
            if (owner == &group)
                members.push_back(pid);
        }
        return members;
    }
};

namespace {

thread_local ChildGroup* currentGroup = nullptr;

RunningChildrenRegistry& registry() {
    return RunningChildrenRegistry::only();
}

} // namespace

ChildGroup::Scope::Scope(ChildGroup& group) {
    currentGroup = &group;
}

ChildGroup::Scope::~Scope() {
    currentGroup = nullptr;
}

std::vector<pid_t> ChildGroup::close() {
    return registry().close(*this);
}

} // namespace vellmark

namespace vellmark::RunningChildren {

bool insert(pid_t pid) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    if (all.refuses(currentGroup))
        return false;
    all.children.emplace(pid, currentGroup);
    all.report(Event::started, pid);
    return true;
}

void remove(pid_t pid) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    if (all.children.erase(pid) != 0)
        all.report(Event::ended, pid);
}

std::vector<pid_t> snapshot() {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    std::vector<pid_t> pids;
    for (const auto& [pid, group] : all.children)
        pids.push_back(pid);
    return pids;
}

void close() {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    all.closed = true;
}

bool refusesLaunch() {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    return all.refuses(currentGroup);
}

void reopen() {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    all.closed = false;
}

void setObserver(Observer observer) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    all.observer = std::move(observer);
}

void handOver(pid_t pid) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    all.children.erase(pid);
}

void reportEnd(pid_t pid) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    all.report(Event::ended, pid);
}

} // namespace vellmark::RunningChildren
