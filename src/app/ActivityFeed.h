#pragma once

#include "presentation/ActivityPageContent.h"
#include "store/AgentUsageStore.h"

#include <functional>
#include <memory>
#include <vector>

namespace vellmark {

/// The entries of the activity page: read from the log when the page first asks for them, kept up
/// to date, and given back when it rests. Main thread.
class ActivityFeed {
public:
    /// `update` shows the page's content anew.
    ActivityFeed(AgentUsageStore& store, std::function<void()> update);

    /// Puts the entries in, as far as they have been read, and begins to read them.
    void fill(ActivityPageContent& content);
    /// Forgets the entries, and what went wrong.
    void rest();
    /// Why the log could not be saved; empty after it was.
    void setTrouble(std::string trouble);

private:
    void take(ActivityLog::News news);

    AgentUsageStore& store_;
    std::function<void()> update_;
    std::shared_ptr<AgentUsageStore::ActivitySubscription> subscription_;
    std::shared_ptr<std::vector<ActivityEntry>> entries_;
    std::string languageCode_;
    std::string trouble_;
};

} // namespace vellmark
