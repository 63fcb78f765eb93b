// The application's end of the line against a scripted helper, in virtual time.
#pragma once

#include "helper/link/HelperManager.h"
#include "helper/link/InProcessLink.h"
#include "helper/link/XPCFanController.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ventolith::helper {

using core::ControlMode;
using core::ControlResult;
using core::ControlState;
using core::FanControlModePlan;
using core::FanControlPlan;
using runtime::Async;

using Log = std::vector<std::string>;

inline const std::string ownBuild = "1.0.3+6";

/// Logs the names of the messages that come, and answers as told.
class ScriptedHelper final : public HelperService {
public:
  explicit ScriptedHelper(const runtime::Executor& executor) : executor_(executor) {}

  std::vector<HelperMessage> messages;
  std::vector<HelperCaller> callers; // Of each message.
  std::vector<HelperCaller> gone;
  std::string build = ownBuild;
  std::int64_t code = 0;
  ControlState state;
  /// In place of the answer to the messages of that name.
  std::map<std::string, HelperAnswer> answers;
  /// Called for each message as it comes.
  std::function<void(const HelperMessage&)> whenAsked = [](const HelperMessage&) {};

  Async<HelperAnswer> answer(HelperCaller caller, HelperMessage message) override {
    messages.push_back(message);
    callers.push_back(caller);
    whenAsked(message);
    const std::string name(nameOf(message));
    if (held_.contains(name)) co_await Completion<bool>::valueOf(holdUp_);
    const auto scripted = answers.find(name);
    co_return scripted != answers.end() ? scripted->second : ordinaryAnswer(message);
  }
  void callerIsGone(const HelperCaller& caller) override { gone.push_back(caller); }

  /// Leaves messages of that name unanswered until `letGo`.
  void hold(const std::string& name) { held_.insert(name); }
  /// Answers at once what comes from here on. What is held stays so until `letGo`.
  void holdNoMore() { held_.clear(); }
  void letGo() {
    held_.clear();
    holdUp_->complete(true);
    holdUp_ = std::make_shared<Completion<bool>>(executor_);
  }

  [[nodiscard]] Log log() const {
    Log names;
    for (const auto& message : messages)
      names.emplace_back(nameOf(message));
    return names;
  }
  [[nodiscard]] long count(const std::string& name) const {
    const auto isNamed = [&](const HelperMessage& message) { return nameOf(message) == name; };
    return std::count_if(messages.begin(), messages.end(), isNamed);
  }

private:
  HelperAnswer ordinaryAnswer(const HelperMessage& message) const {
    const std::string_view name = nameOf(message);
    if (name == "HelperVersion") return replies::Version{build};
    if (name == "ReadState") return replies::State{core::encode(state)};
    if (name == "RestoreAuto" || name == "ShutdownForUpgrade") return replies::Done{};
    if (name == "Heartbeat") return std::nullopt;
    return replies::Code{code};
  }

  runtime::Executor executor_;
  std::set<std::string> held_;
  std::shared_ptr<Completion<bool>> holdUp_ = std::make_shared<Completion<bool>>(executor_);
};

/// Nobody tells the manager of anything here but the controllers.
class IdleDaemonService final : public DaemonService {
public:
  Async<DaemonStatus> status() override { co_return DaemonStatus::enabled; }
  Async<ErrorText> registerDaemon() override { co_return std::nullopt; }
  Async<ErrorText> unregisterDaemon() override { co_return std::nullopt; }
  void openSystemSettings() override {}
};

/// A line without a helper. `bringUp` starts one, `makeController` an application's end.
class LinkTest : public testing::Test {
protected:
  LinkTest() { HelperManager::reportHelperStale(false); } // Which outlives a manager, and so a test.
  ~LinkTest() override { HelperManager::reportHelperStale(false); }

  using Controller = std::shared_ptr<XPCFanController>;

  void bringUp() {
    listener = link.claimListener();
    listener->resume(helper, [](const std::string&) {});
  }
  void kill() {
    link.killHelper();
    time.clock.settle();
  }
  void restart() {
    kill();
    bringUp();
    helper.messages.clear();
  }

  Controller makeController(XPCFanControllerOptions options = {.ownBuildVersion = ownBuild}) {
    auto controller = XPCFanController::make(time.executor(), time.executor(), time.clock, link.channels(),
                                             std::move(options), attempts);
    time.clock.settle();
    return controller;
  }
  /// With a helper, and past the first check.
  Controller makeConnectedController() {
    bringUp();
    auto controller = makeController();
    helper.messages.clear();
    return controller;
  }

  template <class Result>
  Result run(Async<Result> work) {
    return time.clock.run(std::move(work));
  }
  void run(Async<void> work) { time.clock.run(std::move(work)); }

  /// Starts `work` and lets it go on by itself; the result arrives in the pointer.
  template <class Result>
  std::shared_ptr<std::optional<Result>> begin(Async<Result> work) {
    auto result = std::make_shared<std::optional<Result>>();
    boost::asio::co_spawn(time.context, std::move(work),
                          [result](const std::exception_ptr&, Result value) { *result = std::move(value); });
    time.clock.settle();
    return result;
  }

  void pass(double seconds) { time.clock.advance(runtime::fromSeconds(seconds)); }

  std::shared_ptr<HelperManager> makeManager() {
    return run(HelperManager::make(time.executor(), std::make_unique<IdleDaemonService>()));
  }

  support::VirtualTime time;
  InProcessLink link{time.executor()};
  ScriptedHelper helper{time.executor()};
  std::unique_ptr<HelperListener> listener;
  ProcessWideCounter attempts;
};

} // namespace ventolith::helper
