#include "app/platform-kit/RemoteConfigurationValidator.h"

#include "app/platform-kit/SignedDocuments.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using namespace std::chrono_literals;
using Error = ConfigurationValidationError;
using Plain = Error::Plain;

const DocumentDate now = support::date("2026-03-10T12:00:00Z");

RemoteConfiguration document() {
  const core::JSON json = support::configurationJSON(7);
  return RemoteConfiguration::read(core::JSONReader(json));
}

ConfigurationValidationContext context() {
  return {.appID = "org.example.fans",
          .appVersion = "1.0.3",
          .minimumRevision = 7,
          .now = now,
          .allowedClockSkew = 300s};
}

std::optional<Error::Case> failure(const RemoteConfiguration& configuration,
                                   const ConfigurationValidationContext& against = context()) {
  return support::thrown<Error>([&] { RemoteConfigurationValidator::validate(configuration, against); });
}

TEST(RemoteConfigurationValidator, AFittingDocumentPasses) {
  EXPECT_EQ(failure(document()), std::nullopt);
}

TEST(RemoteConfigurationValidator, OnlyTheFirstSchemaIsSupported) {
  auto other = document();
  other.schemaVersion = 2;
  EXPECT_EQ(failure(other), Error::Case(Error::UnsupportedSchemaVersion{2}));
}

TEST(RemoteConfigurationValidator, ADocumentIsForOneApplication) {
  auto other = document();
  other.appID = "org.example.Fans";
  EXPECT_EQ(failure(other), Error::Case(Plain::wrongApplication));
}

TEST(RemoteConfigurationValidator, RevisionsStartAtOne) {
  for (const std::int64_t revision : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    auto other = document();
    other.revision = revision;
    EXPECT_EQ(failure(other), Error::Case(Error::InvalidRevision{revision}));
  }
  auto first = document();
  first.revision = 1;
  auto nothingYet = context();
  nothingYet.minimumRevision = 0;
  EXPECT_EQ(failure(first, nothingYet), std::nullopt);
}

TEST(RemoteConfigurationValidator, ALowerRevisionIsARollback) {
  auto other = document();
  other.revision = 6;
  EXPECT_EQ(failure(other), Error::Case(Error::RevisionRollback{6, 7}));
}

TEST(RemoteConfigurationValidator, ThePublishersClockMayBeAheadByTheSkew) {
  for (const auto ahead : {299s, 300s}) {
    auto other = document();
    other.publishedAt = now + ahead;
    EXPECT_EQ(failure(other), std::nullopt) << ahead.count();
  }
  for (const std::chrono::microseconds ahead :
       {std::chrono::microseconds(300s + 1us), std::chrono::microseconds(301s)}) {
    auto other = document();
    other.publishedAt = now + ahead;
    EXPECT_EQ(failure(other), Error::Case(Plain::publishedInFuture)) << ahead.count();
  }
}

TEST(RemoteConfigurationValidator, ExpiryIsAfterPublication) {
  auto other = document();
  other.expiresAt = other.publishedAt;
  EXPECT_EQ(failure(other), Error::Case(Plain::invalidExpiry));
  other.expiresAt -= 1s;
  EXPECT_EQ(failure(other), Error::Case(Plain::invalidExpiry));
}

TEST(RemoteConfigurationValidator, ADocumentExpiresToTheMomentWithoutSkew) {
  auto other = document();
  other.expiresAt = now + 1us;
  EXPECT_EQ(failure(other), std::nullopt);
  other.expiresAt = now;
  EXPECT_EQ(failure(other), Error::Case(Plain::expired));
  other.expiresAt = now - 1s;
  EXPECT_EQ(failure(other), Error::Case(Plain::expired));
}

TEST(RemoteConfigurationValidator, ADocumentMayLastToTheEndOfTheCalendar) {
  auto other = document();
  other.publishedAt = support::date("0000-01-01T00:00:00Z");
  other.expiresAt = support::date("9999-12-31T23:59:59.999999Z");
  EXPECT_EQ(failure(other), std::nullopt);
}

