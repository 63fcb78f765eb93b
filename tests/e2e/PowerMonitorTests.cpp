// Where the machine's power comes from, from UPower and a folder of supplies up to who wants to know.
#include "app/PowerSource.h"
#include "e2e/MockUPower.h"
#include "e2e/PrivateBus.h"
#include "e2e/ServiceLoop.h"
#include "platform/linux/desktop/SystemPowerSource.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

namespace ventolith::e2e {

namespace {

using namespace std::chrono_literals;
using app::PowerSource;
using Log = std::vector<PowerSource>;

/// The whole, as a program puts it together.
struct PowerMonitor : testing::Test {
  PowerMonitor() {
    std::filesystem::create_directory(folder.path() / "BAT0");
    folder.write("BAT0/type", "Battery\n");
    folder.write("BAT0/status", "Discharging\n");
  }

  void start() {
    auto provider = platform::systemPowerSource(loop.executor(), privateBus.address(), folder.path());
    monitor = std::make_unique<app::PowerSourceMonitor>(
        std::move(provider), [this](PowerSource source) { log.push_back(source); });
    monitor->start();
  }
  void untilLogged(const Log& expected) {
    loop.until("the notifications", [&] { return log.size() >= expected.size(); });
    EXPECT_EQ(log, expected);
  }

  TemporaryFolder folder;
  PrivateBus privateBus;
  ServiceLoop loop;
  std::unique_ptr<app::PowerSourceMonitor> monitor;
  Log log;
};

TEST_F(PowerMonitor, TellsTheKernelsSourceBeforeItsStartReturns) {
  start();
  EXPECT_EQ(log, (Log{PowerSource::battery}));
  loop.runFor(100ms);
  EXPECT_EQ(log, (Log{PowerSource::battery}));
}

TEST_F(PowerMonitor, FollowsUPowerAsItComesFlipsAndGoes) {
  start();
  auto upower = startUPowerOn(privateBus, R"({"OnBattery": false})");
  untilLogged({PowerSource::battery, PowerSource::ac});
  upower->control("UpdateProperties", upowerObject.interface,
                  Properties{{"OnBattery", sdbus::Variant(true)}});
  untilLogged({PowerSource::battery, PowerSource::ac, PowerSource::battery});
  folder.write("BAT0/status", "Charging\n");
  upower.reset();
  untilLogged({PowerSource::battery, PowerSource::ac, PowerSource::battery, PowerSource::ac});
}

TEST_F(PowerMonitor, SurvivesTheBus) {
  const auto upower = startUPowerOn(privateBus, R"({"OnBattery": false})");
  start();
  untilLogged({PowerSource::battery, PowerSource::ac});
  privateBus.kill();
  untilLogged({PowerSource::battery, PowerSource::ac, PowerSource::battery});
}

TEST_F(PowerMonitor, TellsNothingAfterTheStop) {
  start();
  monitor->stop();
  const auto upower = startUPowerOn(privateBus, R"({"OnBattery": false})");
  loop.runFor(100ms);
  EXPECT_EQ(log, (Log{PowerSource::battery}));
}

} // namespace

} // namespace ventolith::e2e
