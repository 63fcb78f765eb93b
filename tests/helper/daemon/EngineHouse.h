// The watched engine on a scripted SMC, in virtual time.
#pragma once

#include "helper/daemon/Doubles.h"
#include "helper/daemon/WatchedEngine.h"
#include "helper/engine/EngineFixture.h"
#include "runtime/Event.h"
#include "support/VirtualTime.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace ventolith::helper {

/// A scripted SMC whose calls can come to never return.
class HangingSMC final : public hardware::SMCWriting {
public:
  ScriptedSMC scripted;
  bool hangs = false;
  int turnsPerRead = 0; // Of the event loop, in which others run.

  Async<Written> writeUInt8(std::string key, std::uint8_t value) override {
    if (hangs) co_await forever();
    co_return co_await scripted.writeUInt8(std::move(key), value);
  }
  Async<Written> writeFloat(std::string key, double value) override {
    if (hangs) co_await forever();
    co_return co_await scripted.writeFloat(std::move(key), value);
  }
  Async<hardware::SMCResult<hardware::SMCValue>> readValue(std::string key) override {
    co_return co_await scripted.readValue(std::move(key));
  }
  Async<std::optional<hardware::SMCValue>> tryReadValue(std::string key) override {
    for (int turn = 0; turn < turnsPerRead; ++turn)
      co_await boost::asio::post(boost::asio::use_awaitable);
    co_return co_await scripted.tryReadValue(std::move(key));
  }

private:
  static Async<void> forever() {
    runtime::Event never(co_await boost::asio::this_coro::executor);
    co_await never.wait();
  }
};

class EngineHouse : public testing::Test {
protected:
  // Two fans of 2000 to 8000 RPM at 50 °C.
  EngineHouse() {
    smc().setNumber("FNum", 2);
    smc().setNumber("F0Md", 0);
    smc().setNumber("F1Md", 0);
    for (FanID fan = 0; fan < 2; ++fan)
      sensors.next.fans.push_back({fan, fmt::format("Fan {}", fan), 2000, 2000, 8000, 0});
    sensors.setCelsius(50);
    engine.beginSupervision();
  }

  // Ends the loops, which refer to what the test stands on.
  ~EngineHouse() override {
    hanging.hangs = false;
    smc().acceptAll();
    smc().unreadable.clear();
    time.clock.run(engine.restoreAuto());
  }

  ScriptedSMC& smc() { return hanging.scripted; }

  template <class Result>
  Result run(Async<Result> work) {
    return time.clock.run(std::move(work));
  }
  void run(Async<void> work) { time.clock.run(std::move(work)); }

  /// Starts a command and lets it go on by itself.
  std::shared_ptr<std::optional<ControlResult>> begin(Async<ControlResult> command) {
    auto result = std::make_shared<std::optional<ControlResult>>();
    time.start(keep(std::move(command), result));
    return result;
  }

  void pass(double seconds) { time.clock.advance(runtime::fromSeconds(seconds)); }
  /// Lets time pass with a heartbeat each second.
  void passAlive(int seconds) {
    for (int second = 0; second < seconds; ++second) {
      pass(1);
      run(engine.heartbeat());
    }
  }

  static FanControlPlan fixed(std::map<FanID, double> rpms) {
    FanControlPlan plan;
    for (const auto& [fan, rpm] : rpms)
      plan.fans.push_back({fan, FanControlModePlan::fixedRPM(rpm)});
    return plan;
  }

  /// Not watched, and nothing waits for any time.
  [[nodiscard]] bool isIdle() const { return !supervisor.isWatched && time.clock.sleeperCount() == 0; }

  support::VirtualTime time;
  HangingSMC hanging;
  ScriptedSensors sensors;
  ScriptedPrivileges privileges;
  RecordingSupervisor supervisor;
  RecordingLog log;
  WatchedEngine engine{time.executor(), time.clock, hanging, sensors, privileges, supervisor, log};

private:
  static Async<void> keep(Async<ControlResult> command,
                          std::shared_ptr<std::optional<ControlResult>> result) {
    *result = co_await std::move(command);
  }
};

} // namespace ventolith::helper
