// A whole helper but its process: on a simulated Mac, at the end of a line inside this process.
#pragma once

#include "helper/daemon/Doubles.h"
#include "helper/daemon/HelperDaemon.h"
#include "helper/link/InProcessLink.h"
#include "platform/simulated/SimulatedMachine.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace ventolith::helper {

using core::ControlResult;
using core::ControlState;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::FanID;
using runtime::Async;
using Lines = std::vector<std::string>;

struct SwitchedPrivileges final : hardware::Privileges {
  bool isRoot = true;
  [[nodiscard]] bool mayControlFans() const override { return isRoot; }
};

/// A listener that says in a log what becomes of it.
class LoggingListener final : public HelperListener {
public:
  LoggingListener(std::unique_ptr<HelperListener> inner, Lines& log) : inner_(std::move(inner)), log_(log) {}

  void resume(HelperService& service, std::function<void(std::string reason)> lost) override {
    log_.emplace_back("resume");
    inner_->resume(service, std::move(lost));
  }
  void watch(const HelperCaller& caller) override { inner_->watch(caller); }
  void unwatch(const HelperCaller& caller) override { inner_->unwatch(caller); }
  void invalidate() override {
    log_.emplace_back("invalidate");
    inner_->invalidate();
  }

private:
  std::unique_ptr<HelperListener> inner_;
  Lines& log_;
};

using Reply = std::shared_ptr<std::optional<std::optional<HelperReply>>>;

class HelperDaemonTest : public testing::Test {
protected:
  HelperDaemonTest() {
    supervisor.log = &events;
    mac->setJournal([this](const simulated::JournalEntry& entry) {
      if (entry.operation == simulated::JournalEntry::Operation::write) events.push_back(entry.key);
    });
    if (time.clock.run(smc.open())) throw std::logic_error("the machine does not open");
  }

  // Whatever a test has left held goes back, so that no loop outlives what it works on.
  ~HelperDaemonTest() override {
    mac->refuseWrites("F0Md", std::nullopt);
    stop.requestStop();
    pass(20);
  }

  /// Starts the daemon and lets it come up.
  void start() {
    daemon = std::make_unique<HelperDaemon>(
        time.executor(), time.clock, HelperDaemon::Machine{smc, sensors, privileges},
        HelperDaemon::Surroundings{listener, authorizer, sleepEvents, supervisor, log}, "2.0.0+9");
    time.start(keepOutcome());
  }

  std::unique_ptr<HelperChannel> connect() {
    auto channel = link.channels()();
    channel->resume({.interrupted = [] {}, .invalidated = [] {}});
    return channel;
  }
  /// Sends a call, and lets happen what can happen at once.
  Reply begin(HelperChannel& client, HelperMessage message) {
    auto reply = std::make_shared<std::optional<std::optional<HelperReply>>>();
    time.start(keep(client, std::move(message), reply));
    return reply;
  }
  ControlResult command(HelperChannel& client, HelperMessage message) {
    const auto reply = time.clock.run(client.call(std::move(message)));
    return ControlResult::fromXPCCode(std::get<replies::Code>(reply.value()).value);
  }
  ControlState state(HelperChannel& client) {
    const auto reply = time.clock.run(client.call(messages::ReadState()));
    return core::decodeControlState(std::get<replies::State>(reply.value()).json);
  }

  void pass(double seconds) { time.clock.advance(runtime::fromSeconds(seconds)); }
  /// Lets time pass with a heartbeat of `client` each second.
  void passWithHeartbeats(HelperChannel& client, int seconds) {
    for (int second = 0; second < seconds; ++second) {
      pass(1);
      client.send(messages::Heartbeat());
      time.clock.settle();
    }
  }

  static messages::ApplyConfig plan(std::map<FanID, double> rpms) {
    FanControlPlan plan;
    for (const auto& [fan, rpm] : rpms)
      plan.fans.push_back({fan, FanControlModePlan::fixedRPM(rpm)});
    return {core::encode(plan)};
  }
  [[nodiscard]] std::vector<int> modes() {
    std::vector<int> modes;
    for (const auto& fan : mac->fans())
      modes.push_back(fan.mode());
    return modes;
  }
  /// The fan as a helper has left it that was killed.
  void leaveHeld(const std::string& modeKey) {
    ASSERT_TRUE(time.clock.run(smc.writeUInt8("Ftst", 1)));
    pass(5);
    ASSERT_EQ(time.clock.run(smc.writeUInt8(modeKey, 1)).value(), 0);
  }

  support::VirtualTime time;
  Lines events; // Of the supervisor, the listener, and the writes to the machine.
  std::shared_ptr<simulated::SimulatedMac> mac = simulated::makeSimulatedMac("macbook-pro", time.clock, 1);
  hardware::Machine machine = simulated::simulatedMachine(mac);
  hardware::SMCConnection smc{time.executor(), *machine.smc};
  hardware::SensorReader sensors{time.executor(), smc, *machine.hid, time.clock, [](const std::string&) {}};
  SwitchedPrivileges privileges;
  InProcessLink link{time.executor()};
  LoggingListener listener{link.claimListener(), events};
  ScriptedAuthorizer authorizer;
  ManualSleep sleepEvents;
  RecordingSupervisor supervisor;
  RecordingLog log;
  runtime::StopSource stop;
  std::unique_ptr<HelperDaemon> daemon;
  std::optional<HelperDaemon::Outcome> outcome;

private:
  Async<void> keepOutcome() { outcome = co_await daemon->run(stop.token()); }
  static Async<void> keep(HelperChannel& client, HelperMessage message, Reply reply) {
    *reply = co_await client.call(std::move(message));
  }
};

} // namespace ventolith::helper
