// What stands around a helper, in software.
#pragma once

#include "core/FanControlPlan.h"
#include "helper/daemon/HelperLog.h"
#include "helper/daemon/ServedFans.h"
#include "helper/link/HelperListener.h"
#include "helper/link/HelperSurroundings.h"
#include "runtime/Event.h"

#include <boost/asio/this_coro.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::helper {

struct RecordingLog final : HelperLog {
  std::vector<std::string> notes;
  std::vector<std::string> warnings;

  void note(const std::string& line) override { notes.push_back(line); }
  void warn(const std::string& line) override { warnings.push_back(line); }
};

/// Lets everybody do everything, unless a test says otherwise.
class ScriptedAuthorizer final : public CallerAuthorizer {
public:
  std::map<std::string, bool> verdicts; // By a caller's name.
  bool holdsBack = false;
  std::vector<std::string> asked;

  runtime::Async<bool> mayControlFans(HelperCaller caller, runtime::StopToken stop) override {
    asked.push_back(caller.name);
    if (holdsBack) {
      Question& question = questions_.emplace_back(co_await boost::asio::this_coro::executor);
      const auto giveUp = stop.onStop([&question] { question.answered.happen(); });
      co_await question.answered.wait();
      co_return question.verdict;
    }
    const auto verdict = verdicts.find(caller.name);
    co_return verdict == verdicts.end() || verdict->second;
  }

  /// The question asked as the `index`th of those held back.
  void answer(std::size_t index, bool verdict) {
    questions_.at(index).verdict = verdict;
    questions_.at(index).answered.happen();
  }

private:
  struct Question {
    explicit Question(const runtime::Executor& executor) : answered(executor) {}
    runtime::Event answered;
    bool verdict = false;
  };
  std::deque<Question> questions_; // Who waits for one does not own it: it owns who waits.
};

struct RecordingListener final : HelperListener {
  std::vector<std::string>* log = nullptr; // Of a test that wants the order among others.
  HelperService* service = nullptr;
  std::function<void(std::string)> lost;
  std::vector<std::string> watched;
  bool isInvalidated = false;

  void resume(HelperService& served, std::function<void(std::string reason)> isLost) override {
    service = &served;
    lost = std::move(isLost);
    if (log != nullptr) log->push_back("resume");
  }
  void watch(const HelperCaller& caller) override { watched.push_back(caller.name); }
  void unwatch(const HelperCaller& caller) override { std::erase(watched, caller.name); }
  void invalidate() override {
    isInvalidated = true;
    if (log != nullptr) log->push_back("invalidate");
  }
};

struct RecordingSupervisor final : ServiceSupervisor {
  std::vector<std::string>* log = nullptr;
  int signs = 0;
  bool isWatched = false;
  int timesWatched = 0;

  void ready() override { say("ready"); }
  void stopping() override { say("stopping"); }
  [[nodiscard]] runtime::Duration watchdogInterval() const override { return std::chrono::seconds(10); }
  void setWatched(bool watched) override {
    isWatched = watched;
    timesWatched += watched ? 1 : 0;
  }
  void alive() override { ++signs; }

private:
  void say(const char* word) {
    if (log != nullptr) log->emplace_back(word);
  }
};

struct ManualSleep final : SleepEvents {
  Handlers handlers;

  void observe(Handlers given) override { handlers = std::move(given); }
};

/// Logs what it is asked for: "setManual 0 3000". Nothing takes time unless a test holds it back.
class RecordingFans final : public ServedFans {
public:
  std::vector<std::string> log;
  core::ControlResult result = core::ControlResult::applied;
  core::ControlState state = core::ControlState::idle;
  std::optional<std::string> giveBackError;

  runtime::Async<core::ControlResult> setManual(core::FanID fan, std::int64_t rpm) override {
    return command(fmt::format("setManual {} {}", fan, rpm));
  }
  runtime::Async<core::ControlResult> setPercent(core::FanID fan, double percent) override {
    return command(fmt::format("setPercent {} {}", fan, percent));
  }
  runtime::Async<core::ControlResult> fullBlast() override { return command("fullBlast"); }
  runtime::Async<core::ControlResult> applyPlan(core::FanControlPlan plan) override {
    return command(fmt::format("applyPlan {}", plan.fans.size()));
  }
  runtime::Async<core::ControlResult> automatic() override { return command("automatic"); }
  runtime::Async<void> restoreAuto() override { co_await command("restoreAuto"); }
  runtime::Async<void> heartbeat() override { co_await command("heartbeat"); }
  core::ControlStateStream& stateStream() override { return stream_; }

  [[nodiscard]] const core::ControlState& currentState() const override { return state; }
  runtime::Async<std::optional<std::string>> giveEveryFanBack() override {
    co_await command("giveEveryFanBack");
    co_return giveBackError;
  }

  /// From here on commands of this name do not end before they are told to.
  void holdBack(const std::string& name) { heldBack_[name]; }
  void letGo(const std::string& name) {
    for (runtime::Event& command : heldBack_.at(name))
      command.happen();
    ended_.push_back(heldBack_.extract(name));
  }

private:
  runtime::Async<core::ControlResult> command(std::string text) {
    log.push_back(text);
    const auto held = heldBack_.find(text.substr(0, text.find(' ')));
    if (held != heldBack_.end()) {
      co_await held->second.emplace_back(co_await boost::asio::this_coro::executor).wait();
    }
    co_return result;
  }

  using HeldBack = std::map<std::string, std::deque<runtime::Event>>; // By a command's first word.
  HeldBack heldBack_;
  std::vector<HeldBack::node_type> ended_;
  core::ControlStateStream stream_;
};

} // namespace ventolith::helper
