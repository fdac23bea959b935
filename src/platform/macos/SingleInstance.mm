// The system itself starts a bundle once and tells the running one of a further opening (the
// "reopen" Apple event). A second process, started past it, activates the first and posts a
// notification. A lock tells it from a process of the same bundle that looks at another machine: a
// demo.

#include "platform/SingleInstance.h"

#include "platform/Descriptor.h"
#include "platform/PrivateDirectory.h"
#include "platform/RegularFile.h"
#include "platform/macos/Retained.h"

#import <AppKit/AppKit.h>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>
#include <utility>

/// Receives what asks the running instance to show itself.
@interface VellmarkShowReceiver : NSObject {
@public
    std::function<void()> onShow;
}
- (void)show:(NSNotification*)notification;
- (void)receiveReopen;
- (void)handleReopen:(NSAppleEventDescriptor*)event withReply:(NSAppleEventDescriptor*)reply;
@end

@implementation VellmarkShowReceiver
- (void)show:(NSNotification*)notification {
    onShow();
}
- (void)receiveReopen {
    [[NSAppleEventManager sharedAppleEventManager] setEventHandler:self
                                                       andSelector:@selector(handleReopen:
                                                                                withReply:)
                                                     forEventClass:kCoreEventClass
                                                        andEventID:kAEReopenApplication];
}
- (void)handleReopen:(NSAppleEventDescriptor*)event withReply:(NSAppleEventDescriptor*)reply {
    onShow();
}
@end

namespace vellmark {
namespace {

NSString* showNotification(const SingleInstanceRequest& request) {
    return [NSString stringWithFormat:@"%s.Show", request.identifier.c_str()];
}

enum class LockState { held, anothers, unknown };

LockState lockFile(Descriptor& lock, const std::filesystem::path& directory) {
    std::error_code ignored;
    makePrivateDirectory(directory);
    lock = openRegularFile(directory / "instance.lock", O_RDWR | O_CREAT, ignored);
    if (!lock.isOpen()) {
        return LockState::unknown;
    }
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
        return LockState::held;
    }
    return errno == EWOULDBLOCK ? LockState::anothers : LockState::unknown;
}

/// Null when no other process of this bundle runs, or this one has none (run from a build tree).
NSRunningApplication* runningInstance() {
    NSString* const identifier = [[NSBundle mainBundle] bundleIdentifier];
    if (identifier == nil) {
        return nil;
    }
    for (NSRunningApplication* each in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
        if ([each processIdentifier] != ::getpid()) {
            return each;
        }
    }
    return nil;
}

class OnlyInstance final : public SingleInstance {
public:
    OnlyInstance(Descriptor lock, const SingleInstanceRequest& request)
        : lock_(std::move(lock)),
          receiver_(Retained<VellmarkShowReceiver*>::adopt([[VellmarkShowReceiver alloc] init])) {
        receiver_.get()->onShow = request.onShow;
        // At once, also while the program is not in front.
        [[NSDistributedNotificationCenter defaultCenter]
                   addObserver:receiver_.get()
                      selector:@selector(show:)
                          name:showNotification(request)
                        object:nil
            suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
        // In the first turn of the loop: the application installs a handler of its own while it
        // finishes launching, in place of any earlier one.
        [receiver_.get() performSelector:@selector(receiveReopen) withObject:nil afterDelay:0];
    }
    ~OnlyInstance() override {
        [NSObject cancelPreviousPerformRequestsWithTarget:receiver_.get()];
        [[NSDistributedNotificationCenter defaultCenter] removeObserver:receiver_.get()];
        [[NSAppleEventManager sharedAppleEventManager]
            removeEventHandlerForEventClass:kCoreEventClass
                                 andEventID:kAEReopenApplication];
    }

private:
    Descriptor lock_;
    Retained<VellmarkShowReceiver*> receiver_;
};

} // namespace

std::unique_ptr<SingleInstance> claimSingleInstance(DescriptorWatcher& /*loop*/,
                                                    SingleInstanceRequest request) {
    Descriptor lock;
    const LockState state = lockFile(lock, request.directory);
    // Without a lock that tells, the list of running programs has to.
    if (state == LockState::held || (state == LockState::unknown && runningInstance() == nil)) {
        return std::make_unique<OnlyInstance>(std::move(lock), request);
    }
    [runningInstance() activateWithOptions:0];
    [[NSDistributedNotificationCenter defaultCenter] postNotificationName:showNotification(request)
                                                                   object:nil
                                                                 userInfo:nil
                                                       deliverImmediately:YES];
    return nullptr;
}

} // namespace vellmark
