#pragma once

#include <sys/types.h>
#include <vector>

namespace vellmark {

/// The children that one piece of work launches, so that it can be called off without touching
/// those of others. Usable from any thread; outlives its scopes. Part of RunningChildren.cpp.
class ChildGroup {
public:
    /// While it lives, what this thread launches belongs to the group. Scopes do not nest.
    class Scope {
    public:
        explicit Scope(ChildGroup& group);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
    };

    ChildGroup() = default;
    ChildGroup(const ChildGroup&) = delete;
    ChildGroup& operator=(const ChildGroup&) = delete;

    /// From now on every launch within the group fails with ECANCELED. Returns the group's
    /// children that are in the set of running children.
    std::vector<pid_t> close();

private:
    friend class RunningChildrenRegistry;
    bool isClosed_ = false; ///< under the registry's lock
};

} // namespace vellmark
