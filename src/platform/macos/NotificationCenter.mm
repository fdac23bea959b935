#include "platform/NotificationCenter.h"

#include "platform/macos/Retained.h"

#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

/// Told by the system of clicks, also of one that has started the program.
@interface VellmarkNotificationDelegate : NSObject <UNUserNotificationCenterDelegate> {
@public
    std::function<void(std::string id, std::string action)> onResponse;
}
@end

@implementation VellmarkNotificationDelegate
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:
             (void (^)(UNNotificationPresentationOptions options))completionHandler {
    // Also while a window of the program is in front.
    completionHandler(UNNotificationPresentationOptionBanner |
                      UNNotificationPresentationOptionList);
}
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler {
    onResponse([[[[response notification] request] identifier] UTF8String],
               [[response actionIdentifier] UTF8String]);
    completionHandler();
}
@end

namespace vellmark {
namespace {

NSString* text(const std::string& words) {
    return [NSString stringWithUTF8String:words.c_str()];
}

/// Runs `task` on the main thread soon; the system answers on threads of its own.
void onMainThread(const std::function<void()>& task) {
    const auto copy = task; // blocks copy what they use
    [[NSOperationQueue mainQueue] addOperationWithBlock:^{
      copy();
    }];
}

class UserNotifications final : public NotificationCenter {
public:
    explicit UserNotifications(Handlers handlers)
        : handlers_(std::move(handlers)), delegate_(Retained<VellmarkNotificationDelegate*>::adopt(
                                              [[VellmarkNotificationDelegate alloc] init])) {
        const auto hold = weak();
        delegate_.get()->onResponse = [hold](std::string id, std::string action) {
            onMainThread([hold, id = std::move(id), action = std::move(action)] {
                if (const auto self = hold.lock()) {
                    (*self)->respond(id, action);
                }
            });
        };
        [center() setDelegate:delegate_.get()];
    }
    ~UserNotifications() override { [center() setDelegate:nil]; }

    Availability availability() const override { return availability_; }

    void lookForService(bool mayAskUser) override {
        const auto hold = weak();
        [center() getNotificationSettingsWithCompletionHandler:^(UNNotificationSettings* settings) {
          const UNAuthorizationStatus status = [settings authorizationStatus];
          onMainThread([hold, status, mayAskUser] {
              if (const auto self = hold.lock()) {
                  (*self)->take(status, mayAskUser);
              }
          });
        }];
    }

    void post(const NotificationContent& content) override {
        const auto request = [UNNotificationRequest requestWithIdentifier:text(content.id)
                                                                  content:systemContent(content)
                                                                  trigger:nil];
        const auto hold = weak();
        const std::string id = content.id;
        [center() addNotificationRequest:request
                   withCompletionHandler:^(NSError* error) {
                     const bool isRefused = static_cast<bool>(error);
                     onMainThread([hold, id, isRefused] {
                         const auto self = hold.lock();
                         if (self && isRefused) {
                             (*self)->handlers_.failed(id);
                         }
                     });
                   }];
    }

    void close(const std::string& id) override {
        [center() removeDeliveredNotificationsWithIdentifiers:[NSArray arrayWithObject:text(id)]];
    }

    /// The system keeps what it was given, also for a program that has ended.
    bool isUnderWay(const std::string& /*id*/) const override { return false; }

    bool openSystemSettings() const override {
        NSString* const page =
            @"x-apple.systempreferences:com.apple.Notifications-Settings.extension";
        return [[NSWorkspace sharedWorkspace] openURL:[NSURL URLWithString:page]];
    }
    bool outlivesProgram() const override { return true; }

private:
    static UNUserNotificationCenter* center() {
        return [UNUserNotificationCenter currentNotificationCenter];
    }

    std::weak_ptr<UserNotifications*> weak() const { return self_; }

