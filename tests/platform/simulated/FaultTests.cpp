// Every fault that can be switched on.
#include "platform/simulated/Bench.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace ventolith::simulated {
namespace {

using Selector = SMCParamStruct::Selector;

TEST(SimulatedFault, RefusalAnswersWritesUntilItIsTakenBack) {
  MiniBench bench;
  bench.mac->refuseWrites("F0md", 5);
  EXPECT_EQ(bench.writeByte("F0md", 1), 5);
  EXPECT_EQ(bench.writeByte("F0md", 0), 5);
  EXPECT_EQ(bench.read("F0md"), 0);
  bench.mac->refuseWrites("F0md", std::nullopt);
  EXPECT_EQ(bench.writeByte("F0md", 1), 0);
}

TEST(SimulatedFault, RefusalOfOneKeyLeavesTheOthersAlone) {
  Bench bench("mac-pro");
  bench.mac->refuseWrites("F0Md", 5);
  bench.writeByte("Ftst", 1);
  EXPECT_EQ(bench.writeByte("F1Md", 1), 0);
}

TEST(SimulatedFault, DriverFailureEndsEveryCallAboutTheKey) {
  MiniBench bench;
  bench.mac->failDriver("F0md", DriverFailure::all);
  for (const Selector selector : {Selector::getKeyInfo, Selector::readKey, Selector::writeKey}) {
    EXPECT_EQ(bench.call(block(selector, "F0md", 1)), ioReturnError);
  }
  EXPECT_EQ(bench.read("F0Ac"), 1703);
  bench.mac->failDriver("F0md", DriverFailure::none);
  EXPECT_EQ(bench.writeByte("F0md", 1), 0);
}

TEST(SimulatedFault, DriverFailureOfWritesLeavesReadsAlone) {
  MiniBench bench;
  bench.mac->failDriver("F0md", DriverFailure::writes);
  EXPECT_EQ(bench.read("F0md"), 0);
  EXPECT_EQ(bench.call(block(Selector::writeKey, "F0md", 1)), ioReturnError);
}

TEST(SimulatedFault, ReclaimedFanReadsThreeAndIsDrivenByTheFirmware) {
  MiniBench bench;
  bench.writeByte("F0md", 1);
  bench.writeSpeed("F0Tg", 4000);
  bench.pass(30);
  bench.mac->reclaim(0);
  EXPECT_EQ(bench.read("F0md"), 3);
  bench.pass(60);
  EXPECT_EQ(bench.read("F0Ac"), 1703);
}

TEST(SimulatedFault, ReclaimedFanIsTakenAgainByWritingItsMode) {
  MiniBench bench;
  bench.mac->reclaim(0);
  EXPECT_EQ(bench.writeByte("F0md", 1), 0);
  EXPECT_EQ(bench.read("F0md"), 1);
}

TEST(SimulatedFault, InsistingFirmwareAcceptsTheModeAndKeepsTheFan) {
  MiniBench bench;
  bench.mac->reclaim(0, std::chrono::seconds(4));
  EXPECT_EQ(bench.writeByte("F0md", 1), 0);
  EXPECT_EQ(bench.read("F0md"), 3);
  bench.pass(4);
  EXPECT_EQ(bench.writeByte("F0md", 1), 0);
  EXPECT_EQ(bench.read("F0md"), 1);
}

TEST(SimulatedFault, FanIsGivenBackEvenToAnInsistingFirmware) {
  MiniBench bench;
  bench.mac->reclaim(0, std::chrono::seconds(4));
  EXPECT_EQ(bench.writeByte("F0md", 0), 0);
  EXPECT_EQ(bench.read("F0md"), 0);
}

TEST(SimulatedFault, RemovedKeyIsNeitherFoundNorListedNorCounted) {
  MiniBench bench;
  const double before = *bench.read("#KEY");
  bench.mac->removeKey("F0Mn");
  bench.call(block(Selector::getKeyInfo, "F0Mn"));
  EXPECT_EQ(bench.output.result, 132);
  EXPECT_EQ(bench.read("#KEY"), before - 1);
  auto second = block(Selector::getKeyByIndex, "F0Mn");
  second.data32 = 1;
  bench.call(second);
  EXPECT_EQ(hardware::unpackKey(bench.output.key), "F0Mx");
  bench.mac->restoreKey("F0Mn");
  EXPECT_EQ(bench.read("F0Mn"), 1700);
}

TEST(SimulatedFault, KeyOfUnknownTypeHasNoNumberAndStillWorks) {
  MiniBench bench;
  bench.mac->setKeyType("F0md", "zzzz");
  EXPECT_EQ(bench.read("F0md"), std::nullopt);
  bench.call(block(Selector::getKeyInfo, "F0md"));
  EXPECT_EQ(hardware::unpackKey(bench.output.keyInfo.dataType), "zzzz");
  EXPECT_EQ(bench.writeByte("F0md", 1), 0);
  bench.mac->setKeyType("F0md", std::nullopt);
  EXPECT_EQ(bench.read("F0md"), 1);
}

TEST(SimulatedFault, NamesThatTheMachineDoesNotHaveAreRefused) {
  MiniBench bench;
  EXPECT_THROW(bench.mac->refuseWrites("F7Md", 5), std::invalid_argument);
  EXPECT_THROW(bench.mac->failDriver("no key", DriverFailure::all), std::invalid_argument);
  EXPECT_THROW(bench.mac->reclaim(1), std::invalid_argument);
  EXPECT_THROW(bench.mac->reclaim(-1), std::invalid_argument);
  EXPECT_THROW(bench.mac->removeKey("F0Md"), std::invalid_argument);
  EXPECT_THROW(bench.mac->setKeyType("F0md", "toolong"), std::invalid_argument);
  EXPECT_THROW(bench.mac->pinTemperature("F0Ac", 50), std::invalid_argument);
}

} // namespace
} // namespace ventolith::simulated
