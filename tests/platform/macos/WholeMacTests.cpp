// The readers of the layer above over the Mac's own sources, all the way down to the fake system.
#include "MacTest.h"
#include "fake/Driver.h"
#include "fake/Kernel.h"
#include "fake/SensorHub.h"
#include "hardware/SensorReader.h"
#include "platform/macos/AppleSMC.h"
#include "platform/macos/HIDEventSystem.h"
#include "platform/macos/ThisComputer.h"

#include <unistd.h>

namespace ventolith::platform {
namespace {

core::SensorSnapshot snapshotOver(hardware::SMCUserClient& smc, hardware::HIDBridge& hid,
                                  support::VirtualTime& time) {
  hardware::SMCConnection connection(time.executor(), smc);
  EXPECT_EQ(time.clock.run(connection.open()), std::nullopt);
  hardware::SensorReader reader(time.executor(), connection, hid, time.clock, [](const std::string&) {});
  const auto snapshot = time.clock.run(reader.snapshot());
  time.start(connection.close());
  return snapshot;
}

class WholeMacTest : public MacTest {
protected:
  ~WholeMacTest() override {
    EXPECT_EQ(driver_.heldServices(), 0U);
    EXPECT_EQ(driver_.openConnections(), 0U);
  }

  /// What the same machine shows without the Mac's own sources in between.
  static core::SensorSnapshot expected(simulated::SensorState sensors) {
    support::VirtualTime time;
    auto mac = simulated::makeSimulatedMac("macbook-pro", time.clock, 1);
    mac->setSensors(sensors);
    auto machine = simulated::simulatedMachine(mac);
    return snapshotOver(*machine.smc, *machine.hid, time);
  }
  core::SensorSnapshot snapshot() {
    const HIDInterface interface(fake::SensorHub::loader());
    HIDEventSystem hid(interface);
    return snapshotOver(smc_, hid, time_);
  }

  fake::Driver driver_{mac_};
  fake::SensorHub hub_{mac_};
  AppleSMC smc_;
};

TEST_F(WholeMacTest, ShowsTheFansAndTemperaturesOfTheMachine) {
  const auto shown = snapshot();
  EXPECT_EQ(shown, expected(simulated::SensorState::working));
  EXPECT_EQ(shown.fans.size(), 2U);
  ASSERT_FALSE(shown.temps.empty());
  EXPECT_EQ(shown.temps.front().source, core::SensorSource::hid);
}

TEST_F(WholeMacTest, FallsBackToTheSMCsTemperaturesWithoutTheInterface) {
  hub_.missing = {"IOHIDServiceClientCopyEvent"};
  const auto shown = snapshot();
  ASSERT_FALSE(shown.temps.empty());
  for (const auto& sensor : shown.temps)
    EXPECT_EQ(sensor.source, core::SensorSource::smc) << sensor.key;
}

TEST_F(WholeMacTest, ReadsNothingWhereThereIsNothing) {
  mac_->setSensors(simulated::SensorState::gone);
  EXPECT_TRUE(snapshot().temps.empty());
}

// This computer

using ThisComputerTest = MacTest;

TEST_F(ThisComputerTest, IsNamedByItsModel) {
  const fake::Kernel kernel;
  EXPECT_EQ(thisComputer().name, "this Mac (Mac14,9)");
}

TEST_F(ThisComputerTest, IsNamedWithoutAModelThatTheKernelDoesNotTell) {
  fake::Kernel kernel;
  kernel.model = std::nullopt;
  EXPECT_EQ(thisComputer().name, "this Mac");
}

TEST_F(ThisComputerTest, ReadsTheSMCThatTheSystemHas) {
  const fake::Kernel kernel;
  fake::Driver driver(mac_);
  const auto machine = thisComputer();
  const auto connection = machine.smc->open();
  ASSERT_TRUE(connection);
  machine.smc->close(*connection);
  EXPECT_EQ(driver.openConnections(), 0U);
}

TEST_F(ThisComputerTest, MayControlItsFansAsRootAlone) {
  const fake::Kernel kernel;
  EXPECT_EQ(thisComputer().privileges->mayControlFans(), ::geteuid() == 0);
}

} // namespace
} // namespace ventolith::platform
