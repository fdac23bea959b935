// The system itself starts a bundle once and tells the running one of a further opening (the
// "reopen" Apple event). A second process, started past it, activates the first and posts a
// notification.

#include "platform/SingleInstance.h"

#include "platform/macos/Retained.h"

#import <AppKit/AppKit.h>
#include <unistd.h>

/// Receives what asks the running instance to show itself.
@interface VellmarkShowReceiver : NSObject {
@public
    std::function<void()> onShow;
}
- (void)show:(NSNotification*)notification;
- (void)handleReopen:(NSAppleEventDescriptor*)event withReply:(NSAppleEventDescriptor*)reply;
@end

@implementation VellmarkShowReceiver
- (void)show:(NSNotification*)notification {
    onShow();
}
- (void)handleReopen:(NSAppleEventDescriptor*)event withReply:(NSAppleEventDescriptor*)reply {
    onShow();
}
@end

namespace vellmark {
namespace {

NSString* const showNotification = @"app.vellmark.Vellmark.Show";

/// Null when no other process of this bundle runs, or this one has none (run from a build tree).
NSRunningApplication* runningInstance() {
    NSString* const identifier = [[NSBundle mainBundle] bundleIdentifier];
    if (identifier == nil)
        return nil;
    for (NSRunningApplication* each in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
        if ([each processIdentifier] != ::getpid())
            return each;
    }
    return nil;
}

class OnlyInstance final : public SingleInstance {
public:
    explicit OnlyInstance(std::function<void()> onShow)
        : receiver_(Retained<VellmarkShowReceiver*>::adopt([[VellmarkShowReceiver alloc] init])) {
        receiver_.get()->onShow = std::move(onShow);
        [[NSDistributedNotificationCenter defaultCenter] addObserver:receiver_.get()
                                                            selector:@selector(show:)
                                                                name:showNotification
                                                              object:nil];
        [[NSAppleEventManager sharedAppleEventManager] setEventHandler:receiver_.get()
                                                           andSelector:@selector(handleReopen:
                                                                                    withReply:)
                                                         forEventClass:kCoreEventClass
                                                            andEventID:kAEReopenApplication];
    }
    ~OnlyInstance() override {
        [[NSDistributedNotificationCenter defaultCenter] removeObserver:receiver_.get()];
        [[NSAppleEventManager sharedAppleEventManager]
            removeEventHandlerForEventClass:kCoreEventClass
                                 andEventID:kAEReopenApplication];
    }

private:
    Retained<VellmarkShowReceiver*> receiver_;
};

} // namespace

std::unique_ptr<SingleInstance> claimSingleInstance(DescriptorWatcher& /*loop*/,
                                                    SingleInstanceRequest request) {
    if (NSRunningApplication* const other = runningInstance()) {
        [other activateWithOptions:0];
        [[NSDistributedNotificationCenter defaultCenter] postNotificationName:showNotification
                                                                       object:nil];
        return nullptr;
    }
    return std::make_unique<OnlyInstance>(std::move(request.onShow));
}

} // namespace vellmark
