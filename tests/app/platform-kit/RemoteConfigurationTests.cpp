#include "app/platform-kit/RemoteConfiguration.h"

#include "app/platform-kit/SignedDocuments.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using core::DecodeError;
using Kind = DecodeError::Kind;

TEST(RemoteConfiguration, ReadsEveryField) {
  const core::JSON json = support::configurationJSON(12);
  const RemoteConfiguration expected = {.schemaVersion = 1,
                                        .revision = 12,
                                        .appID = "org.example.fans",
                                        .publishedAt = support::date("2026-03-01T00:00:00Z"),
                                        .expiresAt = support::date("2026-03-31T00:00:00Z"),
                                        .minimumSupportedVersion = "1.0.0",
                                        .configRefreshMinutes = 60};
  EXPECT_EQ(RemoteConfiguration::read(core::JSONReader(json)), expected);
}

TEST(RemoteConfiguration, OtherMembersAreIgnored) {
  core::JSON json = support::configurationJSON();
  json["message"] = {{"text", "hello"}};
  EXPECT_NO_THROW((void)RemoteConfiguration::read(core::JSONReader(json)));
}

TEST(RemoteConfiguration, EveryFieldIsRequiredAndHasItsType) {
  const core::JSON full = support::configurationJSON();
  for (const auto& [key, value] : full.items()) {
    SCOPED_TRACE(key);
    core::JSON json = full;
    json[key] = true;
    try {
      (void)RemoteConfiguration::read(core::JSONReader(json));
      ADD_FAILURE() << "read with a boolean";
    } catch (const DecodeError& error) {
      EXPECT_EQ(error.kind(), Kind::typeMismatch);
      EXPECT_EQ(error.path(), key);
    }
    json.erase(key);
    try {
      (void)RemoteConfiguration::read(core::JSONReader(json));
      ADD_FAILURE() << "read without it";
    } catch (const DecodeError& error) {
      EXPECT_EQ(error.kind(), Kind::keyNotFound);
      EXPECT_EQ(error.path(), key);
    }
  }
}

TEST(RemoteConfiguration, ATextThatIsNoDateIsCorrupted) {
  core::JSON json = support::configurationJSON();
  json["expiresAt"] = "2026-03-31";
  try {
    (void)RemoteConfiguration::read(core::JSONReader(json));
    FAIL() << "read as a date";
  } catch (const DecodeError& error) {
    EXPECT_EQ(error.kind(), Kind::dataCorrupted);
    EXPECT_STREQ(error.what(), "expiresAt: Expected an ISO 8601 date-time");
  }
}

} // namespace
} // namespace ventolith::app
