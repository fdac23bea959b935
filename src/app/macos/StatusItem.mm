#include "app/StatusItem.h"

#include "platform/macos/Retained.h"
#include "presentation/GlyphDrawing.h"
#include "ui/GlyphPainter.h"

#import <AppKit/AppKit.h>
#include <optional>
#include <utility>

/// The target of the item's button, and the observer of its appearance.
@interface VellmarkStatusItemTarget : NSObject {
@public
    std::function<void()> onClick;
    std::function<void()> onAppearanceChange;
}
- (void)togglePopover:(id)sender;
@end

@implementation VellmarkStatusItemTarget
- (void)togglePopover:(id)sender {
    onClick();
}
- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary*)change
                       context:(void*)context {
    onAppearanceChange();
}
@end

namespace vellmark {
namespace {

constexpr CGFloat glyphSide = 18;
constexpr CGFloat dotFontSize = 8;
NSString* const appearanceKey = @"effectiveAppearance";

NSString* text(const std::string& words) {
    return [NSString stringWithUTF8String:words.c_str()];
}

void drawMark(const GlyphMark& mark, CGFloat white) {
    const NSPoint center = NSMakePoint(mark.centerX, mark.centerY);
    const NSRect bounds = NSMakeRect(mark.centerX - mark.radius, mark.centerY - mark.radius,
                                     2 * mark.radius, 2 * mark.radius);
    NSBezierPath* const path = [NSBezierPath bezierPath];
    switch (mark.kind) {
    case GlyphMark::Kind::strokedCircle:
    case GlyphMark::Kind::filledCircle:
        [path appendBezierPathWithOvalInRect:bounds];
        break;
    case GlyphMark::Kind::filledPie:
        [path moveToPoint:center];
        [[fallthrough]];
    case GlyphMark::Kind::strokedArc:
        [path appendBezierPathWithArcWithCenter:center
                                         radius:mark.radius
                                     startAngle:mark.startAngle
                                       endAngle:mark.endAngle
                                      clockwise:YES];
        break;
    }
    [[NSColor colorWithCalibratedWhite:white alpha:mark.alpha] set];
    if (mark.lineWidth > 0) {
        [path setLineWidth:mark.lineWidth];
        [path setLineCapStyle:NSRoundLineCapStyle];
        [path stroke];
    } else {
        [path closePath];
        [path fill];
    }
}

/// A template takes its ink from the menu bar.
NSImage* glyphImage(const StatusItemContent& content, StatusInk ink) {
    const CGFloat white = ink == StatusInk::light ? 1 : 0;
    const std::vector<GlyphMark> marks = glyphDrawing(content.glyph, glyphSide);
    NSImage* const image = [NSImage imageWithSize:NSMakeSize(glyphSide, glyphSide)
                                          flipped:NO
                                   drawingHandler:^BOOL(NSRect) {
                                     for (const GlyphMark& mark : marks) {
                                         drawMark(mark, white);
                                     }
                                     return YES;
                                   }];
    [image setTemplate:ink == StatusInk::automatic ? YES : NO];
    [image setAccessibilityDescription:text(content.glyphDescription)];
    return image;
}

NSColor* dotColor(StatusColorRole role, bool onDark) {
    if (role == StatusColorRole::none) {
        return [NSColor secondaryLabelColor];
    }
    if (role == StatusColorRole::refreshing) {
        return [NSColor systemBlueColor];
    }
    const QColor color = statusQColor(role, onDark);
    return [NSColor colorWithSRGBRed:color.redF()
                               green:color.greenF()
                                blue:color.blueF()
                               alpha:color.alphaF()];
}

class MenuBarItem final : public StatusItem {
public:
    explicit MenuBarItem(Events events)
        : events_(std::move(events)),
          item_(Retained<NSStatusItem*>::retain(
              [[NSStatusBar systemStatusBar] statusItemWithLength:NSVariableStatusItemLength])),
          target_(
              Retained<VellmarkStatusItemTarget*>::adopt([[VellmarkStatusItemTarget alloc] init])) {
        target_.get()->onClick = [this] { events_.toggle(anchor()); };
        target_.get()->onAppearanceChange = [this] { redraw(); };
        NSStatusBarButton* const button = [item_.get() button];
        [button setImagePosition:NSImageLeading];
        [button setTarget:target_.get()];
        [button setAction:@selector(togglePopover:)];
        [button sendActionOn:NSEventMaskLeftMouseUp];
        [button addObserver:target_.get() forKeyPath:appearanceKey options:0 context:nullptr];
    }

