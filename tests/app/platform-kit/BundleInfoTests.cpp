#include "app/platform-kit/BundleInfo.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

const MapBundleInfo
    bundle({{"name", std::string("fan")}, {"empty", std::string()}, {"yes", true}, {"no", false}});

TEST(MapBundleInfo, GivesStringsAndBooleans) {
  EXPECT_EQ(bundle.string("name"), "fan");
  EXPECT_EQ(bundle.string("empty"), "");
  EXPECT_EQ(bundle.boolean("yes"), true);
  EXPECT_EQ(bundle.boolean("no"), false);
}

TEST(MapBundleInfo, AMissingKeyGivesNone) {
  EXPECT_EQ(bundle.string("other"), std::nullopt);
  EXPECT_EQ(bundle.boolean("other"), std::nullopt);
}

TEST(MapBundleInfo, AValueOfAnotherTypeGivesNone) {
  EXPECT_EQ(bundle.string("yes"), std::nullopt);
  EXPECT_EQ(bundle.boolean("name"), std::nullopt);
}

} // namespace
} // namespace ventolith::app
