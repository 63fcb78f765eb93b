// As much of the keychain as the sources under test use.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

inline constexpr OSStatus errSecSuccess = 0;
inline constexpr OSStatus errSecParam = -50;
inline constexpr OSStatus errSecDuplicateItem = -25299;
inline constexpr OSStatus errSecItemNotFound = -25300;

extern "C" {

extern const CFStringRef kSecClass;
extern const CFStringRef kSecClassGenericPassword;
extern const CFStringRef kSecAttrService;
extern const CFStringRef kSecAttrAccount;
extern const CFStringRef kSecAttrAccessible;
extern const CFStringRef kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly;
extern const CFStringRef kSecAttrSynchronizable;
extern const CFStringRef kSecMatchLimit;
extern const CFStringRef kSecMatchLimitOne;
extern const CFStringRef kSecReturnData;
extern const CFStringRef kSecValueData;

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result);
OSStatus SecItemUpdate(CFDictionaryRef query, CFDictionaryRef changes);
OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef* result);
}