    ~MenuBarItem() override {
        [[item_.get() button] removeObserver:target_.get() forKeyPath:appearanceKey];
        [[NSStatusBar systemStatusBar] removeStatusItem:item_.get()];
    }

    void show(const StatusItemContent& content) override {
        NSStatusBarButton* const button = [item_.get() button];
        if (!shown_ || shown_->glyph != content.glyph ||
            shown_->glyphDescription != content.glyphDescription) {
            [button setImage:glyphImage(content, ink_)];
        }
        if (!shown_ || shown_->toolTip != content.toolTip) {
            [button setToolTip:text(content.toolTip)];
            [button setAccessibilityLabel:text(content.toolTip)];
        }
        const bool newTitle =
            !shown_ || shown_->color != content.color || shown_->figure != content.figure;
        shown_ = content;
        if (newTitle) {
            drawTitle();
        }
    }

    // The menu bar's own conventions hold on macOS: a click opens the popover, nothing else.
    void setMenu(std::vector<StatusMenuItem> /*items*/) override {}
    // The button tells its appearance itself.
    void setPanelScheme(ColorScheme /*scheme*/) override {}

    void setInk(StatusInk ink) override {
        if (std::exchange(ink_, ink) != ink) {
            redraw();
        }
    }

    // A click takes the tooltip away, and it stays away while the button is pressed.
    void setPopoverOpen(bool /*isOpen*/) override {}

    QRect anchor() const override {
        NSStatusBarButton* const button = [item_.get() button];
        NSWindow* const window = [button window];
        if (window == nil) {
            return {};
        }
        const NSRect place = [window convertRectToScreen:[button convertRect:[button bounds]
                                                                      toView:nil]];
        // The screens' coordinates grow upwards from the lower left corner of the first one.
        const CGFloat top = NSMaxY([[[NSScreen screens] objectAtIndex:0] frame]);
        return {static_cast<int>(NSMinX(place)), static_cast<int>(top - NSMaxY(place)),
                static_cast<int>(NSWidth(place)), static_cast<int>(NSHeight(place))};
    }

private:
    bool isDark() const {
        NSArray* const names =
            [NSArray arrayWithObjects:NSAppearanceNameAqua, NSAppearanceNameDarkAqua, nil];
        NSString* const match =
            [[[item_.get() button] effectiveAppearance] bestMatchFromAppearancesWithNames:names];
        return [match isEqualToString:NSAppearanceNameDarkAqua];
    }

    void drawTitle() {
        NSDictionary* const attributes = [NSDictionary
            dictionaryWithObjectsAndKeys:[NSFont systemFontOfSize:dotFontSize], NSFontAttributeName,
                                         [NSNumber numberWithInt:1], NSBaselineOffsetAttributeName,
                                         dotColor(shown_->color, isDark()),
                                         NSForegroundColorAttributeName, nil];
        const auto title = Retained<NSMutableAttributedString*>::adopt(
            [[NSMutableAttributedString alloc] initWithString:@"\u25CF" attributes:attributes]);
        if (!shown_->figure.empty()) {
            NSDictionary* const plain =
                [NSDictionary dictionaryWithObjectsAndKeys:[NSFont menuBarFontOfSize:0],
                                                           NSFontAttributeName, nil];
            const auto figure = Retained<NSAttributedString*>::adopt([[NSAttributedString alloc]
                initWithString:text(" " + shown_->figure)
                    attributes:plain]);
            [title.get() appendAttributedString:figure.get()];
        }
        [[item_.get() button] setAttributedTitle:title.get()];
    }

    void redraw() {
        if (!shown_) {
            return;
        }
        [[item_.get() button] setImage:glyphImage(*shown_, ink_)];
        drawTitle();
    }

    Events events_;
    Retained<NSStatusItem*> item_;
    Retained<VellmarkStatusItemTarget*> target_;
    std::optional<StatusItemContent> shown_;
    StatusInk ink_ = StatusInk::automatic;
};

} // namespace

std::unique_ptr<StatusItem> makeStatusItem(DescriptorWatcher& /*loop*/,
                                           Preferences& /*preferences*/,
                                           StatusItem::Events events) {
    return std::make_unique<MenuBarItem>(std::move(events));
}

} // namespace vellmark
