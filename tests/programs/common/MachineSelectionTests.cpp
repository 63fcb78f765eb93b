#include "programs/common/MachineSelection.h"

#include "hardware/SensorReader.h"
#include "platform/simulated/SimulatedMachine.h"
#include "platform/system/ThisComputer.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace ventolith::programs {
namespace {

class MachineSelectionTest : public testing::Test {
protected:
  hardware::Machine select(std::optional<std::string> choice) {
    const auto environment = [&](const std::string& name) {
      asked_.push_back(name);
      return choice;
    };
    return selectMachine(environment, time_.clock);
  }

  /// What a choice that cannot be had is answered with.
  std::string refusalOf(const std::string& choice) {
    try {
      return "selected " + select(choice).name;
    } catch (const MachineError& error) {
      return error.what();
    }
  }

  core::SensorSnapshot snapshotOf(hardware::Machine& machine) {
    hardware::SMCConnection connection(time_.executor(), *machine.smc);
    EXPECT_EQ(time_.clock.run(connection.open()), std::nullopt);
    hardware::SensorReader reader(time_.executor(), connection, *machine.hid, time_.clock,
                                  [](const std::string&) {});
    return time_.clock.run(reader.snapshot());
  }

  support::VirtualTime time_;
  std::vector<std::string> asked_;
};

/// A computer without hwmon devices, whatever the one that runs the test has.
class ThisComputerTest : public MachineSelectionTest {
protected:
  ThisComputerTest() {
    std::string folder = testing::TempDir() + "no-devices-XXXXXX";
    root_ = ::mkdtemp(folder.data());
    ::setenv("VENTOLITH_HWMON_ROOT", root_.c_str(), 1);
  }
  ~ThisComputerTest() override {
    ::unsetenv("VENTOLITH_HWMON_ROOT");
    std::filesystem::remove_all(root_);
  }

