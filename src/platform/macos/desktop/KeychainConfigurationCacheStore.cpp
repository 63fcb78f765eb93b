#include "platform/macos/desktop/KeychainConfigurationCacheStore.h"

#include "platform/macos/AutoreleasePool.h"
#include "platform/macos/CFOwned.h"
#include "platform/macos/CFText.h"

#include <Security/Security.h>

#include <cstdint>
#include <string_view>
#include <utility>

namespace ventolith::platform {

using app::ConfigurationCacheError;

namespace {

void requireSuccess(OSStatus status) {
  if (status == errSecSuccess) return;
  throw ConfigurationCacheError(ConfigurationCacheError::Keychain{std::int64_t{status}});
}

CFOwned<CFStringRef> nameOf(std::string_view text) {
  auto result = cfText(text);
  if (!result) requireSuccess(errSecParam);
  return result;
}

CFOwned<CFDataRef> cfData(std::string_view text) {
  const auto* const bytes = reinterpret_cast<const UInt8*>(text.data()); // NOLINT: the same bytes
  return CFOwned<CFDataRef>(::CFDataCreate(kCFAllocatorDefault, bytes, static_cast<CFIndex>(text.size())));
}

/// What an item is found by, or has.
class Attributes {
public:
  Attributes()
      : dictionary_(::CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                                &kCFTypeDictionaryValueCallBacks)) {}

  Attributes& with(CFStringRef name, CFTypeRef value) {
    ::CFDictionarySetValue(dictionary_.get(), name, value);
    return *this;
  }
  [[nodiscard]] CFDictionaryRef get() const { return dictionary_.get(); }

private:
  CFOwned<CFMutableDictionaryRef> dictionary_;
};

/// Finds the item.
Attributes queryFor(const std::string& service, const std::string& account) {
  Attributes query;
  query.with(kSecClass, kSecClassGenericPassword)
      .with(kSecAttrService, nameOf(service).get())
      .with(kSecAttrAccount, nameOf(account).get());
  return query;
}

} // namespace

KeychainConfigurationCacheStore::KeychainConfigurationCacheStore(const std::string& bundleIdentifier,
                                                                 std::string account)
    : service_(bundleIdentifier + ".platform"), account_(std::move(account)) {}

std::optional<app::ConfigurationCacheRecord> KeychainConfigurationCacheStore::load() {
  const AutoreleasePool pool;
  Attributes query = queryFor(service_, account_);
  query.with(kSecReturnData, kCFBooleanTrue).with(kSecMatchLimit, kSecMatchLimitOne);
  CFTypeRef found = nullptr;
  const OSStatus status = ::SecItemCopyMatching(query.get(), &found);
  const CFOwned<CFTypeRef> item(found);
  if (status == errSecItemNotFound) return std::nullopt;
  requireSuccess(status);
  if (!item || ::CFGetTypeID(item.get()) != ::CFDataGetTypeID())
    throw ConfigurationCacheError(ConfigurationCacheError::Plain::corruptRecord);
  const auto data = static_cast<CFDataRef>(item.get());
  const auto length = static_cast<std::size_t>(::CFDataGetLength(data));
  const auto* const bytes = reinterpret_cast<const char*>(::CFDataGetBytePtr(data)); // NOLINT: as above
  return app::decodeConfigurationCacheRecord({length == 0 ? "" : bytes, length});
}

void KeychainConfigurationCacheStore::save(const app::ConfigurationCacheRecord& record) {
  const AutoreleasePool pool;
  const auto value = cfData(encode(record));
  Attributes item = queryFor(service_, account_);
  const OSStatus updated = ::SecItemUpdate(item.get(), Attributes().with(kSecValueData, value.get()).get());
  if (updated != errSecItemNotFound) return requireSuccess(updated);
  item.with(kSecValueData, value.get())
      .with(kSecAttrAccessible, kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly)
      .with(kSecAttrSynchronizable, kCFBooleanFalse);
  requireSuccess(::SecItemAdd(item.get(), nullptr));
}

std::string KeychainConfigurationCacheStore::coordinationKey() const {
  return "keychain:" + service_ + ":" + account_;
}

} // namespace ventolith::platform
