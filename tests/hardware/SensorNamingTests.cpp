#include "hardware/SensorNaming.h"

#include <gtest/gtest.h>

namespace ventolith::hardware {
namespace {

using core::SensorCategory;
using SensorNaming::FriendlyName;
using SensorNaming::friendlyName;

TEST(SensorNaming, TheExactTableComesFirst) {
  EXPECT_EQ(friendlyName("TCHP"), (FriendlyName{"CPU", SensorCategory::cpu}));
  EXPECT_EQ(friendlyName("TCMb"), (FriendlyName{"CPU (cluster)", SensorCategory::cpu}));
  EXPECT_EQ(friendlyName("TCMz"), (FriendlyName{"CPU (cluster)", SensorCategory::cpu}));
}

TEST(SensorNaming, OtherKeysAreNamedByTheirPrefix) {
  EXPECT_EQ(friendlyName("TB0T"), (FriendlyName{"Battery", SensorCategory::battery}));
  EXPECT_EQ(friendlyName("TB"), (FriendlyName{"Battery", SensorCategory::battery}));
  EXPECT_EQ(friendlyName("TG0P"), (FriendlyName{"GPU", SensorCategory::gpu}));
  EXPECT_EQ(friendlyName("TD0P"), (FriendlyName{"SSD/Board", SensorCategory::ssd}));
}

TEST(SensorNaming, EveryOtherKeyStaysHidden) {
  for (const char* key :
       {"TC0P", "TCHp", "TCMB", "TCMZ", "TCHP2", "Tg0P", "tB0T", "TS0P", "FNum", "XTB0", "T", ""})
    EXPECT_EQ(friendlyName(key), std::nullopt) << key;
}

} // namespace
} // namespace ventolith::hardware
