#pragma once

#include_next <AppKit/AppKit.h>

// Interfaces of Apple's AppKit and Foundation that GNUstep's headers lack.

enum : NSUInteger { NSImageLeading = 7 };
enum : NSUInteger { NSEventMaskLeftMouseUp = 1u << 2 };

@interface NSApplication (VellmarkDeclarations)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
- (NSAppearance*)effectiveAppearance;
- (NSAppearance*)appearance;
- (void)setAppearance:(NSAppearance*)appearance;
- (void)setHelpMenu:(NSMenu*)helpMenu;
@end

enum NSWindowTitleVisibility : NSInteger { NSWindowTitleVisible = 0, NSWindowTitleHidden = 1 };

@interface NSWindow (VellmarkDeclarations)
- (void)setStyleMask:(NSUInteger)styleMask;
- (void)setTitlebarAppearsTransparent:(BOOL)titlebarAppearsTransparent;
- (void)setTitleVisibility:(NSWindowTitleVisibility)titleVisibility;
@end

extern NSString* const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;

@interface NSWorkspace (VellmarkDeclarations)
- (BOOL)accessibilityDisplayShouldReduceMotion;
- (BOOL)accessibilityDisplayShouldIncreaseContrast;
@end

extern NSString* const NSSharingServiceNameComposeEmail;

@interface NSSharingService (VellmarkDeclarations)
+ (NSSharingService*)sharingServiceNamed:(NSString*)serviceName;
- (BOOL)canPerformWithItems:(NSArray*)items;
- (void)performWithItems:(NSArray*)items;
- (void)setRecipients:(NSArray*)recipients;
- (void)setSubject:(NSString*)subject;
@end

@interface NSView (VellmarkDeclarations)
- (NSAppearance*)effectiveAppearance;
- (void)setAccessibilityLabel:(NSString*)accessibilityLabel;
@end

@interface NSStatusItem (VellmarkDeclarations)
- (NSStatusBarButton*)button;
@end

@interface NSImage (VellmarkDeclarations)
+ (NSImage*)imageWithSize:(NSSize)size
                  flipped:(BOOL)drawingHandlerShouldBeCalledWithFlippedContext
           drawingHandler:(BOOL (^)(NSRect dstRect))drawingHandler;
- (void)setTemplate:(BOOL)isTemplate;
- (void)setAccessibilityDescription:(NSString*)accessibilityDescription;
@end

typedef unsigned int AEEventClass;
typedef unsigned int AEEventID;
enum : AEEventClass { kCoreEventClass = 'aevt' };
enum : AEEventID { kAEReopenApplication = 'rapp' };

@interface NSAppleEventManager (VellmarkDeclarations)
+ (NSAppleEventManager*)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)handleEventSelector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID;
@end
