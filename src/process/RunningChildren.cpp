#include "process/RunningChildren.h"

#include "process/ChildGroup.h"

#include <cstdlib>
#include <map>
#include <mutex>
#include <signal.h>
#include <sys/wait.h>
#include <utility>

namespace vellmark {

class RunningChildrenRegistry {
public:
    /// Never destroyed: threads may still use it while the program ends.
    static RunningChildrenRegistry& only() {
        static auto* const registry = new RunningChildrenRegistry;
        return *registry;
    }

    using Report = RunningChildren::Report;

    /// A child that has not been collected.
    struct Child {
        const ChildGroup* group = nullptr; ///< the one it was launched in; null for none
        ProcessTime at = 0;
        bool isHandedOver = false;
        std::vector<Report> attached;
    };

    std::mutex lock;
    std::map<pid_t, Child> children;
    bool closed = false;
    RunningChildren::Observer observer;

    void report(const Report& report) const {
        if (observer) {
            observer(report);
        }
    }

    void reportAll() const {
        for (const auto& [pid, child] : children) {
            report({Report::Event::started, pid, child.at});
            for (const Report& attached : child.attached) {
                report(attached);
            }
        }
    }

    void forget(pid_t pid) {
        children.erase(pid);
        report({Report::Event::ended, pid, 0});
    }

    /// The children that count as running: one that was handed over is somebody else's business.
    template<typename Condition>
    std::vector<pid_t> running(Condition&& condition) const {
        std::vector<pid_t> pids;
        for (const auto& [pid, child] : children) {
            if (!child.isHandedOver && condition(child)) {
                pids.push_back(pid);
            }
        }
        return pids;
    }

    /// Whether this thread must not launch anything.
    bool refuses(const ChildGroup* group) const { return closed || (group && group->isClosed_); }

    std::vector<pid_t> close(ChildGroup& group) {
        const std::lock_guard hold(lock);
        group.isClosed_ = true;
        return running([&group](const Child& child) { return child.group == &group; });
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
    if (all.refuses(currentGroup)) {
        return false;
    }
    const ProcessTime now = processTimeNow();
    all.children[pid] = {currentGroup, now, false, {}};
    all.report({Report::Event::started, pid, now});
    return true;
}

void remove(pid_t pid) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    const auto found = all.children.find(pid);
    if (found != all.children.end() && !found->second.isHandedOver) {
        all.forget(pid);
    }
}

std::vector<pid_t> snapshot() {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    return all.running([](const auto&) { return true; });
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

bool signal(pid_t target, int number) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    return all.children.contains(std::abs(target)) && ::kill(target, number) == 0;
}

bool isRunning(pid_t pid) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    siginfo_t info{};
    return all.children.contains(pid) &&
           ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

void setObserver(Observer observer) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    all.observer = std::move(observer);
    all.reportAll();
}

void attach(pid_t child, const ProcessHandle& process) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    const Report report{Report::Event::attached, process.pid(), processTimeNow()};
    // Asked only now: if it lives, the number was its own at that moment.
    if (!process.isAlive()) {
        return;
    }
    if (const auto found = all.children.find(child); found != all.children.end()) {
        found->second.attached.push_back(report);
    }
    all.report(report);
}

void handOver(pid_t pid) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    if (const auto found = all.children.find(pid); found != all.children.end()) {
        found->second.isHandedOver = true;
    }
}

void reportEnd(pid_t pid) {
    RunningChildrenRegistry& all = registry();
    const std::lock_guard hold(all.lock);
    all.forget(pid);
}

} // namespace vellmark::RunningChildren
