#include "app/selftest/ControlSequence.h"

#include "app/ReportText.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using core::ControlResult;
using runtime::Async;

/// Answers what it is told to, and yields a state before and after each wait of a command.
struct ScriptedController final : core::FanControlling {
  explicit ScriptedController(runtime::Clock& time) : clock(time) {}

  runtime::Clock& clock;
  ControlResult automaticResult = ControlResult::applied;
  ControlResult percentResult = ControlResult::applied;
  ControlResult fullBlastResult = ControlResult::applied;
  std::vector<std::string> log;
  core::ControlStateStream states;

  Async<void> act(std::string entry) {
    log.push_back(std::move(entry));
    states.yield(core::ControlState::idle);
    co_await clock.sleep(std::chrono::seconds(1), runtime::StopToken());
  }
  Async<ControlResult> command(std::string entry, ControlResult result) {
    co_await act(std::move(entry));
    co_return result;
  }

  Async<ControlResult> setManual(core::FanID, std::int64_t) override {
    return command("setManual", percentResult);
  }
  Async<ControlResult> setPercent(core::FanID fan, double percent) override {
    return command("setPercent " + std::to_string(fan) + " " + std::to_string(percent), percentResult);
  }
  Async<ControlResult> fullBlast() override { return command("fullBlast", fullBlastResult); }
  Async<ControlResult> applyPlan(core::FanControlPlan) override {
    return command("applyPlan", percentResult);
  }
  Async<ControlResult> automatic() override { return command("automatic", automaticResult); }
  Async<void> restoreAuto() override { return act("restoreAuto"); }
  Async<void> heartbeat() override { return act("heartbeat"); }
  core::ControlStateStream& stateStream() override { return states; }
};

class ControlSequenceTest : public testing::Test {
protected:
  bool run() {
    const bool passed =
        time_.clock.run(runControlSequence(time_.executor(), controller_, controller_.log, text_.output));
    time_.clock.settle(); // Lets the observer of the states end before the controller goes.
    return passed;
  }

  support::VirtualTime time_;
  ScriptedController controller_{time_.clock};
  ReportText text_;
};

TEST_F(ControlSequenceTest, GivesTheFiveCommandsInOrderEachToItsEnd) {
  const auto start = time_.clock.now();
  run();
  EXPECT_EQ(controller_.log, (std::vector<std::string>{"automatic", "setPercent 0 50.000000", "heartbeat",
                                                       "fullBlast", "restoreAuto"}));
  EXPECT_EQ(time_.clock.now() - start, std::chrono::seconds(5));
}

TEST_F(ControlSequenceTest, ReportsAControllerThatAppliesEverything) {
  EXPECT_TRUE(run());
  EXPECT_EQ(
      text_.lines(),
      (Lines{
          "ControlResult sequence: automatic=applied setPercent=applied fullBlast=applied",
          "stateStream updates observed: 5",
          "PreviewController log (5 calls): automatic | setPercent 0 50.000000 | heartbeat | fullBlast | "
          "restoreAuto",
          "  [PASS] PreviewController control sequence",
      }));
}

TEST_F(ControlSequenceTest, ARefusalIsReportedWithItsCodeAndMessage) {
  controller_.automaticResult = ControlResult::noHelper;
  controller_.percentResult = ControlResult::rejected(5);
  controller_.fullBlastResult = ControlResult::failed("x");
  EXPECT_FALSE(run());
  EXPECT_EQ(
      text_.lines().front(),
      "ControlResult sequence: automatic=noHelper setPercent=rejected(code: 5) fullBlast=failed(\"x\")");
  EXPECT_EQ(text_.lines().back(), "  [FAIL] PreviewController control sequence");
}

TEST_F(ControlSequenceTest, ARefusalDoesNotEndTheSequence) {
  controller_.automaticResult = ControlResult::timedOut;
  run();
  EXPECT_EQ(controller_.log.size(), 5U);
  EXPECT_EQ(text_.lines().size(), 4U);
}

TEST_F(ControlSequenceTest, EachOfTheThreeResultsCanFailIt) {
  for (ControlResult ScriptedController::* result :
       {&ScriptedController::automaticResult, &ScriptedController::percentResult,
        &ScriptedController::fullBlastResult}) {
    controller_.*result = ControlResult::acquiring;
    EXPECT_FALSE(run());
    EXPECT_EQ(text_.lines().back(), "  [FAIL] PreviewController control sequence");
    controller_.*result = ControlResult::applied;
  }
  EXPECT_TRUE(run());
}

TEST_F(ControlSequenceTest, ObservesTheStatesThatTheControllerYieldedBefore) {
  controller_.states.yield(core::ControlState::idle);
  controller_.states.yield(core::ControlState::idle);
  run();
  EXPECT_EQ(text_.lines().at(1), "stateStream updates observed: 7");
}

TEST_F(ControlSequenceTest, StopsObservingWhenItEnds) {
  run();
  controller_.states.yield(core::ControlState::idle);
  time_.clock.settle();
  EXPECT_TRUE(controller_.states.tryNext().has_value());
}

} // namespace
} // namespace ventolith::app
