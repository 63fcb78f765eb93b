// What stands around an application model, in software.
#pragma once

#include "app/AppModelDependencies.h"
#include "app/UpdateEngine.h"
#include "helper/link/Completion.h"
#include "support/VirtualTime.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::app {

using core::ControlResult;
using core::ControlState;
using core::FanControlPlan;
using runtime::Async;

/// Holds work up until it is opened, again and again.
class Gate {
public:
  explicit Gate(const runtime::Executor& executor) : executor_(executor) {}

  bool isClosed = false;

  void open() {
    isClosed = false;
    opened_->complete(true);
    opened_ = std::make_shared<helper::Completion<bool>>(executor_);
  }
  Async<void> pass() {
    if (isClosed) co_await helper::Completion<bool>::valueOf(opened_);
  }

private:
  runtime::Executor executor_;
  std::shared_ptr<helper::Completion<bool>> opened_ = std::make_shared<helper::Completion<bool>>(executor_);
};

/// What all controllers that a model made have been asked.
struct ControllerLog {
  struct Sent {
    std::string controller; // "preview 1", "helper 2": counted over both kinds.
    FanControlPlan plan;
    bool operator==(const Sent&) const = default;
  };

  explicit ControllerLog(support::VirtualTime& virtualTime)
      : time(virtualTime), commands(virtualTime.executor()) {}

  support::VirtualTime& time;
  int made = 0;
  std::vector<Sent> plans;
  std::vector<std::string> heartbeats; // By which controller.
  std::vector<std::string> restores;   // The same.
  std::vector<std::string> calls;      // Plans and restores in their order: "helper 2 applyPlan".
  std::vector<runtime::Instant> heartbeatTimes;
  std::deque<ControlResult> results; // Of the next plans; applied when there are no more.
  Gate commands;                     // Holds plans back.
  std::vector<std::weak_ptr<core::FanControlling>> controllers;

  [[nodiscard]] std::size_t alive() const {
    std::size_t count = 0;
    for (const auto& controller : controllers)
      count += controller.expired() ? 0U : 1U;
    return count;
  }
};

class LoggingController final : public core::FanControlling {
public:
  LoggingController(std::string name, ControllerLog& log) : name_(std::move(name)), log_(log) {}

  Async<ControlResult> applyPlan(FanControlPlan plan) override {
    log_.calls.push_back(name_ + " applyPlan");
    log_.plans.push_back({name_, std::move(plan)});
    ControlResult result = ControlResult::applied;
    if (!log_.results.empty()) {
      result = log_.results.front();
      log_.results.pop_front();
    }
    co_await log_.commands.pass();
    co_return result;
  }
  Async<void> restoreAuto() override {
    log_.calls.push_back(name_ + " restoreAuto");
    log_.restores.push_back(name_);
    co_return;
  }
  Async<void> heartbeat() override {
    log_.heartbeats.push_back(name_);
    log_.heartbeatTimes.push_back(log_.time.clock.now());
    co_return;
  }
  core::ControlStateStream& stateStream() override { return states; }

  // A model sends nothing but whole plans.
  Async<ControlResult> setManual(core::FanID, std::int64_t) override { return unexpected(); }
  Async<ControlResult> setPercent(core::FanID, double) override { return unexpected(); }
  Async<ControlResult> fullBlast() override { return unexpected(); }
  Async<ControlResult> automatic() override { return unexpected(); }

  core::ControlStateStream states;

private:
  static Async<ControlResult> unexpected() { throw std::logic_error("a command that is no plan"); }

  std::string name_;
  ControllerLog& log_;
};

inline FanControllerFactory loggingControllers(std::string kind, ControllerLog& log) {
  return [kind = std::move(kind), &log] {
    auto controller = std::make_shared<LoggingController>(kind + " " + std::to_string(++log.made), log);
    log.controllers.push_back(controller);
    return controller;
  };
}

/// A driver that opens or does not.
struct ScriptedUserClient final : hardware::SMCUserClient {
  std::optional<hardware::SMCError> openError;
  int opened = 0;

