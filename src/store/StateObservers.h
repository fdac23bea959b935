#pragma once

#include "store/AgentUsageStore.h"

#include <memory>
#include <vector>

namespace vellmark {

/// Those who are told of the store's changes. Main thread; observers may come and go while others
/// are being told.
class StateObservers {
public:
    std::shared_ptr<AgentUsageStore::Subscription> add(AgentUsageStore::Observer observer);

    /// Tells all that a change is coming, lets it land, and tells all that it has.
    template<typename Change>
    void around(Change&& change) {
        tell(&AgentUsageStore::Observer::willChange);
        change();
        tell(&AgentUsageStore::Observer::didChange);
    }

private:
    void tell(std::function<void()> AgentUsageStore::Observer::*message);

    std::vector<std::weak_ptr<AgentUsageStore::Subscription>> subscriptions_;
};

class AgentUsageStore::Subscription {
public:
    explicit Subscription(Observer observer) : observer_(std::move(observer)) {}

private:
    friend class StateObservers;
    Observer observer_;
};

} // namespace vellmark
