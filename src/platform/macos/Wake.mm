#include "platform/Wake.h"

#include "platform/macos/Retained.h"

#import <AppKit/AppKit.h>

namespace vellmark {
namespace {

class WorkspaceWake final : public WakeObserver {
public:
    explicit WorkspaceWake(std::function<void()> onWake) {
        // The block copies what it uses.
        const auto notify = std::move(onWake);
        token_ = Retained<id>::retain([center() addObserverForName:NSWorkspaceDidWakeNotification
                                                            object:nil
                                                             queue:[NSOperationQueue mainQueue]
                                                        usingBlock:^(NSNotification*) {
                                                          notify();
                                                        }]);
    }
    ~WorkspaceWake() override { [center() removeObserver:token_.get()]; }

private:
    static NSNotificationCenter* center() {
        return [[NSWorkspace sharedWorkspace] notificationCenter];
    }
    Retained<id> token_;
};

} // namespace

std::unique_ptr<WakeObserver> observeWake(DescriptorWatcher& /*loop*/,
                                          std::function<void()> onWake) {
    return std::make_unique<WorkspaceWake>(std::move(onWake));
}

} // namespace vellmark
