// The preview controller's imitated delay, and what slips in while it passes.
#include "core/PreviewController.h"
#include "support/Plans.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace ventolith::core {
namespace {

using namespace std::chrono_literals;
using States = std::vector<ControlState>;
using Lines = std::vector<std::string>;

struct Preview {
  explicit Preview(runtime::Duration delay = PreviewController::defaultAcquireDelay)
      : controller(time.executor(), time.clock, [](const std::string&) {}, delay) {}

  /// Starts a call and notes its name when it has ended.
  void call(std::string name, runtime::Async<ControlResult> work) {
    time.start(note(std::move(name), std::move(work)));
  }

  runtime::Async<void> note(std::string name, runtime::Async<ControlResult> work) {
    co_await std::move(work);
    ended.push_back(std::move(name));
  }

  States yielded() {
    States states;
    while (auto state = controller.stateStream().tryNext())
      states.push_back(std::move(*state));
    return states;
  }

  support::VirtualTime time;
  Lines ended;
  PreviewController controller;
};

ControlState manual(std::map<FanID, std::int64_t> targets, bool isHolding) {
  ControlState state{.targets = std::move(targets), .isHolding = isHolding};
  for (const auto& [fan, rpm] : state.targets)
    state.perFanMode[fan] = ControlMode::manual;
  return state;
}

TEST(PreviewControllerTiming, TakeOverLastsTheDelay) {
  Preview preview;
  preview.call("manual", preview.controller.setManual(0, 3000));
  EXPECT_EQ(preview.yielded(), States{ControlState::idle});
  preview.time.clock.advance(400ms - 1ns);
  EXPECT_TRUE(preview.ended.empty());
  EXPECT_TRUE(preview.yielded().empty());
  EXPECT_EQ(preview.controller.mode(), ControlMode::automatic);
  preview.time.clock.advance(1ns);
  EXPECT_EQ(preview.ended, Lines{"manual"});
  EXPECT_EQ(preview.yielded(), States{manual({{0, 3000}}, true)});
  EXPECT_EQ(preview.controller.mode(), ControlMode::manual);
}

TEST(PreviewControllerTiming, EachTakeOverLastsTheDelayThatWasGiven) {
  Preview preview(2s);
  const auto start = preview.time.clock.now();
  preview.time.clock.run(preview.controller.setManual(0, 1));
  preview.time.clock.run(preview.controller.setPercent(0, 1));
  preview.time.clock.run(preview.controller.fullBlast());
  preview.time.clock.run(preview.controller.applyPlan(FanControlPlan::allAutomatic));
  EXPECT_EQ(preview.time.clock.now() - start, 8s);
}

TEST(PreviewControllerTiming, GivingBackTakesNoTime) {
  Preview preview;
  const auto start = preview.time.clock.now();
  preview.time.clock.run(preview.controller.automatic());
  preview.time.clock.run(preview.controller.restoreAuto());
  preview.time.clock.run(preview.controller.heartbeat());
  EXPECT_EQ(preview.time.clock.now(), start);
}

TEST(PreviewControllerTiming, LogEntryStandsBeforeTheDelay) {
  Preview preview;
  preview.call("blast", preview.controller.fullBlast());
  EXPECT_EQ(preview.controller.log(), Lines{"fullBlast()"});
}

TEST(PreviewControllerTiming, SecondCallSlipsInDuringTheDelayOfTheFirst) {
  Preview preview;
  preview.call("first", preview.controller.setManual(0, 1000));
  preview.time.clock.advance(200ms);
  preview.call("second", preview.controller.setManual(1, 2000));
  EXPECT_EQ(preview.controller.log(),
            (Lines{"setManual(fan: 0, rpm: 1000)", "setManual(fan: 1, rpm: 2000)"}));
  preview.time.clock.advance(1s);
  EXPECT_EQ(preview.ended, (Lines{"first", "second"}));
  EXPECT_EQ(preview.yielded(), (States{ControlState::idle, ControlState::idle, manual({{0, 1000}}, true),
                                       manual({{0, 1000}, {1, 2000}}, true)}));
}

TEST(PreviewControllerTiming, SecondCallSeesTheAcquiringStateOfTheFirst) {
  Preview preview;
  preview.time.clock.run(preview.controller.setManual(0, 1000));
  preview.yielded();
  preview.call("first", preview.controller.setManual(1, 2000));
  preview.time.clock.advance(100ms);
  preview.call("second", preview.controller.fullBlast());
  EXPECT_EQ(preview.yielded(), (States{manual({{0, 1000}}, false), manual({{0, 1000}}, false)}));
}

TEST(PreviewControllerTiming, CallsAtTheSameMomentEndInTheirOrder) {
  Preview preview;
  preview.call("first", preview.controller.setManual(0, 1000));
  preview.call("second", preview.controller.fullBlast());
  preview.time.clock.advance(400ms);
  EXPECT_EQ(preview.ended, (Lines{"first", "second"}));
  EXPECT_EQ(preview.controller.mode(), ControlMode::fullBlast);
}

TEST(PreviewControllerTiming, TakeOverGoesOnAfterAutomaticSlippedIn) {
  Preview preview;
  preview.time.clock.run(preview.controller.setManual(5, 5000));
  preview.yielded();
  preview.call("manual", preview.controller.setManual(0, 1000));
  preview.time.clock.advance(100ms);
  preview.call("automatic", preview.controller.automatic());
  EXPECT_EQ(preview.ended, Lines{"automatic"});
  preview.time.clock.advance(300ms);
  EXPECT_EQ(preview.yielded(),
            (States{manual({{5, 5000}}, false), ControlState::idle, manual({{0, 1000}}, true)}));
  EXPECT_EQ(preview.controller.mode(), ControlMode::manual);
}

TEST(PreviewControllerTiming, HeartbeatDuringTheDelayChangesNothing) {
  Preview preview;
  preview.call("manual", preview.controller.setManual(0, 1000));
  preview.time.clock.run(preview.controller.heartbeat());
  EXPECT_TRUE(preview.ended.empty());
  preview.time.clock.advance(400ms);
  EXPECT_EQ(preview.yielded().size(), 2U);
}

TEST(PreviewControllerTiming, LateReaderReceivesEveryState) {
  Preview preview;
  preview.time.clock.run(preview.controller.setManual(0, 1000));
  preview.time.clock.run(preview.controller.automatic());
  const auto readThree = [&]() -> runtime::Async<States> {
    States states;
    while (states.size() < 3)
      states.push_back(*co_await preview.controller.stateStream().next(runtime::StopToken()));
    co_return states;
  };
  EXPECT_EQ(preview.time.clock.run(readThree()),
            (States{ControlState::idle, manual({{0, 1000}}, true), ControlState::idle}));
}

TEST(PreviewControllerTiming, WaitingReaderSeesTheStepsAsTheyHappen) {
  Preview preview;
  std::vector<runtime::Duration> times;
  const auto start = preview.time.clock.now();
  const auto read = [&]() -> runtime::Async<void> {
    while (co_await preview.controller.stateStream().next(runtime::StopToken())) {
      times.push_back(preview.time.clock.now() - start);
    }
  };
  preview.time.start(read());
  preview.call("manual", preview.controller.setManual(0, 1000));
  preview.time.clock.advance(1s);
  EXPECT_EQ(times, (std::vector<runtime::Duration>{0s, 400ms}));
}

TEST(PreviewControllerTiming, WithoutDelayTheOrderIsTheSame) {
  const auto history = [](runtime::Duration delay) {
    Preview preview(delay);
    preview.time.clock.run(preview.controller.setManual(0, 1000));
    preview.time.clock.run(
        preview.controller.applyPlan(support::planOf(FanControlModePlan::fixedPercent(100))));
    preview.time.clock.run(preview.controller.automatic());
    preview.time.clock.run(preview.controller.setPercent(1, 30));
    return std::pair(preview.controller.log(), preview.yielded());
  };
  EXPECT_EQ(history(0s), history(400ms));
  EXPECT_EQ(history(0s).second.size(), 7U);
}

TEST(PreviewControllerTiming, WithoutDelayNoTimePasses) {
  Preview preview(0s);
  preview.call("manual", preview.controller.setManual(0, 1000));
  EXPECT_EQ(preview.ended, Lines{"manual"});
}

} // namespace
} // namespace ventolith::core
