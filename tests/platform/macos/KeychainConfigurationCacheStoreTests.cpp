#include "platform/macos/desktop/KeychainConfigurationCacheStore.h"

#include "MacTest.h"
#include "fake/Keychain.h"

#include <functional>
#include <variant>

namespace ventolith::platform {
namespace {

using app::ConfigurationCacheError;
using app::ConfigurationCacheRecord;
using Attributes = fake::Keychain::Attributes;

constexpr OSStatus locked = -25308;

ConfigurationCacheRecord record(std::int64_t revision) {
  return {.revision = revision,
          .envelope = {.kid = "key-1",
                       .algorithm = "Ed25519",
                       .purpose = app::SignedPayloadPurpose::configuration,
                       .payload = "eyJyZXZpc2lvbiI6N30",
                       .signature = "c2lnbmF0dXJl"}};
}

/// The case of the failure that `work` ends by.
ConfigurationCacheError::Case failureOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const ConfigurationCacheError& error) {
    return error.value();
  }
  ADD_FAILURE() << "nothing failed";
  return ConfigurationCacheError::Keychain{0};
}

ConfigurationCacheError::Case keychain(std::int64_t status) {
  return ConfigurationCacheError::Keychain{status};
}

class KeychainStoreTest : public MacTest {
protected:
  Attributes query() const {
    return {{"kSecClass", "kSecClassGenericPassword"},
            {"kSecAttrService", "com.ventolith.app.platform"},
            {"kSecAttrAccount", "platform-configuration-v1"}};
  }
  Attributes with(Attributes attributes, const Attributes& more) const {
    attributes.insert(more.begin(), more.end());
    return attributes;
  }
  void holds(const std::string& stored) { keychain_.items = {with(query(), {{"kSecValueData", stored}})}; }

  fake::Keychain keychain_;
  KeychainConfigurationCacheStore store_{"com.ventolith.app"};
};

TEST_F(KeychainStoreTest, ItsPlaceIsNamedAfterServiceAndAccount) {
  EXPECT_EQ(store_.coordinationKey(), "keychain:com.ventolith.app.platform:platform-configuration-v1");
  EXPECT_EQ(KeychainConfigurationCacheStore("a", "b").coordinationKey(), "keychain:a.platform:b");
}

// Loading

TEST_F(KeychainStoreTest, AsksForTheDataOfOneItem) {
  static_cast<void>(store_.load());
  EXPECT_EQ(keychain_.readings, std::vector{with(query(), {{"kSecReturnData", "true"},
                                                           {"kSecMatchLimit", "kSecMatchLimitOne"}})});
}

TEST_F(KeychainStoreTest, AnItemThatIsNotThereIsNoRecord) {
  EXPECT_EQ(store_.load(), std::nullopt);
}

TEST_F(KeychainStoreTest, AnotherAccountIsAnotherItem) {
  store_.save(record(7));
  EXPECT_EQ(KeychainConfigurationCacheStore("com.ventolith.app", "other").load(), std::nullopt);
  EXPECT_EQ(KeychainConfigurationCacheStore("com.ventolith").load(), std::nullopt);
}

TEST_F(KeychainStoreTest, GivesWhatWasSavedLast) {
  store_.save(record(7));
  EXPECT_EQ(store_.load(), record(7));
  store_.save(record(8));
  EXPECT_EQ(store_.load(), record(8));
}

TEST_F(KeychainStoreTest, AnyOtherStatusOfTheReadingIsTheKeychains) {
  store_.save(record(7));
  for (const OSStatus status : {locked, errSecParam, errSecDuplicateItem, OSStatus{1}}) {
    keychain_.reading = status;
    EXPECT_EQ(failureOf([&] { static_cast<void>(store_.load()); }), keychain(status));
  }
}

TEST_F(KeychainStoreTest, WhatIsNoRecordIsCorrupt) {
  for (const char* stored : {"", "{", "[]", R"({"revision":1})"}) {
    holds(stored);
    EXPECT_EQ(failureOf([&] { static_cast<void>(store_.load()); }),
              ConfigurationCacheError::Case(ConfigurationCacheError::Plain::corruptRecord))
        << stored;
  }
}

TEST_F(KeychainStoreTest, AnItemWithoutDataIsCorrupt) {
  store_.save(record(7));
  for (const char* given : {"", "string", "dictionary"}) {
    keychain_.given = given;
    EXPECT_EQ(failureOf([&] { static_cast<void>(store_.load()); }),
              ConfigurationCacheError::Case(ConfigurationCacheError::Plain::corruptRecord))
        << given;
  }
}

// Saving

TEST_F(KeychainStoreTest, TheFirstRecordIsAddedForThisDeviceAlone) {
  store_.save(record(7));
  EXPECT_EQ(
      keychain_.additions,
      std::vector{with(query(), {{"kSecValueData", encode(record(7))},
                                 {"kSecAttrAccessible", "kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly"},
                                 {"kSecAttrSynchronizable", "false"}})});
}

TEST_F(KeychainStoreTest, ALaterRecordTakesThePlaceOfTheDataAndOfNothingElse) {
  store_.save(record(7));
  store_.save(record(8));
  EXPECT_EQ(keychain_.additions.size(), 1U);
  EXPECT_EQ(keychain_.updateQueries.back(), query());
  EXPECT_EQ(keychain_.updates.back(), (Attributes{{"kSecValueData", encode(record(8))}}));
  EXPECT_EQ(keychain_.items.size(), 1U);
}

TEST_F(KeychainStoreTest, AnUpdateThatFailsAddsNothing) {
  for (const OSStatus status : {locked, errSecParam, errSecDuplicateItem}) {
    keychain_.updating = status;
    EXPECT_EQ(failureOf([&] { store_.save(record(7)); }), keychain(status));
  }
  EXPECT_TRUE(keychain_.additions.empty());
}

TEST_F(KeychainStoreTest, AnAdditionThatFailsIsTheKeychains) {
  for (const OSStatus status : {locked, errSecParam, errSecItemNotFound}) {
    keychain_.adding = status;
    EXPECT_EQ(failureOf([&] { store_.save(record(7)); }), keychain(status));
  }
}

TEST_F(KeychainStoreTest, ARecordThatAnotherProcessAddsInBetweenStays) {
  keychain_.afterUpdate = [&] { holds(encode(record(9))); };
  EXPECT_EQ(failureOf([&] { store_.save(record(7)); }), keychain(errSecDuplicateItem));
  EXPECT_EQ(store_.load(), record(9));
}

TEST_F(KeychainStoreTest, ARecordThatIsTooLongReachesNoKeychain) {
  ConfigurationCacheRecord tooLong = record(7);
  tooLong.envelope.payload = std::string(app::recordBounds.bytes, 'A');
  EXPECT_EQ(failureOf([&] { store_.save(tooLong); }),
            ConfigurationCacheError::Case(ConfigurationCacheError::Plain::corruptRecord));
  EXPECT_TRUE(keychain_.updates.empty());
}

TEST_F(KeychainStoreTest, ANameThatIsNoTextIsAWrongParameter) {
  KeychainConfigurationCacheStore nameless("\xFF");
  EXPECT_EQ(failureOf([&] { static_cast<void>(nameless.load()); }), keychain(errSecParam));
  EXPECT_EQ(failureOf([&] { nameless.save(record(7)); }), keychain(errSecParam));
}

} // namespace
} // namespace ventolith::platform
