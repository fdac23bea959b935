// A menu of our own and not Qt's: that moves the application menu's items into one with its own
// words, and has no help menu.

#include "app/SystemMenuBar.h"

#include "platform/macos/Retained.h"

#import <AppKit/AppKit.h>
#include <utility>

/// The target of the items that the application itself answers; an item's tag is the place of its
/// action's name in `actions`.
@interface VellmarkMenuTarget : NSObject {
@public
    vellmark::MainMenuEvents events;
    std::vector<std::string_view> actions;
}
- (void)choose:(NSMenuItem*)item;
- (BOOL)validateMenuItem:(NSMenuItem*)item;
@end

@implementation VellmarkMenuTarget
- (void)choose:(NSMenuItem*)item {
    events.choose(actions.at(static_cast<std::size_t>([item tag])));
}
- (BOOL)validateMenuItem:(NSMenuItem*)item {
    return events.isEnabled(actions.at(static_cast<std::size_t>([item tag])));
}
@end

namespace vellmark {
namespace {

NSString* text(const std::string& words) {
    return [NSString stringWithUTF8String:words.c_str()];
}

/// What the view with the keys, the window in front or the system's own application object answers;
/// null for all others. Qt's view passes the editing actions on to its widgets, and the system's
/// own panels answer them too.
SEL responderAction(std::string_view action) {
    if (action == menuAction::hide) {
        return @selector(hide:);
    }
    if (action == menuAction::copy) {
        return @selector(copy:);
    }
    if (action == menuAction::selectAll) {
        return @selector(selectAll:);
    }
    if (action == menuAction::closeWindow) {
        return @selector(performClose:);
    }
    if (action == menuAction::minimize) {
        return @selector(performMiniaturize:);
    }
    return nullptr;
}

class MenuBar final : public SystemMenuBar {
public:
    explicit MenuBar(MainMenuEvents events)
        : target_(Retained<VellmarkMenuTarget*>::adopt([[VellmarkMenuTarget alloc] init])) {
        target_.get()->events = std::move(events);
    }

    void show(const std::vector<MenuContent>& menus) override {
        target_.get()->actions.clear();
        const auto bar = Retained<NSMenu*>::adopt([[NSMenu alloc] initWithTitle:@""]);
        for (const MenuContent& content : menus) {
            const auto menu =
                Retained<NSMenu*>::adopt([[NSMenu alloc] initWithTitle:text(content.title)]);
            for (const MenuItemContent& item : content.items) {
                add(menu.get(), item);
            }
            const auto holder =
                Retained<NSMenuItem*>::adopt([[NSMenuItem alloc] initWithTitle:text(content.title)
                                                                        action:nullptr
                                                                 keyEquivalent:@""]);
            [holder.get() setSubmenu:menu.get()];
            // The system takes the first for the application menu.
            const bool isFirst = content.role == MenuContent::Role::application;
            [bar.get() insertItem:holder.get() atIndex:isFirst ? 0 : [bar.get() numberOfItems]];
            if (content.role == MenuContent::Role::help) {
                [NSApp setHelpMenu:menu.get()];
            }
        }
        [NSApp setMainMenu:bar.get()];
    }

private:
    void add(NSMenu* menu, const MenuItemContent& content) {
        if (content.isSeparator()) {
            [menu addItem:[NSMenuItem separatorItem]];
            return;
        }
        const SEL fromResponder = responderAction(content.action);
        NSString* const key = content.key ? [NSString stringWithFormat:@"%c", content.key] : @"";
        const auto item = Retained<NSMenuItem*>::adopt([[NSMenuItem alloc]
            initWithTitle:text(content.title)
                   action:fromResponder ? fromResponder : @selector(choose:)
            keyEquivalent:key]);
        if (!fromResponder) {
            [item.get() setTarget:target_.get()];
            [item.get() setTag:static_cast<NSInteger>(target_.get()->actions.size())];
            target_.get()->actions.push_back(content.action);
        }
        [menu addItem:item.get()];
    }

    Retained<VellmarkMenuTarget*> target_;
};

} // namespace

std::unique_ptr<SystemMenuBar> makeSystemMenuBar(MainMenuEvents events) {
    return std::make_unique<MenuBar>(std::move(events));
}

} // namespace vellmark
