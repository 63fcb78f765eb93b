// How fans follow, and how the firmware drives them by itself.
#include "platform/simulated/Bench.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace ventolith::simulated {
namespace {

TEST(SimulatedFan, StartsIdleInTheFirmwaresHands) {
  MiniBench bench;
  EXPECT_EQ(bench.read("F0md"), 0);
  EXPECT_EQ(bench.read("F0Ac"), 1703);
}

TEST(SimulatedFan, ApproachesItsTargetWithInertia) {
  MiniBench bench;
  bench.writeByte("F0md", 1);
  bench.writeSpeed("F0Tg", 4000);
  EXPECT_EQ(bench.read("F0Ac"), 1703);
  bench.pass(2);
  // One time constant: all but 1/e of the way.
  EXPECT_NEAR(*bench.read("F0Ac"), 1703 + (4000 - 1703) * 0.632, 5);
  bench.pass(30);
  EXPECT_EQ(bench.read("F0Ac"), 4000);
}

TEST(SimulatedFan, TargetOfZeroStopsIt) {
  MiniBench bench;
  bench.writeByte("F0md", 1);
  bench.writeSpeed("F0Tg", 0);
  bench.pass(60);
  EXPECT_EQ(bench.read("F0Ac"), 0);
}

TEST(SimulatedFan, TargetAboveTheMaximumRunsAtTheMaximum) {
  MiniBench bench;
  bench.writeByte("F0md", 1);
  bench.writeSpeed("F0Tg", 20000);
  bench.pass(60);
  EXPECT_EQ(bench.read("F0Ac"), 4400);
}

TEST(SimulatedFan, SenselessTargetStopsIt) {
  for (const double target : {-500.0, std::numeric_limits<double>::quiet_NaN()}) {
    MiniBench bench;
    bench.writeByte("F0md", 1);
    bench.writeSpeed("F0Tg", target);
    bench.pass(60);
    EXPECT_EQ(bench.read("F0Ac"), 0) << target;
  }
}

TEST(SimulatedFan, TargetInFirmwareModeIsOverruled) {
  MiniBench bench;
  EXPECT_EQ(bench.writeSpeed("F0Tg", 4000), 0);
  bench.pass(10);
  EXPECT_EQ(bench.read("F0Ac"), 1703);
  EXPECT_EQ(bench.read("F0Tg"), 1703);
}

TEST(SimulatedFan, ModeThatIsNoneIsRefused) {
  MiniBench bench;
  for (const std::uint8_t mode : std::array<std::uint8_t, 3>{2, 3, 255})
    EXPECT_EQ(bench.writeByte("F0md", mode), smcresult::badArgument);
  EXPECT_EQ(bench.read("F0md"), 0);
}

TEST(SimulatedFan, GivenBackItFollowsTheFirmwareAgain) {
  MiniBench bench;
  bench.writeByte("F0md", 1);
  bench.writeSpeed("F0Tg", 4000);
  bench.pass(30);
  bench.writeByte("F0md", 0);
  bench.pass(60);
  EXPECT_EQ(bench.read("F0Ac"), 1703);
}

TEST(SimulatedFirmware, SpeedsTheFansUpUnderLoad) {
  MiniBench bench;
  bench.mac->setLoad(1);
  bench.pass(300);
  EXPECT_GT(*bench.read("F0Ac"), 2200);
  EXPECT_LT(*bench.read("TCHP"), 95);
}

TEST(SimulatedFirmware, LetsStoppedFansStartOnlyWhenItIsWarm) {
  Bench bench("macbook-pro");
  bench.pass(60);
  EXPECT_EQ(bench.read("F0Ac"), 0);
  bench.mac->setLoad(1);
  bench.pass(120);
  EXPECT_GE(*bench.read("F0Ac"), 1250);
  bench.mac->setLoad(0);
  bench.pass(600);
  EXPECT_EQ(bench.read("F0Ac"), 0);
}

TEST(SimulatedFirmware, KeepsAFanTurningUntilItIsClearlyCooler) {
  Bench bench("macbook-pro");
  const auto speedAt = [&bench](double celsius) {
    bench.mac->pinTemperature("TCHP", celsius);
    bench.pass(60);
    return *bench.read("F0Ac");
  };
  EXPECT_EQ(speedAt(52), 0);
  EXPECT_GT(speedAt(56), 1250);
  EXPECT_EQ(speedAt(52), 1250);
  EXPECT_EQ(speedAt(50), 0);
}

TEST(SimulatedFirmware, RunsFlatOutWhenASensorReadsVeryHot) {
  MiniBench bench;
  bench.mac->pinTemperature("TCHP", 110);
  bench.pass(60);
  EXPECT_EQ(bench.read("F0Ac"), 4400);
}

TEST(SimulatedHeat, LoadHeatsAndFansCool) {
  const auto celsiusUnderLoad = [](double rpm) {
    MiniBench bench;
    bench.mac->setLoad(1);
    bench.writeByte("F0md", 1);
    bench.writeSpeed("F0Tg", rpm);
    bench.pass(400);
    return *bench.read("TCHP");
  };
  const double still = celsiusUnderLoad(0);
  const double fast = celsiusUnderLoad(4400);
  EXPECT_GT(still, 100);
  EXPECT_LT(fast, still - 30);
}

TEST(SimulatedHeat, SensorsStartAtTheFiguresOfTheFileAndStayThereAtRest) {
  MiniBench bench;
  EXPECT_NEAR(*bench.read("TCHP"), 41.2, 0.06);
  bench.pass(500);
  EXPECT_NEAR(*bench.read("TCHP"), 41.2, 0.06);
}

TEST(SimulatedHeat, FourFansAreDrivenOnTheDesktop) {
  Bench bench("mac-pro");
  EXPECT_EQ(bench.read("FNum"), 4);
  bench.writeByte("Ftst", 1);
  EXPECT_EQ(bench.writeByte("F3Md", 1), 0);
  EXPECT_EQ(bench.writeSpeed("F3Tg", 2000), 0);
  bench.pass(60);
  EXPECT_EQ(bench.read("F3Ac"), 2000);
  EXPECT_EQ(bench.read("F0Ac"), 500);
}

} // namespace
} // namespace ventolith::simulated
