#include "app/platform-kit/SignedConfigurationCache.h"

#include "app/platform-kit/RemoteConfigurationValidator.h"
#include "app/platform-kit/SignedDocuments.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using namespace std::chrono_literals;
using PayloadError = SignedPayloadError;
using StoreError = ConfigurationCacheError;
using ValidationError = ConfigurationValidationError;
using support::Publisher;

runtime::WallTime wallTime(std::string_view text) {
  return runtime::WallTime(
      std::chrono::duration_cast<runtime::WallTime::duration>(support::date(text).time_since_epoch()));
}

/// An envelope as it travels.
std::string travelling(const SignedEnvelope& envelope) {
  return core::writeJSON(toJSON(envelope));
}

/// A store that counts, and fails when it is told to.
class ScriptedStore final : public ConfigurationCacheStoring {
public:
  std::optional<ConfigurationCacheRecord> load() override {
    ++loads;
    if (failsToLoad) throw StoreError(StoreError::Keychain{-1});
    return record;
  }
  void save(const ConfigurationCacheRecord& saved) override {
    if (failsToSave) throw StoreError(StoreError::Keychain{-2});
    ++saves;
    record = saved;
  }

  std::optional<ConfigurationCacheRecord> record;
  int loads = 0;
  int saves = 0;
  bool failsToLoad = false;
  bool failsToSave = false;
};

class SignedConfigurationCacheTest : public testing::Test {
protected:
  [[nodiscard]] SignedEnvelope envelope(std::int64_t revision) const {
    return publisher_.publish(support::configurationJSON(revision));
  }

  /// An envelope of `revision` in which one member has another value.
  [[nodiscard]] SignedEnvelope envelopeWith(std::int64_t revision, const std::string& key,
                                            const core::JSON& value) const {
    auto document = support::configurationJSON(revision);
    document[key] = value;
    return publisher_.publish(document);
  }

  RemoteConfiguration accept(const SignedEnvelope& envelope) { return cache_.accept(envelope, now_); }

  template <class Error>
  std::optional<typename Error::Case> failure(const SignedEnvelope& envelope) {
    return support::thrown<Error>([&] { (void)accept(envelope); });
  }

  template <class Error>
  std::optional<typename Error::Case> currentFailure() {
    return support::thrown<Error>([&] { (void)cache_.current(now_); });
  }

  void store(const SignedEnvelope& envelope, std::int64_t revision) {
    store_.record = ConfigurationCacheRecord{.revision = revision, .envelope = envelope};
  }

  Publisher publisher_;
  StaticSigningPublicKeyProvider keys_{support::keysOf(publisher_)};
  Ed25519SignedPayloadVerifier verifier_{keys_};
  ScriptedStore store_;
  runtime::WallTime now_ = wallTime("2026-03-10T12:00:00Z");
  SignedConfigurationCache cache_{verifier_, store_, "org.example.fans", "1.0.3"};
};

TEST_F(SignedConfigurationCacheTest, TheFirstDocumentIsStoredWithItsRevision) {
  EXPECT_EQ(accept(envelope(7)).revision, 7);
  EXPECT_EQ(store_.record, (ConfigurationCacheRecord{.revision = 7, .envelope = envelope(7)}));
}

TEST_F(SignedConfigurationCacheTest, ANewerRevisionReplacesAnOlderOne) {
  (void)accept(envelope(7));
  EXPECT_EQ(accept(envelope(8)).revision, 8);
  EXPECT_EQ(store_.record->revision, 8);
  EXPECT_EQ(store_.record->envelope, envelope(8));
}

TEST_F(SignedConfigurationCacheTest, ALowerRevisionIsRefusedWithBothNumbers) {
  (void)accept(envelope(7));
  EXPECT_EQ(failure<ValidationError>(envelope(6)),
            ValidationError::Case(ValidationError::RevisionRollback{6, 7}));
  EXPECT_EQ(store_.record->envelope, envelope(7));
}

TEST_F(SignedConfigurationCacheTest, TheSameEnvelopeIsAcceptedAndSavedAgain) {
  (void)accept(envelope(7));
  EXPECT_EQ(accept(envelope(7)).revision, 7);
  EXPECT_EQ(store_.saves, 2);
}

TEST_F(SignedConfigurationCacheTest, AnotherDocumentUnderTheSameRevisionIsAConflict) {
  (void)accept(envelope(7));
  EXPECT_EQ(failure<ValidationError>(envelopeWith(7, "configRefreshMinutes", 61)),
            ValidationError::Case(ValidationError::RevisionConflict{7}));
  EXPECT_EQ(store_.saves, 1);
}

