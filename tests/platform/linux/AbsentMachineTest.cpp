#include "platform/linux/AbsentMachine.h"
#include "platform/linux/ElapsedTime.h"
#include "platform/linux/HwmonTree.h"
#include "platform/linux/ThisComputer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <unistd.h>

namespace ventolith::platform {
namespace {

TEST(AbsentMachine, OpensAndAnswersNothing) {
  const hardware::Machine machine = absentMachine();
  Keys keys(*machine.smc);

  EXPECT_EQ(keys.read("FNum"), std::nullopt);
  EXPECT_EQ(keys.read("#KEY"), std::nullopt);
  EXPECT_EQ(keys.write("F0Md", 1), gone);
  EXPECT_FALSE(machine.hid->isAvailable());
  EXPECT_FALSE(machine.hid->discoverLabeledTemperatureServices());
}

TEST(AbsentMachine, RefusesConnectionsThatAreNotOpen) {
  AbsentUserClient client;
  hardware::SMCParamStruct output;
  EXPECT_EQ(client.call(1, {}, output), ioReturnBadArgument);
  const hardware::IOConnect connection = client.open().value();
  EXPECT_EQ(client.call(connection, {}, output), hardware::kernSuccess);
  client.close(connection);
  EXPECT_EQ(client.call(connection, {}, output), ioReturnBadArgument);
}

TEST(GeteuidPrivileges, AreRoots) {
  EXPECT_EQ(GeteuidPrivileges().mayControlFans(), ::geteuid() == 0);
}

TEST(ThisComputer, IsTheHwmonDevicesOfTheRootThatTheEnvironmentNames) {
  const HwmonTree tree;
  ::setenv("VENTOLITH_HWMON_ROOT", tree.root().c_str(), 1);
  const hardware::Machine empty = thisComputer();
  EXPECT_EQ(empty.name, absentMachine().name);
  EXPECT_EQ(Keys(*empty.smc).read("FNum"), std::nullopt);
  tree.addIntelMac("hwmon0");
  EXPECT_EQ(Keys(*empty.smc).read("F0Ac"), 2000); // What comes later is seen.
  const hardware::Machine hwmon = thisComputer();
  ::unsetenv("VENTOLITH_HWMON_ROOT");

  EXPECT_EQ(hwmon.name, "hwmon at " + tree.root().string());
  EXPECT_EQ(Keys(*hwmon.smc).read("F0Ac"), 2000);
}

TEST(ElapsedTime, NeverGoesBackAndIsNoLessThanTheTimeAsleep) {
  const runtime::Instant first = elapsedTime();
  const runtime::Instant second = elapsedTime();
  EXPECT_LE(first, second);
  EXPECT_GT(first, runtime::Instant());
  EXPECT_LE(timeAsleep(), second.time_since_epoch());
}

} // namespace
} // namespace ventolith::platform
