// Where the machine's power comes from, by UPower on a bus of the tests' own.
#include "app/PowerSource.h"
#include "e2e/MockPeer.h"
#include "e2e/MockUPower.h"
#include "e2e/PrivateBus.h"
#include "e2e/ServiceLoop.h"
#include "platform/linux/desktop/UPowerSource.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::e2e {

namespace {

using namespace std::chrono_literals;
using app::PowerSource;
using Log = std::vector<PowerSource>;
const sdbus::ObjectPath displayDevice = "/org/freedesktop/UPower/devices/DisplayDevice";

constexpr std::uint32_t batteryKind = 2;
constexpr std::uint32_t uninterruptibleKind = 3;

/// What the fallbacks of a test answer, and how many were made.
struct Kernel {
  PowerSource source = PowerSource::unknown;
  int fallbacksMade = 0;
  std::function<void()> tell; // Empty while none is used.
};

class ScriptedFallback final : public app::PowerSourceProvider {
public:
  explicit ScriptedFallback(Kernel& kernel) : kernel_(kernel) { ++kernel_.fallbacksMade; }
  ~ScriptedFallback() override { stop(); }

  void start(std::function<void()> onChange) override { kernel_.tell = std::move(onChange); }
  void stop() override { kernel_.tell = nullptr; }
  [[nodiscard]] PowerSource current() const override { return kernel_.source; }

private:
  Kernel& kernel_;
};

struct UPower : testing::Test {
  void startUPower(bool isOnBattery) {
    upower = startUPowerOn(privateBus, isOnBattery ? R"({"OnBattery": true})" : R"({"OnBattery": false})");
  }
  void endUPower() {
    upower.reset();
    waitUntilOwned(privateBus, upowerObject.name, false);
  }

  void observe() {
    provider = std::make_unique<platform::UPowerSource>(
        loop.executor(), privateBus.address(), [this] { return std::make_unique<ScriptedFallback>(kernel); });
    provider->start([this] { log.push_back(provider->current()); });
  }
  /// Until UPower has answered.
  void observeUPower() {
    observe();
    untilUPowerAnswers();
  }
  void untilUPowerAnswers() {
    loop.until("UPower's answer", [&] { return !kernel.tell; });
  }

  void set(const Properties& properties) const {
    upower->control("UpdateProperties", upowerObject.interface, properties);
  }
  void setOnBattery(bool isOnBattery) const { set({{"OnBattery", sdbus::Variant(isOnBattery)}}); }
  void setOfDisplayDevice(const Properties& properties) const {
    upower->control("SetDeviceProperties", displayDevice, properties);
  }

  void untilLogged(const Log& expected) {
    loop.until("the notifications", [&] { return log.size() >= expected.size(); });
    loop.runFor(20ms);
    EXPECT_EQ(log, expected);
  }