TEST_F(SignedConfigurationCacheTest, TheSameDocumentInAnotherEnvelopeIsAConflict) {
  (void)accept(envelope(7));
  auto padded = envelope(7);
  padded.signature += "=="; // Decodes to the same signature.
  EXPECT_EQ(failure<ValidationError>(padded), ValidationError::Case(ValidationError::RevisionConflict{7}));
}

TEST_F(SignedConfigurationCacheTest, TheRevisionThatCountsIsTheSignedOne) {
  store(envelope(7), 1); // The number beside the envelope is not signed.
  EXPECT_EQ(failure<ValidationError>(envelope(6)),
            ValidationError::Case(ValidationError::RevisionRollback{6, 7}));
}

TEST_F(SignedConfigurationCacheTest, WhatIsNotGenuineIsNotStored) {
  EXPECT_EQ(failure<PayloadError>(Publisher(2).publish(support::configurationJSON(7))),
            PayloadError::Case(PayloadError::Plain::invalidSignature));
  EXPECT_EQ(store_.saves, 0);
}

TEST_F(SignedConfigurationCacheTest, WhatDoesNotFitIsNotStored) {
  using Plain = ValidationError::Plain;
  struct Row {
    std::string key;
    core::JSON value;
    ValidationError::Case failure;
  };
  const Row rows[] = {
      {"appID", "other", Plain::wrongApplication},
      {"revision", 0, ValidationError::InvalidRevision{0}},
      {"publishedAt", "2026-03-10T12:05:01Z", Plain::publishedInFuture}, // 301 seconds ahead.
      {"expiresAt", "2026-03-01T00:00:00Z", Plain::invalidExpiry},
      {"expiresAt", "2026-03-10T12:00:00Z", Plain::expired}, // Now.
      {"minimumSupportedVersion", "2.0.0", ValidationError::UpdateRequired{"1.0.3", "2.0.0"}},
      {"minimumSupportedVersion", "2", ValidationError::InvalidVersion{"2"}},
  };
  for (const Row& row : rows)
    EXPECT_EQ(failure<ValidationError>(envelopeWith(7, row.key, row.value)), row.failure) << row.key;
  EXPECT_EQ(store_.saves, 0);
}

TEST_F(SignedConfigurationCacheTest, ThePublishersClockMayBeNearlyFiveMinutesAhead) {
  EXPECT_NO_THROW((void)accept(envelopeWith(7, "publishedAt", "2026-03-10T12:04:59Z")));
}

TEST_F(SignedConfigurationCacheTest, AStoredEnvelopeThatDoesNotVerifyBlocksNewOnes) {
  store(Publisher(2).publish(support::configurationJSON(7)), 7);
  EXPECT_EQ(failure<PayloadError>(envelope(8)), PayloadError::Case(PayloadError::Plain::invalidSignature));
  EXPECT_EQ(store_.saves, 0);

  store_.record.reset();
  EXPECT_EQ(accept(envelope(8)).revision, 8);
}

TEST_F(SignedConfigurationCacheTest, TheStoredEnvelopeIsVerifiedBeforeTheNewOne) {
  store(Publisher(2).publish(support::configurationJSON(7)), 7);
  auto other = envelope(8);
  other.algorithm = "RSA";
  EXPECT_EQ(failure<PayloadError>(other), PayloadError::Case(PayloadError::Plain::invalidSignature));
}

TEST_F(SignedConfigurationCacheTest, WhatDoesNotFitIsSaidBeforeAConflict) {
  (void)accept(envelope(7));
  EXPECT_EQ(failure<ValidationError>(envelopeWith(7, "expiresAt", "2026-03-10T12:00:00Z")),
            ValidationError::Case(ValidationError::Plain::expired));
}

TEST_F(SignedConfigurationCacheTest, TheLongestEnvelopeThatTravelsIsCurrentOnceAccepted) {
  const std::size_t bound = core::JSONBounds().bytes;
  const std::size_t room = bound - travelling(envelopeWith(7, "filler", "")).size();
  const std::string text = travelling(envelopeWith(7, "filler", std::string(room / 4 * 3, 'x')));
  ASSERT_LE(text.size(), bound);
  ASSERT_GT(text.size(), bound - 4); // A step of base64 below it.

  MemoryConfigurationCacheStore store;
  SignedConfigurationCache cache(verifier_, store, "org.example.fans", "1.0.3");
  const auto accepted = cache.accept(decodeSignedEnvelope(text), now_);
  EXPECT_EQ(cache.current(now_), accepted);
  EXPECT_EQ(cache.accept(envelope(8), now_).revision, 8);
}

