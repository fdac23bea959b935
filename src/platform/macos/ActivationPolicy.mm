#include "platform/ActivationPolicy.h"

#import <AppKit/AppKit.h>
#include <cstdlib>

@interface VellmarkActivation : NSObject
+ (void)activate;
@end

@implementation VellmarkActivation
+ (void)activate {
    [NSApp activateIgnoringOtherApps:YES];
}
@end

namespace vellmark {
namespace {

/// A program that turns regular while it is active keeps the menu bar of the program before it
/// until it is activated anew. The Dock, which has no windows, is in front for that moment.
void activateAnew() {
    NSArray* const docks =
        [NSRunningApplication runningApplicationsWithBundleIdentifier:@"com.apple.dock"];
    if ([docks count] > 0) {
        [(NSRunningApplication*)[docks objectAtIndex:0] activateWithOptions:0];
    }
    [NSObject cancelPreviousPerformRequestsWithTarget:[VellmarkActivation class]];
    [[VellmarkActivation class] performSelector:@selector(activate) withObject:nil afterDelay:0.05];
}

} // namespace

void startInBackground() {
    // Else Qt makes the program a regular one in front of all others while it starts.
    ::setenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1", 1);
}

// The order matters: the policy first, so that the menu bar is the program's to have; then it is
// activated, and its window comes to the front last (WindowController).
void setActivationPolicy(ActivationPolicy policy) {
    if (policy == ActivationPolicy::accessory) {
        [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
        yieldActivation();
        return;
    }
    const bool wasActive = [NSApp isActive];
    [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular];
    if (wasActive) {
        activateAnew();
    }
}

void activateApplication() {
    [VellmarkActivation activate];
}

void yieldActivation() {
    if ([NSApp isActive]) {
        [NSApp hide:nil];
    }
}

} // namespace vellmark