  PrivateBus privateBus;
  ServiceLoop loop;
  Kernel kernel;
  std::unique_ptr<MockPeer> upower;
  std::unique_ptr<app::PowerSourceProvider> provider;
  Log log;
};

TEST_F(UPower, ThatIsThereAtTheStartAnswers) {
  startUPower(true);
  observe();
  EXPECT_EQ(provider->current(), PowerSource::unknown);

  untilLogged({PowerSource::battery});
}

TEST_F(UPower, WithoutABatteryIsMains) {
  startUPower(false);
  observe();
  untilLogged({PowerSource::ac});
}

TEST_F(UPower, TellsEachFlip) {
  startUPower(false);
  observeUPower();
  setOnBattery(true);
  untilLogged({PowerSource::ac, PowerSource::battery});
  setOnBattery(false);
  untilLogged({PowerSource::ac, PowerSource::battery, PowerSource::ac});
}

TEST_F(UPower, TellsEveryChangeOfTheSupplies) {
  startUPower(true);
  observeUPower();
  setOfDisplayDevice({{"Percentage", sdbus::Variant(71.0)}});
  setOfDisplayDevice({{"Percentage", sdbus::Variant(70.0)}});
  untilLogged({PowerSource::battery, PowerSource::battery, PowerSource::battery});
}

TEST_F(UPower, TellsNothingOfTheLid) {
  startUPower(true);
  observeUPower();
  set({{"LidIsClosed", sdbus::Variant(true)}});
  setOnBattery(false);
  untilLogged({PowerSource::battery, PowerSource::ac});
}

TEST_F(UPower, SleepsBetweenNotifications) {
  startUPower(true);
  observeUPower();
  loop.untilAsleep();
}

TEST_F(UPower, WhoseDisplayDeviceIsAnUninterruptibleSupplyIsUnknownOnIt) {
  startUPower(true);
  setOfDisplayDevice({{"Type", sdbus::Variant(uninterruptibleKind)}});
  kernel.source = PowerSource::ac;
  observeUPower();
  untilLogged({PowerSource::unknown});
  setOfDisplayDevice({{"Type", sdbus::Variant(batteryKind)}});
  untilLogged({PowerSource::unknown, PowerSource::battery});
  setOnBattery(false);
  setOfDisplayDevice({{"Type", sdbus::Variant(uninterruptibleKind)}});
  untilLogged({PowerSource::unknown, PowerSource::battery, PowerSource::ac, PowerSource::ac});
}

TEST_F(UPower, IsAskedForAValueThatItOnlySaysHasChanged) {
  startUPower(true);
  observeUPower();
  upower->control("EmitSignal", std::string("org.freedesktop.DBus.Properties"),
                  std::string("PropertiesChanged"), std::string("sa{sv}as"),
                  std::vector<sdbus::Variant>{sdbus::Variant(std::string(upowerObject.interface)),
                                              sdbus::Variant(Properties()),
                                              sdbus::Variant(std::vector<std::string>{"OnBattery"})});
  untilLogged({PowerSource::battery, PowerSource::battery});
}

TEST_F(UPower, ThatAnswersAsTheFallbackDidTellsNothing) {
  startUPower(true);
  kernel.source = PowerSource::battery;
  observeUPower();
  untilLogged({});
  EXPECT_EQ(provider->current(), PowerSource::battery);
}

TEST_F(UPower, ThatGoesLeavesTheAnswerToTheFallback) {
  startUPower(true);
  observeUPower();
  kernel.source = PowerSource::ac;
  endUPower();
  untilLogged({PowerSource::battery, PowerSource::ac});
  kernel.source = PowerSource::battery;
  kernel.tell();
  EXPECT_EQ(log, (Log{PowerSource::battery, PowerSource::ac, PowerSource::battery}));
  loop.untilAsleep();
}

TEST_F(UPower, ThatComesBackIsTakenUp) {
  startUPower(true);
  observeUPower();
  kernel.source = PowerSource::battery;
  endUPower();
  loop.until("the fallback", [&] { return kernel.fallbacksMade == 2; });
  startUPower(false);
  untilLogged({PowerSource::battery, PowerSource::ac});
  setOnBattery(true);
  untilLogged({PowerSource::battery, PowerSource::ac, PowerSource::battery});
}

TEST_F(UPower, ThatComesLaterIsTakenUp) {
  kernel.source = PowerSource::ac;
  observe();
  loop.runFor(50ms);
  startUPower(true);
  untilLogged({PowerSource::battery});
}

TEST_F(UPower, ThatNeverComesIsNotWaitedForAwake) {
  kernel.source = PowerSource::battery;
  observe();
  loop.untilAsleep();
  EXPECT_EQ(provider->current(), PowerSource::battery);
  EXPECT_EQ(log, Log{});
  EXPECT_EQ(kernel.fallbacksMade, 1);
}

TEST_F(UPower, ThatOnlyTakesQuestionsLeavesTheAnswerToTheFallback) {
  const auto hanging = connectTo(privateBus);
  hanging->requestName(upowerObject.name);
  kernel.source = PowerSource::ac;
  observe();
  loop.untilAsleep();
  EXPECT_EQ(provider->current(), PowerSource::ac);
}

TEST_F(UPower, ThatIsNotUnderstoodLeavesTheAnswerToTheFallback) {
  upower = startUPowerOn(privateBus, R"({"OnBattery": "yes"})");
  kernel.source = PowerSource::battery;
  observe();
  set({{"OnBattery", sdbus::Variant(std::string("no"))}});
  loop.untilAsleep();
  EXPECT_EQ(provider->current(), PowerSource::battery);
  EXPECT_EQ(log, Log{});
}

TEST_F(UPower, IsStartedAtTheStart) {
  privateBus.addService(upowerObject.name, "/usr/bin/env DBUS_SYSTEM_BUS_ADDRESS=" + privateBus.address() +
                                               " /usr/bin/python3 -m dbusmock --template upower "
                                               R"(--parameters '{"OnBattery": true}')");
  observe();
  untilLogged({PowerSource::battery});
}

TEST_F(UPower, ThatCannotBeStartedIsTriedOnce) {
  const TemporaryFolder folder;
  const std::filesystem::path tries = folder.path() / "tries";
  privateBus.addService(upowerObject.name, R"(/bin/sh -c "echo again >> )" + tries.string() + R"(; exit 1")");
  observe();
  loop.until("the try", [&] { return !readLines(tries).empty(); });
  loop.untilAsleep();
  EXPECT_EQ(readLines(tries).size(), 1U);
}

TEST_F(UPower, IsNotStartedAgainOnceItWent) {
  const TemporaryFolder folder;
  startUPower(true);
  privateBus.addService(upowerObject.name, "/usr/bin/touch " + (folder.path() / "started").string());
  observeUPower();
  endUPower();
  loop.until("the fallback", [&] { return kernel.fallbacksMade == 2; });
  loop.runFor(100ms);
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "started"));
}

