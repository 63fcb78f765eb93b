#include "app/platform-kit/UpdateChannel.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

TEST(UpdateChannel, StableComesBeforeBeta) {
  EXPECT_EQ(allUpdateChannels, (std::array{UpdateChannel::stable, UpdateChannel::beta}));
}

TEST(UpdateChannel, EachHasAWord) {
  EXPECT_EQ(rawValue(UpdateChannel::stable), "stable");
  EXPECT_EQ(rawValue(UpdateChannel::beta), "beta");
}

TEST(UpdateChannel, AWordIsReadToTheLetter) {
  EXPECT_EQ(updateChannel("stable"), UpdateChannel::stable);
  EXPECT_EQ(updateChannel("beta"), UpdateChannel::beta);
  for (const std::string_view word : {"", "Beta", "beta ", "alpha"})
    EXPECT_EQ(updateChannel(word), std::nullopt) << word;
}

TEST(UpdateChannel, StableTakesTheDefaultChannelAlone) {
  EXPECT_EQ(sparkleAllowedChannels(UpdateChannel::stable), std::set<std::string>{});
}

TEST(UpdateChannel, BetaTakesItsOwnBesides) {
  EXPECT_EQ(sparkleAllowedChannels(UpdateChannel::beta), std::set<std::string>{"beta"});
}

} // namespace
} // namespace ventolith::app
