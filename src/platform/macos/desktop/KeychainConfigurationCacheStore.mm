#include "platform/macos/desktop/KeychainConfigurationCacheStore.h"

#include "platform/macos/service/FoundationText.h"

#import <Security/Security.h>

#include <cstdint>
#include <utility>

namespace ventolith::platform {

using app::ConfigurationCacheError;

namespace {

using Dictionary = NSMutableDictionary<NSString*, id>;

NSString* key(CFStringRef constant) {
  return (__bridge NSString*)constant;
}

/// Finds the item.
Dictionary* queryFor(const std::string& service, const std::string& account) {
  return [@{
    key(kSecClass) : key(kSecClassGenericPassword),
    key(kSecAttrService) : nsString(service),
    key(kSecAttrAccount) : nsString(account),
  } mutableCopy];
}

/// Asks for the data of one match.
Dictionary* readingQuery(Dictionary* query) {
  query[key(kSecReturnData)] = @YES;
  query[key(kSecMatchLimit)] = key(kSecMatchLimitOne);
  return query;
}

NSDictionary* changeTo(NSData* value) {
  return @{key(kSecValueData) : value};
}

/// Adds an item that stays on this device.
Dictionary* newItem(Dictionary* query, NSData* value) {
  query[key(kSecValueData)] = value;
  query[key(kSecAttrAccessible)] = key(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  query[key(kSecAttrSynchronizable)] = @NO;
  return query;
}

CFDictionaryRef bridged(NSDictionary* dictionary) {
  return (__bridge CFDictionaryRef)dictionary;
}

void requireSuccess(OSStatus status) {
  if (status == errSecSuccess) return;
  throw ConfigurationCacheError(ConfigurationCacheError::Keychain{std::int64_t{status}});
}

} // namespace

KeychainConfigurationCacheStore::KeychainConfigurationCacheStore(const std::string& bundleIdentifier,
                                                                 std::string account)
    : service_(bundleIdentifier + ".platform"), account_(std::move(account)) {}

std::optional<app::ConfigurationCacheRecord> KeychainConfigurationCacheStore::load() {
  @autoreleasepool {
    CFTypeRef found = nullptr;
    Dictionary* const query = readingQuery(queryFor(service_, account_));
    const OSStatus status = ::SecItemCopyMatching(bridged(query), &found);
    const id item = CFBridgingRelease(found);
    if (status == errSecItemNotFound) return std::nullopt;
    requireSuccess(status);
    if (![item isKindOfClass:NSData.class])
      throw ConfigurationCacheError(ConfigurationCacheError::Plain::corruptRecord);
    return app::decodeConfigurationCacheRecord(bytesOf(item));
  }
}

void KeychainConfigurationCacheStore::save(const app::ConfigurationCacheRecord& record) {
  @autoreleasepool {
    NSData* const value = dataOf(encode(record));
    Dictionary* const query = queryFor(service_, account_);
    const OSStatus updated = ::SecItemUpdate(bridged(query), bridged(changeTo(value)));
    if (updated != errSecItemNotFound) return requireSuccess(updated);
    requireSuccess(::SecItemAdd(bridged(newItem(query, value)), nullptr));
  }
}

std::string KeychainConfigurationCacheStore::coordinationKey() const {
  return "keychain:" + service_ + ":" + account_;
}

} // namespace ventolith::platform