TEST_F(UPower, OnABusThatDiesLeavesTheAnswerToTheFallback) {
  startUPower(true);
  observeUPower();
  kernel.source = PowerSource::ac;
  privateBus.kill();
  untilLogged({PowerSource::battery, PowerSource::ac});
  loop.untilAsleep();
  kernel.tell();
  EXPECT_EQ(log, (Log{PowerSource::battery, PowerSource::ac, PowerSource::ac}));
}

TEST_F(UPower, ThatHangsOnABusThatDiesEndsNothing) {
  const auto hanging = connectTo(privateBus);
  hanging->requestName(upowerObject.name);
  kernel.source = PowerSource::ac;
  observe();
  loop.runFor(20ms);
  privateBus.kill();
  loop.untilAsleep();
  EXPECT_EQ(provider->current(), PowerSource::ac);
}

TEST_F(UPower, WithoutABusIsTheFallback) {
  privateBus.kill();
  kernel.source = PowerSource::battery;
  observe();
  EXPECT_EQ(provider->current(), PowerSource::battery);
  kernel.tell();
  EXPECT_EQ(log, (Log{PowerSource::battery}));
  loop.untilAsleep();
}

TEST_F(UPower, TellsNothingAfterTheStop) {
  startUPower(true);
  observeUPower();
  provider->stop();
  setOnBattery(false);
  endUPower();
  loop.untilAsleep();
  EXPECT_EQ(log, (Log{PowerSource::battery}));
}

TEST_F(UPower, AFallbackThatSpeaksAfterTheStopIsNotPassedOn) {
  observe();
  const auto speak = kernel.tell;
  provider->stop();
  speak();
  EXPECT_EQ(log, Log{});
}

TEST_F(UPower, IsNotHeardOnceTheSourceIsGone) {
  startUPower(true);
  observe(); // Its question is still on its way.
  provider.reset();
  setOnBattery(false);
  loop.untilAsleep();
  EXPECT_EQ(log, Log{});
  EXPECT_FALSE(kernel.tell);
}

TEST_F(UPower, WhoIsToldMayLetGoOfTheSource) {
  startUPower(true);
  int timesTold = 0;
  provider = std::make_unique<platform::UPowerSource>(
      loop.executor(), privateBus.address(), [this] { return std::make_unique<ScriptedFallback>(kernel); });
  provider->start([&] {
    if (++timesTold == 2) provider.reset();
  });
  untilUPowerAnswers();
  setOnBattery(false);
  loop.until("the flip", [&] { return timesTold == 2; });
  setOnBattery(true);
  loop.untilAsleep();
  EXPECT_EQ(timesTold, 2);
}

} // namespace

} // namespace ventolith::e2e