TEST(RemoteConfigurationValidator, BothVersionsAreThreeNumbers) {
  auto other = document();
  other.minimumSupportedVersion = "1.0";
  EXPECT_EQ(failure(other), Error::Case(Error::InvalidVersion{"1.0"}));

  auto odd = context();
  odd.appVersion = "1.0.x";
  EXPECT_EQ(failure(document(), odd), Error::Case(Error::InvalidVersion{"1.0.x"}));
  EXPECT_EQ(failure(other, odd), Error::Case(Error::InvalidVersion{"1.0.x"}))
      << "the application's comes first";
}

TEST(RemoteConfigurationValidator, AnApplicationBelowTheMinimumHasToBeUpdated) {
  auto other = document();
  other.minimumSupportedVersion = "1.0.10";
  EXPECT_EQ(failure(other), Error::Case(Error::UpdateRequired{"1.0.3", "1.0.10"}));
  other.minimumSupportedVersion = "1.0.3";
  EXPECT_EQ(failure(other), std::nullopt);
}

TEST(RemoteConfigurationValidator, ASuffixOfAVersionDoesNotCount) {
  auto other = document();
  other.minimumSupportedVersion = "1.0.3";
  for (const std::string version : {"1.0.3-beta", "1.0.3+6"}) {
    auto suffixed = context();
    suffixed.appVersion = version;
    EXPECT_EQ(failure(other, suffixed), std::nullopt) << version;
  }
}

TEST(RemoteConfigurationValidator, TheFirstFailureIsTheOneReported) {
  RemoteConfiguration bad = {.schemaVersion = 3,
                             .revision = 0,
                             .appID = "other",
                             .publishedAt = now + 1h,
                             .expiresAt = now - 1h,
                             .minimumSupportedVersion = "9.0.0"};
  auto against = context();
  against.appVersion = "x";
  EXPECT_EQ(failure(bad, against), Error::Case(Error::UnsupportedSchemaVersion{3}));
  bad.schemaVersion = 1;
  EXPECT_EQ(failure(bad, against), Error::Case(Plain::wrongApplication));
  bad.appID = against.appID;
  EXPECT_EQ(failure(bad, against), Error::Case(Error::InvalidRevision{0}));
  bad.revision = 1;
  EXPECT_EQ(failure(bad, against), Error::Case(Error::RevisionRollback{1, 7}));
  bad.revision = 8;
  EXPECT_EQ(failure(bad, against), Error::Case(Plain::publishedInFuture));
  bad.publishedAt = now;
  EXPECT_EQ(failure(bad, against), Error::Case(Plain::invalidExpiry));
  bad.publishedAt = now - 2h;
  EXPECT_EQ(failure(bad, against), Error::Case(Plain::expired));
  bad.expiresAt = now + 1h;
  EXPECT_EQ(failure(bad, against), Error::Case(Error::InvalidVersion{"x"}));
  against.appVersion = "1.0.3";
  EXPECT_EQ(failure(bad, against), Error::Case(Error::UpdateRequired{"1.0.3", "9.0.0"}));
}

TEST(ConfigurationValidationError, TellsCaseAndPayload) {
  struct Row {
    Error::Case value;
    std::string_view text;
  };
  const Row rows[] = {
      {Error::UnsupportedSchemaVersion{2}, "unsupportedSchemaVersion(2)"},
      {Error::InvalidRevision{0}, "invalidRevision(0)"},
      {Error::RevisionRollback{6, 7}, "revisionRollback(received: 6, minimum: 7)"},
      {Error::RevisionConflict{7}, "revisionConflict(7)"},
      {Error::InvalidVersion{"x"}, "invalidVersion(\"x\")"},
      {Error::UpdateRequired{"1.0.0", "2.0.0"}, "updateRequired(current: \"1.0.0\", minimum: \"2.0.0\")"},
      {Plain::wrongApplication, "wrongApplication"},
      {Plain::publishedInFuture, "publishedInFuture"},
      {Plain::invalidExpiry, "invalidExpiry"},
      {Plain::expired, "expired"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(Error(row.value).what(), row.text);
}

} // namespace
} // namespace ventolith::app
