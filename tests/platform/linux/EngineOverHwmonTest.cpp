#include "platform/linux/HwmonTree.h"

#include "hardware/SMCConnection.h"
#include "helper/engine/LocalFanController.h"
#include "runtime/ManualClock.h"

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

namespace ventolith::platform {
namespace {

using namespace std::chrono_literals;

struct AlwaysRoot final : hardware::Privileges {
  [[nodiscard]] bool mayControlFans() const override { return true; }
};

/// The helper's engine on a tree of files, in virtual time. Destroying it is killing it.
struct Helper {
  explicit Helper(const HwmonTree& tree) : driver(tree), connection(context.get_executor(), driver.client) {
    if (clock.run(connection.open())) throw std::runtime_error("did not open");
    engine = std::make_shared<helper::LocalFanController>(context.get_executor(), clock, connection, bridge,
                                                          privileges);
  }

  /// Lets time pass with an application that shows that it is alive.
  void pass(runtime::Duration span) {
    for (; span > 0s; span -= 1s) {
      clock.run(engine->heartbeat());
      clock.advance(1s);
    }
  }

  [[nodiscard]] core::ControlState state() const { return engine->currentState(); }

  boost::asio::io_context context;
  runtime::ManualClock clock{context};
  Driver driver;
  AbsentHIDBridge bridge;
  AlwaysRoot privileges;
  hardware::SMCConnection connection;
  std::shared_ptr<helper::LocalFanController> engine;
};

/// A processor, a graphics card's fan (fan 0) and a main board's (fan 1).
struct EngineOverHwmon : testing::Test {
  HwmonTree tree;

  EngineOverHwmon() {
    tree.addProcessor("hwmon0");
    tree.addGraphicsCard("hwmon1");
    tree.addMainBoard("hwmon2");
  }

  static void holdBoth(Helper& helper) {
    ASSERT_EQ(helper.clock.run(helper.engine->setManual(0, 2000)), core::ControlResult::applied);
    ASSERT_EQ(helper.clock.run(helper.engine->setManual(1, 1000)), core::ControlResult::applied);
    helper.pass(5s);
    ASSERT_TRUE(helper.state().isHolding);
  }

  void expectBothGivenBack() const {
    EXPECT_EQ(tree.text("hwmon1/fan1_enable"), "0");
    EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "5");
  }
};

TEST_F(EngineOverHwmon, HoldsFansOfDifferentDriversAtTheirTargets) {
  Helper helper(tree);
  holdBoth(helper);

  EXPECT_EQ(tree.text("hwmon1/fan1_enable"), "1");
  EXPECT_EQ(tree.text("hwmon1/fan1_target"), "2000");
  EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "1");
  EXPECT_EQ(tree.text("hwmon2/pwm1"), "128");

  helper.clock.run(helper.engine->automatic());
  expectBothGivenBack();
}

TEST_F(EngineOverHwmon, StartupRecoveryGivesBackWhatAKilledHelperHeld) {
  {
    Helper killed(tree);
    holdBoth(killed);
  }
  ASSERT_EQ(tree.text("hwmon2/pwm1_enable"), "1");

  Helper next(tree);
  EXPECT_EQ(next.clock.run(next.engine->restoreAllFansToAutomatic()), std::nullopt);

  expectBothGivenBack();
}

TEST_F(EngineOverHwmon, RecoveryTellsOfAHeldDeviceThatIsAbsentAndGivesItBackWhenItComes) {
  {
    Helper killed(tree);
    holdBoth(killed);
  }
  std::filesystem::rename(tree.root() / "hwmon2", tree.sys() / "unplugged");
  Helper next(tree);
  const auto recover = [&] { return next.clock.run(next.engine->restoreAllFansToAutomatic()); };

  EXPECT_EQ(recover(), "1 fan(s) that were held before cannot be reached");
  EXPECT_EQ(tree.text("hwmon1/fan1_enable"), "0");

  std::filesystem::rename(tree.sys() / "unplugged", tree.root() / "hwmon2");
  EXPECT_EQ(recover(), std::nullopt);
  expectBothGivenBack();
}

TEST_F(EngineOverHwmon, HeldDeviceThatIsUnpluggedEndsInTheMissingTemperatureWatchdog) {
  Helper helper(tree);
  holdBoth(helper);

  tree.remove("hwmon1");
  helper.pass(5s);

  EXPECT_EQ(helper.state().lastError, "temperature data unavailable — released to Auto");
  EXPECT_FALSE(helper.state().isHolding);
  EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "5");
}

TEST_F(EngineOverHwmon, ProcessorThatFallsSilentUnderHeldFansEndsInTheMissingTemperatureWatchdog) {
  tree.set("hwmon9/name", "nvme"); // A cooler sensor that reads on.
  tree.set("hwmon9/temp1_input", "40000");
  Helper helper(tree);
  holdBoth(helper);

  tree.remove("hwmon0/temp1_input");
  helper.pass(10s);

  EXPECT_EQ(helper.state().lastError, "temperature data unavailable — released to Auto");
  expectBothGivenBack();
}

TEST_F(EngineOverHwmon, HeldDeviceThatIsRenumberedIsGivenBackAndCanBeHeldAgain) {
  Helper helper(tree);
  holdBoth(helper);

  std::filesystem::rename(tree.root() / "hwmon2", tree.root() / "hwmon7");
  helper.pass(5s);
  EXPECT_FALSE(helper.state().isHolding);
  EXPECT_EQ(tree.text("hwmon7/pwm1_enable"), "5");
  EXPECT_EQ(tree.text("hwmon1/fan1_enable"), "0");

  EXPECT_EQ(helper.clock.run(helper.engine->setManual(1, 500)), core::ControlResult::applied);
  EXPECT_EQ(tree.text("hwmon7/pwm1"), "64");
}

TEST_F(EngineOverHwmon, FanThatIsNoMoreDoesNotKeepTheOthersFromTheirRelease) {
  Helper helper(tree);
  holdBoth(helper);
  tree.remove("hwmon1");
  helper.pass(5s);

  // What was fan 1 goes by 0 now, and no key is left for the other.
  EXPECT_EQ(helper.clock.run(helper.engine->setManual(0, 2000)), core::ControlResult::applied);
  EXPECT_EQ(tree.text("hwmon2/pwm1"), "255");
  EXPECT_EQ(helper.clock.run(helper.engine->automatic()), core::ControlResult::applied);
  EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "5");
}

TEST_F(EngineOverHwmon, FanThatWasTakenBackDuringSleepIsTakenAnew) {
  Helper helper(tree);
  holdBoth(helper);
  tree.set("hwmon1/fan1_enable", "0");
  tree.set("hwmon2/pwm1_enable", "5");

  helper.driver.asleep += 8h;
  helper.pass(3s);

  EXPECT_EQ(tree.text("hwmon1/fan1_enable"), "1");
  EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "1");
  EXPECT_TRUE(helper.state().isHolding);
}

} // namespace
} // namespace ventolith::platform
