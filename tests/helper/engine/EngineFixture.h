// The engine on a scripted SMC and scripted sensors, in virtual time.
#pragma once

#include "helper/engine/LocalFanController.h"
#include "runtime/ManualClock.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace ventolith::helper {

using core::ControlMode;
using core::ControlResult;
using core::ControlState;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::FanID;
using runtime::Async;

using Written = hardware::SMCResult<std::uint8_t>;

inline const hardware::SMCError driverError =
    hardware::SMCError::ioReturn("IOConnectCallStructMethod", 0xe00002bc);

/// Logs "F0Md=1", "F0Tg=3800" and "F0Md?" in order, and answers what it is told to.
class ScriptedSMC final : public hardware::SMCWriting {
public:
  std::vector<std::string> log;
  std::map<std::string, hardware::SMCValue> values;
  std::set<std::string> unreadable; // The driver fails at them.
  /// Asked for every write; 0 unless a test says otherwise.
  std::function<Written(const std::string& write)> answer = [](const std::string&) {
    return Written(std::uint8_t{0});
  };
  /// Called before a write is answered, at the point where other operations can run.
  std::function<void(const std::string& write)> beforeWrite = [](const std::string&) {};

  Async<Written> writeUInt8(std::string key, std::uint8_t value) override {
    return write(fmt::format("{}={}", key, value));
  }
  Async<Written> writeFloat(std::string key, double value) override {
    return write(fmt::format("{}={}", key, value));
  }
  Async<hardware::SMCResult<hardware::SMCValue>> readValue(std::string key) override {
    co_await boost::asio::post(boost::asio::use_awaitable);
    log.push_back(key + "?");
    if (unreadable.contains(key)) co_return driverError;
    const auto found = values.find(key);
    if (found == values.end()) co_return hardware::SMCError::keyNotFound(key);
    co_return found->second;
  }
  Async<std::optional<hardware::SMCValue>> tryReadValue(std::string key) override {
    const auto value = co_await readValue(std::move(key));
    co_return value ? std::optional(*value) : std::nullopt;
  }

  void setNumber(const std::string& key, std::uint32_t value) {
    values.insert_or_assign(key, hardware::SMCValue{hardware::SMCValue::UInt{value}});
  }

  /// Refuses `write` with each of `codes` in turn, and accepts it after them.
  void refuse(const std::string& write, std::vector<int> codes) {
    answer = [write, codes = std::move(codes), next = std::size_t{0}](const std::string& asked) mutable {
      if (asked != write || next >= codes.size()) return Written(std::uint8_t{0});
      return Written(static_cast<std::uint8_t>(codes[next++]));
    };
  }
  void refuseForEver(const std::string& write, std::uint8_t code) {
    answer = [write, code](const std::string& asked) {
      return Written(asked == write ? code : std::uint8_t{0});
    };
  }
  void failForEver(const std::string& write) {
    answer = [write](const std::string& asked) {
      return asked == write ? Written(driverError) : Written(std::uint8_t{0});
    };
  }
  /// A machine without the force latch.
  void haveNoLatch() {
    answer = [](const std::string& asked) {
      return asked.starts_with("Ftst=") ? Written(hardware::SMCError::keyNotFound("Ftst"))
                                        : Written(std::uint8_t{0});
    };
  }
  void acceptAll() {
    answer = [](const std::string&) { return Written(std::uint8_t{0}); };
  }

  [[nodiscard]] long count(const std::string& entry) const {
    return std::count(log.begin(), log.end(), entry);
  }
  [[nodiscard]] std::vector<std::string> writes() const {
    std::vector<std::string> writes;
    std::copy_if(log.begin(), log.end(), std::back_inserter(writes),
                 [](const std::string& entry) { return entry.back() != '?'; });
    return writes;
  }

private:
  Async<Written> write(std::string entry) {
    co_await boost::asio::post(boost::asio::use_awaitable); // Others run here, as they do in earnest.
    beforeWrite(entry);
    log.push_back(entry);
    co_return answer(entry);
  }
};

struct ScriptedSensors final : hardware::SensorReading {
  core::SensorSnapshot next;

  Async<core::SensorSnapshot> snapshot() override {
    co_await boost::asio::post(boost::asio::use_awaitable);
    co_return next;
  }

  void setCelsius(std::optional<double> celsius) {
    next.temps.clear();
    if (celsius)
      next.temps.push_back({"TCHP", "CPU", *celsius, core::SensorCategory::cpu, core::SensorSource::smc});
  }
};

struct ScriptedPrivileges final : hardware::Privileges {
  bool isRoot = true;
  [[nodiscard]] bool mayControlFans() const override { return isRoot; }
};

class EngineTest : public testing::Test {
protected:
  // Two fans of 2000 to 8000 RPM with upper-case mode keys, at 50 °C.
  EngineTest() {
    smc.setNumber("FNum", 2);
    smc.setNumber("F0Md", 0);
    smc.setNumber("F1Md", 0);
    for (FanID fan = 0; fan < 2; ++fan) {
      sensors.next.fans.push_back({fan, fmt::format("Fan {}", fan), 2000, 2000, 8000, 0});
    }
    sensors.setCelsius(50);
  }

  // Ends the loops, which would otherwise outlive what the test has put into the doubles.
  ~EngineTest() override {
    smc.beforeWrite = [](const std::string&) {};
    smc.acceptAll();
    clock.run(controller->restoreAuto());
  }

  template <class Result>
  Result run(Async<Result> work) {
    return clock.run(std::move(work));
  }
  void run(Async<void> work) { clock.run(std::move(work)); }

  /// Starts `work` and lets it go on by itself; the result arrives in the pointer.
  std::shared_ptr<std::optional<ControlResult>> begin(Async<ControlResult> work) {
    auto result = std::make_shared<std::optional<ControlResult>>();
    boost::asio::co_spawn(context, std::move(work), [result](const std::exception_ptr&, ControlResult value) {
      *result = std::move(value);
    });
    clock.settle();
    return result;
  }

  void pass(double seconds) { clock.advance(runtime::fromSeconds(seconds)); }
  /// Lets time pass with heartbeats every second.
  void passAlive(int seconds) {
    for (int second = 0; second < seconds; ++second) {
      pass(1);
      run(controller->heartbeat());
    }
  }

  static FanControlPlan fixed(std::map<FanID, double> rpms) {
    FanControlPlan plan;
    for (const auto& [fan, rpm] : rpms)
      plan.fans.push_back({fan, FanControlModePlan::fixedRPM(rpm)});
    return plan;
  }

  /// A rule on every fan of the plan that fires at once.
  static core::FanRule rule(double threshold, double releaseBelow, double percent) {
    core::FanRule rule;
    rule.thresholdCelsius = threshold;
    rule.releaseBelowCelsius = releaseBelow;
    rule.targetPercent = percent;
    return rule;
  }

  [[nodiscard]] const ControlState& state() const { return controller->currentState(); }
  [[nodiscard]] std::string lastError() const { return state().lastError.value_or("none"); }

  boost::asio::io_context context;
  runtime::ManualClock clock{context};
  ScriptedSMC smc;
  ScriptedSensors sensors;
  ScriptedPrivileges privileges;
  std::shared_ptr<LocalFanController> controller =
      std::make_shared<LocalFanController>(context.get_executor(), clock, smc, sensors, privileges);
};

} // namespace ventolith::helper
