#pragma once

#include "platform/Machine.h"
#include "platform/NotificationCenter.h"
#include "platform/Preferences.h"
#include "presentation/AgentUIActions.h"
#include "presentation/UsageNotices.h"
#include "store/AgentUsageStore.h"
#include "store/MainExecutor.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace vellmark {

/// Brings what there is to tell onto the user's screen, and what the user answers to it back: looks
/// at the store after each change, keeps what was told. Main thread.
class NoticeController {
public:
    struct Sources {
        AgentUsageStore& store;
        const Machine& machine;
        MainExecutor& executor;
        Preferences& preferences;
        DescriptorWatcher& loop;
        std::function<const Localization&()> words;
        AgentUIActions actions;
        /// Shows the settings anew, after the delivery has changed.
        std::function<void()> update;
        /// The user is being asked for the first time what he wants to be told.
        std::function<bool()> isFirstRun = [] { return false; };
        /// Off: nothing is told, nothing kept.
        bool posts = true;
    };
    explicit NoticeController(Sources sources);
    NoticeController(const NoticeController&) = delete;
    NoticeController& operator=(const NoticeController&) = delete;

    /// Once a minute, since expiries and quiet hours come by themselves, and after a change of the
    /// settings.
    void look();
    void systemDidWake();
    /// The program ends: closes the notices, whose buttons lead nowhere any more, and keeps what
    /// was told. Nothing is told afterwards.
    void end();

    NoticeDelivery delivery() const;
    void lookForService();
    /// Leads to where notices are allowed, or looks again who shows them.
    void allow();

private:
    NotificationCenter::Handlers handlers();
    void storeChanged();
    void show(const NoticePost& post);
    void choose(const std::string& id, const std::string& action);
    void keep();

    Sources sources_;
    UsageNotices notices_;
    /// Null where nothing is posted.
    std::unique_ptr<NotificationCenter> center_;
    std::shared_ptr<AgentUsageStore::Subscription> subscription_;
    bool isLookPosted_ = false;
    bool hasEnded_ = false;
    std::optional<Seconds> lastSearch_;
    std::optional<Seconds> lastRefusal_;
    std::error_code keepError_;
    /// Goes away with this, so that a look that was posted is dropped.
    std::shared_ptr<int> isAlive_ = std::make_shared<int>();
};

} // namespace vellmark
