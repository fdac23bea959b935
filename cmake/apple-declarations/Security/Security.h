#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

enum { errSecSuccess = 0, errSecItemNotFound = -25300 };

extern const CFStringRef kSecClass;
extern const CFStringRef kSecClassGenericPassword;
extern const CFStringRef kSecAttrService;
extern const CFStringRef kSecAttrAccount;
extern const CFStringRef kSecMatchLimit;
extern const CFStringRef kSecMatchLimitOne;
extern const CFStringRef kSecReturnAttributes;

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result);

#ifdef __cplusplus
}
#endif
