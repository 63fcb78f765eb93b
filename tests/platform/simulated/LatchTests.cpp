// The force latch, and what the firmware refuses until it has been set for long enough.
#include "platform/simulated/Bench.h"

#include <gtest/gtest.h>

namespace ventolith::simulated {
namespace {

struct SimulatedLatch : testing::Test {
  Bench bench{"macbook-pro"};
};

TEST_F(SimulatedLatch, ModeKeyIsRefusedWithoutIt) {
  EXPECT_EQ(bench.writeByte("F0Md", 1), 0x82);
  bench.pass(60);
  EXPECT_EQ(bench.writeByte("F0Md", 1), 0x82);
  EXPECT_EQ(bench.read("F0Md"), 0);
}

TEST_F(SimulatedLatch, ModeKeyIsAcceptedThreeSecondsAfterIt) {
  EXPECT_EQ(bench.writeByte("Ftst", 1), 0);
  bench.pass(2.999);
  EXPECT_EQ(bench.writeByte("F0Md", 1), 0x82);
  bench.pass(0.001);
  EXPECT_EQ(bench.writeByte("F0Md", 1), 0);
  EXPECT_EQ(bench.read("F0Md"), 1);
}

TEST_F(SimulatedLatch, SettingItAgainDoesNotStartTheDelayAnew) {
  bench.writeByte("Ftst", 1);
  bench.pass(2);
  bench.writeByte("Ftst", 1);
  bench.pass(1);
  EXPECT_EQ(bench.writeByte("F0Md", 1), 0);
}

TEST_F(SimulatedLatch, ClearingItStartsTheDelayAnew) {
  bench.writeByte("Ftst", 1);
  bench.pass(2);
  bench.writeByte("Ftst", 0);
  bench.writeByte("Ftst", 1);
  bench.pass(2);
  EXPECT_EQ(bench.writeByte("F0Md", 1), 0x82);
}

TEST_F(SimulatedLatch, FanIsGivenBackWithoutIt) {
  EXPECT_EQ(bench.writeByte("F0Md", 0), 0);
}

TEST_F(SimulatedLatch, ClearingItGivesFansBackThatAreStillHeld) {
  bench.writeByte("Ftst", 1);
  bench.pass(3);
  bench.writeByte("F0Md", 1);
  bench.writeByte("F1Md", 1);
  bench.writeByte("F0Md", 0);
  EXPECT_EQ(bench.writeByte("Ftst", 0), 0);
  EXPECT_EQ(bench.read("F0Md"), 0);
  EXPECT_EQ(bench.read("F1Md"), 0);
}

TEST_F(SimulatedLatch, ReadsAsItStands) {
  EXPECT_EQ(bench.read("Ftst"), 0);
  bench.writeByte("Ftst", 1);
  EXPECT_EQ(bench.read("Ftst"), 1);
}

TEST(SimulatedLatchOfOthers, DesktopWantsItWithoutDelay) {
  Bench bench("mac-pro");
  EXPECT_EQ(bench.writeByte("F2Md", 1), 0x82);
  bench.writeByte("Ftst", 1);
  EXPECT_EQ(bench.writeByte("F2Md", 1), 0);
}

TEST(SimulatedLatchOfOthers, MiniAcceptsAtOnceByItsLowerCaseKey) {
  MiniBench bench;
  EXPECT_EQ(bench.writeByte("F0md", 1), 0);
  EXPECT_EQ(bench.read("F0md"), 1);
  EXPECT_EQ(bench.read("F0Md"), std::nullopt);
}

} // namespace
} // namespace ventolith::simulated
