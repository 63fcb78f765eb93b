#include "app/selftest/SelfTest.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

TEST(SelfTestSwitch, CountsAtAnyPositionAndAmongOtherArguments) {
  EXPECT_TRUE(wantsSelfTest({"/usr/bin/ventolith", "--selftest"}));
  EXPECT_TRUE(wantsSelfTest({"/usr/bin/ventolith", "--selftest", "--verbose"}));
  EXPECT_TRUE(wantsSelfTest({"/usr/bin/ventolith", "-x", "file", "--selftest"}));
  EXPECT_TRUE(wantsSelfTest({"/usr/bin/ventolith", "--", "--selftest"}));
  EXPECT_TRUE(wantsSelfTest({"/usr/bin/ventolith", "--selftest", "--selftest"}));
  EXPECT_TRUE(wantsSelfTest({"--selftest"}));
}

TEST(SelfTestSwitch, CountsToTheLetterAlone) {
  for (const char* argument : {"--selftest=1", "--SELFTEST", "--SelfTest", "-selftest", "selftest",
                               "--selftes", "--selftest ", " --selftest", "--selftests", ""})
    EXPECT_FALSE(wantsSelfTest({"/usr/bin/ventolith", argument})) << argument;
}

TEST(SelfTestSwitch, IsAbsentWithoutArguments) {
  EXPECT_FALSE(wantsSelfTest({"/usr/bin/ventolith"}));
  EXPECT_FALSE(wantsSelfTest({}));
}

} // namespace
} // namespace ventolith::app
