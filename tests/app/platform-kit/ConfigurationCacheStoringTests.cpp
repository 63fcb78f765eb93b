#include "app/platform-kit/ConfigurationCacheStoring.h"

#include "app/platform-kit/SignedDocuments.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using Error = ConfigurationCacheError;

ConfigurationCacheRecord record() {
  return {.revision = 7,
          .envelope = {.kid = "k", .algorithm = "Ed25519", .payload = "e30", .signature = "AA"}};
}

const std::string recordText =
    R"({"revision":7,"envelope":{"kid":"k","algorithm":"Ed25519","purpose":"configuration","payload":"e30",)"
    R"("signature":"AA"}})";

TEST(ConfigurationCacheRecord, IsStoredWithItsEnvelope) {
  EXPECT_EQ(encode(record()), recordText);
}

TEST(ConfigurationCacheRecord, ReadsBackTheSame) {
  EXPECT_EQ(decodeConfigurationCacheRecord(recordText), record());
}

TEST(ConfigurationCacheRecord, AnyOtherTextIsACorruptRecord) {
  const std::string cut = recordText.substr(0, recordText.size() - 1);
  for (const std::string& text :
       {std::string(), std::string("{}"), std::string("null"), std::string(R"({"revision":7})"),
        std::string(R"({"revision":"7","envelope":{}})"), cut, recordText + "x"}) {
    EXPECT_EQ(support::thrown<Error>([&] { (void)decodeConfigurationCacheRecord(text); }),
              Error::Case(Error::Plain::corruptRecord))
        << text;
  }
}

/// A record whose JSON is as long as any may be, and `more` bytes longer.
ConfigurationCacheRecord longRecord(std::size_t more) {
  auto longest = record();
  longest.envelope.payload.append(recordBounds.bytes + more - recordText.size(), 'A');
  return longest;
}

TEST(ConfigurationCacheRecord, ReadsBackTheSameUpToItsBound) {
  const auto longest = longRecord(0);
  const std::string stored = encode(longest);
  EXPECT_EQ(stored.size(), recordBounds.bytes);
  EXPECT_EQ(decodeConfigurationCacheRecord(stored), longest);
}

TEST(ConfigurationCacheRecord, BeyondItsBoundIsNotWritten) {
  EXPECT_EQ(support::thrown<Error>([] { (void)encode(longRecord(1)); }),
            Error::Case(Error::Plain::corruptRecord));
}

TEST(ConfigurationCacheRecord, BeyondItsBoundIsNotRead) {
  EXPECT_EQ(support::thrown<Error>([] {
              (void)decodeConfigurationCacheRecord(
                  recordText + std::string(recordBounds.bytes - recordText.size() + 1, ' '));
            }),
            Error::Case(Error::Plain::corruptRecord));
}

TEST(MemoryConfigurationCacheStore, ARecordThatIsTooLongLeavesTheOneThatIsStored) {
  MemoryConfigurationCacheStore store;
  store.save(record());
  EXPECT_TRUE(support::thrown<Error>([&] { store.save(longRecord(1)); }));
  EXPECT_EQ(store.load(), record());
}

TEST(MemoryConfigurationCacheStore, IsEmptyAtFirst) {
  EXPECT_EQ(MemoryConfigurationCacheStore().load(), std::nullopt);
}

TEST(MemoryConfigurationCacheStore, GivesWhatWasSavedLast) {
  MemoryConfigurationCacheStore store;
  store.save({.revision = 6});
  store.save(record());
  EXPECT_EQ(store.load(), record());
}

TEST(MemoryConfigurationCacheStore, WhatIsNoRecordIsCorrupt) {
  MemoryConfigurationCacheStore store("{");
  EXPECT_EQ(support::thrown<Error>([&] { (void)store.load(); }), Error::Case(Error::Plain::corruptRecord));
}

TEST(ConfigurationCacheStoring, ThePlaceIsNamedAfterTheClassByDefault) {
  EXPECT_EQ(MemoryConfigurationCacheStore().coordinationKey(),
            "ventolith::app::MemoryConfigurationCacheStore");
}

TEST(ConfigurationCacheError, TellsCaseAndPayload) {
  EXPECT_STREQ(Error(Error::Keychain{-25308}).what(), "keychain(-25308)");
  EXPECT_STREQ(Error(Error::Plain::corruptRecord).what(), "corruptRecord");
}

} // namespace
} // namespace ventolith::app
