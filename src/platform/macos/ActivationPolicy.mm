#include "platform/ActivationPolicy.h"

#import <AppKit/AppKit.h>

namespace vellmark {

void setActivationPolicy(ActivationPolicy policy) {
    [NSApp setActivationPolicy:policy == ActivationPolicy::regular
                                   ? NSApplicationActivationPolicyRegular
                                   : NSApplicationActivationPolicyAccessory];
}

void activateApplication() {
    [NSApp activateIgnoringOtherApps:YES];
}

} // namespace vellmark
