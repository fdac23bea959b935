#include "app/ActivityFeed.h"

#include "platform/UnusedMemory.h"

#include <iterator>
#include <utility>

namespace vellmark {

ActivityFeed::ActivityFeed(AgentUsageStore& store, std::function<void()> update)
    : store_(store), update_(std::move(update)) {}

void ActivityFeed::fill(ActivityPageContent& content) {
    if (!subscription_ || languageCode_ != content.words.languageCode()) {
        languageCode_ = content.words.languageCode();
        subscription_ = store_.followActivity(
            ActivityLog::daysKept, [this](ActivityLog::News news) { take(std::move(news)); });
    } else {
        store_.lookAtActivity(); // what another process has written
    }
    content.trouble = trouble_;
    content.entries = entries_;
    content.entryCount = entries_ ? entries_->size() : 0;
}

void ActivityFeed::take(ActivityLog::News news) {
    // A list that is shown only grows; another one begins anew.
    if (news.startsAnew || !entries_) {
        entries_ = std::make_shared<std::vector<ActivityEntry>>(std::move(news.entries));
    } else {
        entries_->insert(entries_->end(), std::make_move_iterator(news.entries.begin()),
                         std::make_move_iterator(news.entries.end()));
    }
    update_();
}

void ActivityFeed::rest() {
    if (subscription_) {
        subscription_.reset();
        entries_.reset();
        trouble_.clear();
        releaseUnusedMemory();
    }
}

void ActivityFeed::setTrouble(std::string trouble) {
    trouble_ = std::move(trouble);
    update_();
}

} // namespace vellmark
