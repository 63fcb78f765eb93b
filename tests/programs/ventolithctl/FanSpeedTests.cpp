#include "programs/ventolithctl/FanSpeed.h"

#include "programs/ventolithctl/Context.h"

#include <gtest/gtest.h>

namespace ventolith::ctl {
namespace {

TEST(FanSpeed, DigitsAreRPM) {
  EXPECT_EQ(readFanSpeed("2400"), FanSpeed(RPM{2400}));
  EXPECT_EQ(readFanSpeed("0"), FanSpeed(RPM{0}));
  EXPECT_EQ(readFanSpeed("100000"), FanSpeed(RPM{100000}));
}

TEST(FanSpeed, APercentSignMakesAPercentage) {
  EXPECT_EQ(readFanSpeed("45%"), FanSpeed(Percent{45}));
  EXPECT_EQ(readFanSpeed("45.5%"), FanSpeed(Percent{45.5}));
  EXPECT_EQ(readFanSpeed("0%"), FanSpeed(Percent{0}));
  EXPECT_EQ(readFanSpeed("100%"), FanSpeed(Percent{100}));
}

TEST(FanSpeed, WhatIsNoSpeedIsRefusedAndNamed) {
  for (const char* text :
       {"",       "fast", "2400rpm", "2400.5", "-1",   "+5",   " 5",   "100001", "99999999999999999999",
        "%",      "101%", "100.5%",  "-1%",    "nan%", "inf%", "1e1%", "0x10%",  "4 5%",
        "4.5.6%", "45%%"}) {
    try {
      (void)readFanSpeed(text);
      ADD_FAILURE() << text;
    } catch (const InputError& error) {
      EXPECT_NE(std::string(error.what()).find("SPEED: \"" + std::string(text) + "\" is "), std::string::npos)
          << error.what();
    }
  }
}

TEST(FanSpeed, OfAFanThatHasNoKeyIsRefused) {
  EXPECT_EQ(readFanNumber("0"), 0);
  EXPECT_EQ(readFanNumber("9"), 9);
  for (const char* text : {"", "10", "-1", "one", "1.0", "99999999999999999999"})
    EXPECT_THROW((void)readFanNumber(text), InputError) << text;
}

TEST(FanSpeed, IsShownWithItsUnit) {
  EXPECT_EQ(speedText(RPM{2400}), "2400 RPM");
  EXPECT_EQ(speedText(Percent{45}), "45 %");
  EXPECT_EQ(speedText(Percent{45.5}), "45.5 %");
}

} // namespace
} // namespace ventolith::ctl
