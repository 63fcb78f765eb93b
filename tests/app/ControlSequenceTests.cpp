#include "app/selftest/ControlSequence.h"

#include "app/ReportText.h"
#include "app/ScriptedController.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using core::ControlResult;

class ControlSequenceTest : public testing::Test {
protected:
  bool run() { return time_.clock.run(runControlSequence(controller_, controller_.log, text_.output)); }

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

TEST_F(ControlSequenceTest, NothingObservesTheControllerAnyMoreWhenItEnds) {
  const auto sequenceAndOneMoreState = [this]() -> runtime::Async<void> {
    co_await runControlSequence(controller_, controller_.log, text_.output);
    controller_.states.yield(core::ControlState::idle); // Before anything else can run.
  };
  time_.clock.run(sequenceAndOneMoreState());
  time_.clock.settle();
  EXPECT_TRUE(controller_.states.tryNext().has_value());
}

TEST_F(ControlSequenceTest, ControllerMayGoTheMomentItEnds) {
  const auto sequenceOfAControllerThatGoes = [this]() -> runtime::Async<bool> {
    ScriptedController passing(time_.clock);
    co_return co_await runControlSequence(passing, passing.log, text_.output);
  };
  EXPECT_TRUE(time_.clock.run(sequenceOfAControllerThatGoes()));
  time_.clock.settle();
  EXPECT_EQ(text_.lines().at(1), "stateStream updates observed: 5");
}

} // namespace
} // namespace ventolith::app