    void take(UNAuthorizationStatus status, bool mayAskUser) {
        if (status == UNAuthorizationStatusNotDetermined && mayAskUser) {
            const auto hold = weak();
            [center() requestAuthorizationWithOptions:UNAuthorizationOptionAlert
                                    completionHandler:^(BOOL granted, NSError*) {
                                      const bool isGranted = granted;
                                      onMainThread([hold, isGranted] {
                                          if (const auto self = hold.lock()) {
                                              (*self)->setAvailability(
                                                  isGranted ? Availability::available
                                                            : Availability::forbidden);
                                          }
                                      });
                                    }];
            return;
        }
        setAvailability(status == UNAuthorizationStatusNotDetermined ? Availability::unasked
                        : status == UNAuthorizationStatusDenied      ? Availability::forbidden
                                                                     : Availability::available);
    }

    void setAvailability(Availability availability) {
        if (std::exchange(availability_, availability) != availability) {
            handlers_.availabilityChanged();
        }
    }

    void respond(const std::string& id, const std::string& action) {
        if (action == [UNNotificationDismissActionIdentifier UTF8String]) {
            handlers_.gone(id);
            return;
        }
        const bool isNotice = action == [UNNotificationDefaultActionIdentifier UTF8String];
        handlers_.chosen(id, isNotice ? std::string() : action);
        handlers_.gone(id);
    }

    UNNotificationContent* systemContent(const NotificationContent& content) {
        UNMutableNotificationContent* const result =
            [[[UNMutableNotificationContent alloc] init] autorelease];
        [result setTitle:text(content.title)];
        [result setBody:text(content.body)];
        [result setCategoryIdentifier:text(categoryOf(content))];
        return result;
    }

    /// Buttons belong to a category, of which the system has to be told before. One for each set of
    /// buttons, in whatever language they are.
    std::string categoryOf(const NotificationContent& content) {
        std::string name;
        NSMutableArray* const actions = [NSMutableArray array];
        for (const NotificationContent::Action& action : content.actions) {
            name += action.name + "\n" + action.title + "\n";
            [actions addObject:[UNNotificationAction
                                   actionWithIdentifier:text(action.name)
                                                  title:text(action.title)
                                                options:UNNotificationActionOptionNone]];
        }
        if (!categories_.contains(name)) {
            categories_.emplace(
                name, Retained<UNNotificationCategory*>::retain([UNNotificationCategory
                          categoryWithIdentifier:text(name)
                                         actions:actions
                               intentIdentifiers:[NSArray array]
                                         options:UNNotificationCategoryOptionCustomDismissAction]));
            NSMutableSet* const all = [NSMutableSet set];
            for (const auto& [known, category] : categories_) {
                [all addObject:category.get()];
            }
            [center() setNotificationCategories:all];
        }
        return name;
    }

    Handlers handlers_;
    /// Goes away with this, so that an answer that comes later is dropped.
    std::shared_ptr<UserNotifications*> self_ = std::make_shared<UserNotifications*>(this);
    Retained<VellmarkNotificationDelegate*> delegate_;
    std::map<std::string, Retained<UNNotificationCategory*>> categories_;
    Availability availability_ = Availability::unknown;
};

/// Run from a build tree there is no bundle, and the system knows nobody to show notices for.
class NoNotifications final : public NotificationCenter {
public:
    Availability availability() const override { return Availability::unserved; }
    void lookForService(bool /*mayAskUser*/) override {}
    void post(const NotificationContent& /*content*/) override {}
    void close(const std::string& /*id*/) override {}
    bool isUnderWay(const std::string& /*id*/) const override { return false; }
    bool openSystemSettings() const override { return false; }
    bool outlivesProgram() const override { return false; }
};

} // namespace

std::unique_ptr<NotificationCenter> makeNotificationCenter(DescriptorWatcher& /*loop*/,
                                                           NotificationIcon /*icon*/,
                                                           NotificationCenter::Handlers handlers) {
    if ([[NSBundle mainBundle] bundleIdentifier] == nil) {
        return std::make_unique<NoNotifications>();
    }
    return std::make_unique<UserNotifications>(std::move(handlers));
}

} // namespace vellmark
