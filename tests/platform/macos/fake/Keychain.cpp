#include "Keychain.h"

#include <algorithm>

namespace ventolith::fake {

namespace {

/// An item is told from others by these.
constexpr const char* names[] = {"kSecClass", "kSecAttrService", "kSecAttrAccount"};

bool isSame(const Keychain::Attributes& item, const Keychain::Attributes& query) {
  return std::all_of(std::begin(names), std::end(names),
                     [&](const char* name) { return item.at(name) == query.at(name); });
}

Keychain::Attributes attributesOf(CFDictionaryRef dictionary, const char* function) {
  Keychain::Attributes attributes;
  if (!Objects::get().hasPool())
    Objects::get().complain(std::string(function) + " was called without a pool");
  const Object* const object = Objects::get().alive(dictionary, function, "dictionary");
  for (std::size_t place = 0; object != nullptr && place < object->parts.size(); place += 2) {
    const bool isNew = attributes.emplace(object->parts[place]->text, object->parts[place + 1]->text).second;
    if (!isNew) Objects::get().complain(std::string(function) + " was given a name twice");
  }
  return attributes;
}

} // namespace

Keychain::Attributes* Keychain::find(const Attributes& query) {
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const Attributes& item) { return isSame(item, query); });
  return found == items.end() ? nullptr : &*found;
}

OSStatus Keychain::copyMatching(const Attributes& query, CFTypeRef* result) {
  readings.push_back(query);
  if (reading) return *reading;
  const Attributes* const item = find(query);
  if (item == nullptr) return errSecItemNotFound;
  if (!given.empty())
    *result = Objects::get().make({.type = given, .text = item->at("kSecValueData")}).as<CFTypeRef>();
  return errSecSuccess;
}

OSStatus Keychain::update(const Attributes& query, const Attributes& changes) {
  updateQueries.push_back(query);
  updates.push_back(changes);
  if (updating) return *updating;
  Attributes* const item = find(query);
  if (item != nullptr) {
    for (const auto& [name, value] : changes)
      (*item)[name] = value;
  }
  const OSStatus status = item == nullptr ? errSecItemNotFound : errSecSuccess;
  afterUpdate();
  return status;
}

OSStatus Keychain::add(const Attributes& attributes) {
  additions.push_back(attributes);
  if (adding) return *adding;
  if (find(attributes) != nullptr) return errSecDuplicateItem;
  items.push_back(attributes);
  return errSecSuccess;
}

} // namespace ventolith::fake

using ventolith::fake::attributesOf;
using ventolith::fake::Keychain;

extern "C" {

#define VENTOLITH_FAKE_NAME(name) const CFStringRef name = FakeConstantString(#name)
VENTOLITH_FAKE_NAME(kSecClass);
VENTOLITH_FAKE_NAME(kSecClassGenericPassword);
VENTOLITH_FAKE_NAME(kSecAttrService);
VENTOLITH_FAKE_NAME(kSecAttrAccount);
VENTOLITH_FAKE_NAME(kSecAttrAccessible);
VENTOLITH_FAKE_NAME(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
VENTOLITH_FAKE_NAME(kSecAttrSynchronizable);
VENTOLITH_FAKE_NAME(kSecMatchLimit);
VENTOLITH_FAKE_NAME(kSecMatchLimitOne);
VENTOLITH_FAKE_NAME(kSecReturnData);
VENTOLITH_FAKE_NAME(kSecValueData);
#undef VENTOLITH_FAKE_NAME

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result) {
  return Keychain::get().copyMatching(attributesOf(query, "SecItemCopyMatching"), result);
}

OSStatus SecItemUpdate(CFDictionaryRef query, CFDictionaryRef changes) {
  return Keychain::get().update(attributesOf(query, "SecItemUpdate"), attributesOf(changes, "SecItemUpdate"));
}

OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef* result) {
  if (result != nullptr) ventolith::fake::Objects::get().complain("SecItemAdd was asked for what it added");
  return Keychain::get().add(attributesOf(attributes, "SecItemAdd"));
}

} // extern "C"
