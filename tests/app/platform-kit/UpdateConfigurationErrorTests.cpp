#include "app/platform-kit/UpdateConfigurationError.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using Error = UpdateConfigurationError;

TEST(UpdateConfigurationError, EachCaseHasItsDescription) {
  struct Row {
    Error error;
    std::string_view description;
  };
  const Row rows[] = {
      {Error::invalidFeedURL("x"),
       "The update feed URL must use HTTPS (or explicit localhost development mode)."},
      {Error::invalidChannel("x"), "The update channel must be stable or beta."},
      {Error::invalidMarketingVersion("x"), "The marketing version must use major.minor.patch format."},
      {Error::invalidBuildNumber("x"), "The build number must be a positive integer."},
      {Error::missingFeedURL, "No update feed is configured for this build."},
      {Error::missingPublicKey, "No Sparkle update signing public key is configured for this build."},
      {Error::invalidPublicKey, "The Sparkle update signing public key is invalid."},
  };
  for (const Row& row : rows)
    EXPECT_EQ(row.error.description(), row.description);
}

TEST(UpdateConfigurationError, EqualsTheSameCaseWithTheSamePayload) {
  EXPECT_EQ(Error::invalidChannel("a"), Error::invalidChannel("a"));
  EXPECT_NE(Error::invalidChannel("a"), Error::invalidChannel("b"));
  EXPECT_NE(Error::invalidChannel("a"), Error::invalidFeedURL("a"));
  EXPECT_NE(Error::missingFeedURL, Error::missingPublicKey);
}

TEST(UpdateConfigurationError, UsingAFailedResultIsALogicError) {
  const UpdateConfigurationResult<int> result = Error::missingFeedURL;
  EXPECT_THROW((void)result.value(), std::logic_error);
}

} // namespace
} // namespace ventolith::app
