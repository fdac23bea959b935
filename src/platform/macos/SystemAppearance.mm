#include "platform/SystemAppearance.h"

#include "platform/macos/Retained.h"

#import <AppKit/AppKit.h>
#include <tuple>
#include <utility>

/// Calls back when the application's effective appearance or the accessibility options for the
/// display have changed.
@interface VellmarkAppearanceObserver : NSObject {
@public
    std::function<void()> onChange;
}
@end

@implementation VellmarkAppearanceObserver
- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary*)change
                       context:(void*)context {
    onChange();
}
- (void)displayOptionsDidChange:(NSNotification*)notification {
    onChange();
}
@end

namespace vellmark {
namespace {

NSString* const keyPath = @"effectiveAppearance";

class EffectiveAppearance final : public SystemAppearance {
public:
    explicit EffectiveAppearance(std::function<void()> onChange)
        : observer_(Retained<VellmarkAppearanceObserver*>::adopt(
              [[VellmarkAppearanceObserver alloc] init])) {
        observer_.get()->onChange = [this, onChange = std::move(onChange)] {
            // The system tells of more than what is asked for here, some of it several times.
            if (std::exchange(told_, state()) != state()) {
                onChange();
            }
        };
        [NSApp addObserver:observer_.get() forKeyPath:keyPath options:0 context:nullptr];
        [[[NSWorkspace sharedWorkspace] notificationCenter]
            addObserver:observer_.get()
               selector:@selector(displayOptionsDidChange:)
                   name:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                 object:nil];
    }
    ~EffectiveAppearance() override {
        [[[NSWorkspace sharedWorkspace] notificationCenter] removeObserver:observer_.get()];
        [NSApp removeObserver:observer_.get() forKeyPath:keyPath];
    }

    ColorScheme colorScheme() const override {
        NSArray* const names =
            [NSArray arrayWithObjects:NSAppearanceNameAqua, NSAppearanceNameDarkAqua, nil];
        NSString* const match =
            [[NSApp effectiveAppearance] bestMatchFromAppearancesWithNames:names];
        return [match isEqualToString:NSAppearanceNameDarkAqua] ? ColorScheme::dark
                                                                : ColorScheme::light;
    }

    bool reducesMotion() const override {
        return [[NSWorkspace sharedWorkspace] accessibilityDisplayShouldReduceMotion];
    }

    bool increasesContrast() const override {
        return [[NSWorkspace sharedWorkspace] accessibilityDisplayShouldIncreaseContrast];
    }

private:
    using State = std::tuple<ColorScheme, bool, bool>;
    State state() const { return {colorScheme(), reducesMotion(), increasesContrast()}; }

    State told_ = state();
    Retained<VellmarkAppearanceObserver*> observer_;
};

} // namespace

void setApplicationAppearance(ColorScheme scheme) {
    NSAppearance* wanted = nil;
    if (scheme != ColorScheme::noPreference) {
        wanted =
            [NSAppearance appearanceNamed:scheme == ColorScheme::dark ? NSAppearanceNameDarkAqua
                                                                      : NSAppearanceNameAqua];
    }
    // Setting it tells all observers, also when it is the same.
    if ([NSApp appearance] != wanted) {
        [NSApp setAppearance:wanted];
    }
}

std::unique_ptr<SystemAppearance> observeSystemAppearance(DescriptorWatcher& /*loop*/,
                                                          std::function<void()> onChange) {
    return std::make_unique<EffectiveAppearance>(std::move(onChange));
}

} // namespace vellmark