  hardware::SMCResult<hardware::IOConnect> open() override {
    if (openError) return *openError;
    ++opened;
    return hardware::IOConnect{1};
  }
  void close(hardware::IOConnect) override {}
  hardware::KernReturn call(hardware::IOConnect, const hardware::SMCParamStruct&,
                            hardware::SMCParamStruct&) override {
    return 0;
  }
};

struct ScriptedReadings final : hardware::SensorReading {
  explicit ScriptedReadings(support::VirtualTime& virtualTime)
      : time(virtualTime), readings(virtualTime.executor()) {}

  support::VirtualTime& time;
  core::SensorSnapshot next;
  runtime::Duration readTime = runtime::Duration::zero();
  std::vector<runtime::Instant> times; // When reads began.
  Gate readings;

  Async<core::SensorSnapshot> snapshot() override {
    times.push_back(time.clock.now());
    co_await readings.pass();
    if (readTime > runtime::Duration::zero()) co_await time.clock.sleep(readTime, runtime::StopToken());
    co_return next;
  }

  /// Seconds between the beginnings of reads.
  [[nodiscard]] std::vector<double> gaps() const {
    std::vector<double> seconds;
    for (std::size_t place = 1; place < times.size(); ++place)
      seconds.push_back(runtime::toSeconds(times[place] - times[place - 1]));
    return seconds;
  }
};

/// The system's word on the helper, which a test sets.
struct Registration {
  explicit Registration(const runtime::Executor& executor) : answers(executor) {}

  helper::DaemonStatus status = helper::DaemonStatus::notRegistered;
  std::optional<helper::DaemonStatus> statusAfterRegistering;
  int asked = 0;
  std::vector<std::string> log;
  Gate answers; // Holds the status back.
};

class ScriptedDaemonService final : public helper::DaemonService {
public:
  explicit ScriptedDaemonService(std::shared_ptr<Registration> registration)
      : registration_(std::move(registration)) {}

  Async<helper::DaemonStatus> status() override {
    const auto registration = registration_;
    ++registration->asked;
    co_await registration->answers.pass();
    co_return registration->status;
  }
  Async<ErrorText> registerDaemon() override {
    registration_->log.emplace_back("register");
    if (registration_->statusAfterRegistering) registration_->status = *registration_->statusAfterRegistering;
    co_return std::nullopt;
  }
  Async<ErrorText> unregisterDaemon() override {
    registration_->log.emplace_back("unregister");
    co_return std::nullopt;
  }
  void openSystemSettings() override { registration_->log.emplace_back("openSystemSettings"); }

private:
  std::shared_ptr<Registration> registration_;
};

/// The system's power, which a test plugs and unplugs.
struct Socket {
  PowerSource source = PowerSource::unknown;
  bool notifies = true;
  std::function<void()> onChange;
  int started = 0;
  int stopped = 0;

  /// A notification, whatever it is about.
  void notify() const {
    if (notifies && onChange) onChange();
  }
};

class ScriptedPower final : public PowerSourceProvider {
public:
  explicit ScriptedPower(std::shared_ptr<Socket> socket) : socket_(std::move(socket)) {}
  ~ScriptedPower() override { ScriptedPower::stop(); }

  void start(std::function<void()> onChange) override {
    ++socket_->started;
    socket_->onChange = std::move(onChange);
  }
  void stop() override {
    ++socket_->stopped;
    socket_->onChange = nullptr;
  }
  [[nodiscard]] PowerSource current() const override { return socket_->source; }

private:
  std::shared_ptr<Socket> socket_;
};

/// An update engine that checks when it is asked, and says what a test has it say.
struct UpdateService {
  std::shared_ptr<UpdateEngineDelegate> delegate; // None without an engine.
  int checks = 0;
};

class ScriptedUpdateEngine final : public UpdateEngine {
public:
  explicit ScriptedUpdateEngine(std::shared_ptr<UpdateService> service) : service_(std::move(service)) {}
  void checkForUpdates() override { ++service_->checks; }

private:
  std::shared_ptr<UpdateService> service_;
};

} // namespace ventolith::app