TEST_F(SignedConfigurationCacheTest, AStoredDocumentThatExpiredBlocksNothing) {
  (void)accept(envelope(7));
  now_ = wallTime("2026-04-10T00:00:00Z");
  EXPECT_EQ(accept(envelopeWith(8, "expiresAt", "2026-05-01T00:00:00Z")).revision, 8);
}

TEST_F(SignedConfigurationCacheTest, AFailureToLoadPassesThrough) {
  store_.failsToLoad = true;
  EXPECT_EQ(failure<StoreError>(envelope(7)), StoreError::Case(StoreError::Keychain{-1}));
  EXPECT_EQ(currentFailure<StoreError>(), StoreError::Case(StoreError::Keychain{-1}));
  EXPECT_EQ(store_.saves, 0);
}

TEST_F(SignedConfigurationCacheTest, AFailureToSavePassesThroughAndLeavesWhatIsStored) {
  (void)accept(envelope(7));
  store_.failsToSave = true;
  EXPECT_EQ(failure<StoreError>(envelope(8)), StoreError::Case(StoreError::Keychain{-2}));
  EXPECT_EQ(store_.record->revision, 7);
}

TEST_F(SignedConfigurationCacheTest, ACorruptRecordFailsBothOperations) {
  MemoryConfigurationCacheStore corrupt("{\"revision\":");
  SignedConfigurationCache cache(verifier_, corrupt, "org.example.fans", "1.0.3");
  const auto expected = StoreError::Case(StoreError::Plain::corruptRecord);
  EXPECT_EQ(support::thrown<StoreError>([&] { (void)cache.accept(envelope(7), now_); }), expected);
  EXPECT_EQ(support::thrown<StoreError>([&] { (void)cache.current(now_); }), expected);
}

TEST_F(SignedConfigurationCacheTest, WithNothingStoredThereIsNoCurrentDocument) {
  EXPECT_EQ(cache_.current(now_), std::nullopt);
}

TEST_F(SignedConfigurationCacheTest, TheCurrentDocumentIsTheOneThatWasAccepted) {
  const auto accepted = accept(envelope(7));
  EXPECT_EQ(cache_.current(now_), accepted);
}

TEST_F(SignedConfigurationCacheTest, TheCurrentDocumentComesFromTheStorageEachTime) {
  (void)accept(envelope(7));
  store(envelope(3), 3); // Behind the cache's back.
  EXPECT_EQ(cache_.current(now_)->revision, 3);
  EXPECT_EQ(store_.loads, 2);
}

TEST_F(SignedConfigurationCacheTest, TheCurrentDocumentIsVerifiedAgain) {
  (void)accept(envelope(7));
  store_.record->envelope.signature = envelope(8).signature;
  EXPECT_EQ(currentFailure<PayloadError>(), PayloadError::Case(PayloadError::Plain::invalidSignature));
}

TEST_F(SignedConfigurationCacheTest, ADocumentThatExpiredIsNoLongerCurrentThoughStored) {
  (void)accept(envelope(7));
  now_ = wallTime("2026-03-31T00:00:00Z");
  EXPECT_EQ(currentFailure<ValidationError>(), ValidationError::Case(ValidationError::Plain::expired));
  EXPECT_EQ(store_.record->revision, 7);
}

TEST_F(SignedConfigurationCacheTest, ADocumentForNewerApplicationsIsNotCurrent) {
  store(envelopeWith(7, "minimumSupportedVersion", "1.1.0"), 7);
  EXPECT_EQ(currentFailure<ValidationError>(),
            ValidationError::Case(ValidationError::UpdateRequired{"1.0.3", "1.1.0"}));
}

TEST_F(SignedConfigurationCacheTest, TheSkewHoldsForTheCurrentDocumentToo) {
  store(envelopeWith(7, "publishedAt", "2026-03-10T12:04:59Z"), 7);
  EXPECT_EQ(cache_.current(now_)->revision, 7);
  store(envelopeWith(7, "publishedAt", "2026-03-10T12:05:01Z"), 7);
  EXPECT_EQ(currentFailure<ValidationError>(),
            ValidationError::Case(ValidationError::Plain::publishedInFuture));
}

TEST_F(SignedConfigurationCacheTest, CurrentNeverWrites) {
  (void)accept(envelope(7));
  (void)cache_.current(now_);
  EXPECT_EQ(store_.saves, 1);
}

} // namespace
} // namespace ventolith::app