  std::filesystem::path root_;
};

TEST_F(ThisComputerTest, WithoutAChoiceItIsThisComputer) {
  EXPECT_EQ(select(std::nullopt).name, platform::thisComputer().name);
}

TEST_F(ThisComputerTest, AnEmptyChoiceIsNone) {
  EXPECT_EQ(select("").name, platform::thisComputer().name);
}

TEST_F(ThisComputerTest, TheMachineIsComplete) {
  const auto machine = select(std::nullopt);
  EXPECT_NE(machine.smc, nullptr);
  EXPECT_NE(machine.hid, nullptr);
  EXPECT_NE(machine.privileges, nullptr);
}

TEST_F(MachineSelectionTest, TheChoiceStandsInOneVariable) {
  select("simulated:mac-mini");
  EXPECT_EQ(asked_, std::vector<std::string>{"VENTOLITH_MACHINE"});
}

TEST_F(MachineSelectionTest, EachBuiltInMachineIsHadByItsNameAndAnswers) {
  const auto names = simulated::builtInMachines();
  ASSERT_FALSE(names.empty());
  for (const std::string& name : names) {
    auto machine = select("simulated:" + name);
    EXPECT_EQ(machine.name, "simulated " + name);
    EXPECT_TRUE(machine.privileges->mayControlFans()) << name;
    EXPECT_FALSE(snapshotOf(machine).temps.empty()) << name;
  }
}

TEST_F(MachineSelectionTest, AMachineFileIsHadByItsPath) {
  auto machine = select("simulated:" VENTOLITH_DATA "/machines/mac-mini.json");
  EXPECT_EQ(machine.name, "simulated mac-mini");
  const auto fans = snapshotOf(machine).fans;
  ASSERT_EQ(fans.size(), 1U);
  EXPECT_EQ(fans[0].minRPM, 1700);
  EXPECT_EQ(fans[0].maxRPM, 4400);
}

TEST_F(MachineSelectionTest, ASimulatedMachineIsTheSameEveryTime) {
  auto machine = select("simulated:macbook-pro");
  const auto first = snapshotOf(machine);
  support::VirtualTime laterTime;
  auto later = selectMachine([](const std::string&) { return "simulated:macbook-pro"; }, laterTime.clock);
  hardware::SMCConnection connection(laterTime.executor(), *later.smc);
  ASSERT_EQ(laterTime.clock.run(connection.open()), std::nullopt);
  hardware::SensorReader reader(laterTime.executor(), connection, *later.hid, laterTime.clock, {});
  EXPECT_EQ(laterTime.clock.run(reader.snapshot()), first);
  EXPECT_FALSE(first.fans.empty());
}

TEST_F(MachineSelectionTest, TwoSelectionsAreTwoMachines) {
  auto first = select("simulated:mac-mini");
  auto second = select("simulated:mac-mini");
  hardware::SMCConnection connection(time_.executor(), *first.smc);
  ASSERT_EQ(time_.clock.run(connection.open()), std::nullopt);
  ASSERT_EQ(*time_.clock.run(connection.writeUInt8("F0md", 1)), 0);
  EXPECT_EQ(snapshotOf(first).fans.at(0).mode, 1);
  EXPECT_EQ(snapshotOf(second).fans.at(0).mode, 0);
}

TEST_F(MachineSelectionTest, AnUnknownNameIsRefusedWithThoseThatThereAre) {
  const std::string refusal = refusalOf("simulated:toaster");
  EXPECT_EQ(refusal.find("VENTOLITH_MACHINE=\"simulated:toaster\": "), 0U) << refusal;
  for (const std::string& name : simulated::builtInMachines())
    EXPECT_NE(refusal.find(name), std::string::npos) << refusal;
}

TEST_F(MachineSelectionTest, AFileThatIsNotThereIsRefused) {
  const std::string refusal = refusalOf("simulated:/nowhere/machine.json");
  EXPECT_EQ(refusal.find("VENTOLITH_MACHINE=\"simulated:/nowhere/machine.json\": "), 0U) << refusal;
}

TEST_F(MachineSelectionTest, EveryOtherFormIsRefused) {
  for (const char* choice : {"mac-mini", "simulated", "Simulated:mac-mini", "socket", "SOCKET:/tmp/x",
                             "/tmp/x", " ", "hwmon:/sys"}) {
    EXPECT_EQ(refusalOf(choice),
              std::string("VENTOLITH_MACHINE=\"") + choice + "\": expected simulated:NAME or socket:PATH");
  }
}

TEST_F(MachineSelectionTest, ASimulatedMachineWithoutANameIsRefused) {
  const std::string refusal = refusalOf("simulated:");
  EXPECT_EQ(refusal.find("VENTOLITH_MACHINE=\"simulated:\": "), 0U) << refusal;
}

TEST_F(MachineSelectionTest, ASocketWithoutASimulatorIsAMachineWhoseDriverIsNotThere) {
  auto machine = select("socket:" + testing::TempDir() + "no-simulator-here");
  hardware::SMCConnection connection(time_.executor(), *machine.smc);
  EXPECT_EQ(time_.clock.run(connection.open()), hardware::SMCError::driverNotFound());
  EXPECT_FALSE(machine.hid->isAvailable());
}

TEST(ProcessEnvironment, GivesWhatIsSetAndNothingElse) {
  ::setenv("VENTOLITH_TEST_VARIABLE", "a value", 1);
  EXPECT_EQ(processEnvironment("VENTOLITH_TEST_VARIABLE"), "a value");
  ::setenv("VENTOLITH_TEST_VARIABLE", "", 1);
  EXPECT_EQ(processEnvironment("VENTOLITH_TEST_VARIABLE"), "");
  ::unsetenv("VENTOLITH_TEST_VARIABLE");
  EXPECT_EQ(processEnvironment("VENTOLITH_TEST_VARIABLE"), std::nullopt);
}

} // namespace
} // namespace ventolith::programs
