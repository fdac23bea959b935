#pragma once

#include <Foundation/Foundation.h>

enum : NSUInteger {
    UNAuthorizationOptionSound = 1u << 1,
    UNAuthorizationOptionAlert = 1u << 2,
};
typedef NSUInteger UNAuthorizationOptions;

typedef NSInteger UNAuthorizationStatus;
enum : UNAuthorizationStatus {
    UNAuthorizationStatusNotDetermined = 0,
    UNAuthorizationStatusDenied = 1,
    UNAuthorizationStatusAuthorized = 2,
    UNAuthorizationStatusProvisional = 3,
};

typedef NSUInteger UNNotificationActionOptions;
enum : UNNotificationActionOptions {
    UNNotificationActionOptionNone = 0,
    UNNotificationActionOptionForeground = 1u << 2,
};

typedef NSUInteger UNNotificationCategoryOptions;
enum : UNNotificationCategoryOptions { UNNotificationCategoryOptionCustomDismissAction = 1u << 0 };

typedef NSUInteger UNNotificationPresentationOptions;
enum : UNNotificationPresentationOptions {
    UNNotificationPresentationOptionSound = 1u << 1,
    UNNotificationPresentationOptionList = 1u << 3,
    UNNotificationPresentationOptionBanner = 1u << 4,
};

extern NSString* const UNNotificationDefaultActionIdentifier;
extern NSString* const UNNotificationDismissActionIdentifier;

@interface UNNotificationSettings : NSObject
- (UNAuthorizationStatus)authorizationStatus;
@end

@interface UNNotificationContent : NSObject
@end

@interface UNMutableNotificationContent : UNNotificationContent
- (void)setTitle:(NSString*)title;
- (void)setBody:(NSString*)body;
- (void)setCategoryIdentifier:(NSString*)categoryIdentifier;
@end

@interface UNNotificationTrigger : NSObject
@end

@interface UNNotificationRequest : NSObject
+ (UNNotificationRequest*)requestWithIdentifier:(NSString*)identifier
                                        content:(UNNotificationContent*)content
                                        trigger:(UNNotificationTrigger*)trigger;
- (NSString*)identifier;
@end

@interface UNNotification : NSObject
- (UNNotificationRequest*)request;
@end

@interface UNNotificationResponse : NSObject
- (UNNotification*)notification;
- (NSString*)actionIdentifier;
@end

@interface UNNotificationAction : NSObject
+ (UNNotificationAction*)actionWithIdentifier:(NSString*)identifier
                                        title:(NSString*)title
                                      options:(UNNotificationActionOptions)options;
@end

@interface UNNotificationCategory : NSObject
+ (UNNotificationCategory*)categoryWithIdentifier:(NSString*)identifier
                                          actions:(NSArray*)actions
                                intentIdentifiers:(NSArray*)intentIdentifiers
                                          options:(UNNotificationCategoryOptions)options;
@end

@class UNUserNotificationCenter;

@protocol UNUserNotificationCenterDelegate <NSObject>
@optional
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:
             (void (^)(UNNotificationPresentationOptions options))completionHandler;
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler;
@end

@interface UNUserNotificationCenter : NSObject
+ (UNUserNotificationCenter*)currentNotificationCenter;
- (void)setDelegate:(id<UNUserNotificationCenterDelegate>)delegate;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError* error))completionHandler;
- (void)getNotificationSettingsWithCompletionHandler:
    (void (^)(UNNotificationSettings* settings))completionHandler;
- (void)setNotificationCategories:(NSSet*)categories;
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(void (^)(NSError* error))completionHandler;
- (void)removeDeliveredNotificationsWithIdentifiers:(NSArray*)identifiers;
@end
