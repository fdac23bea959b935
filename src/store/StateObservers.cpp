#include "store/StateObservers.h"

#include <utility>

namespace vellmark {

std::shared_ptr<AgentUsageStore::Subscription>
StateObservers::add(AgentUsageStore::Observer observer) {
    auto subscription = std::make_shared<AgentUsageStore::Subscription>(std::move(observer));
    subscriptions_.push_back(subscription);
    return subscription;
}

void StateObservers::tell(std::function<void()> AgentUsageStore::Observer::*message) {
    std::erase_if(subscriptions_, [](const auto& subscription) { return subscription.expired(); });
    const auto audience = subscriptions_; // one who is told may subscribe others
    for (const auto& listener : audience) {
        if (const auto subscription = listener.lock(); subscription) {
            if (const auto& told = subscription->observer_.*message) {
                told();
            }
        }
    }
}

} // namespace vellmark
