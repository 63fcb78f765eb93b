#include "helper/link/LinkFixture.h"

#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>

#include <limits>

namespace ventolith::helper {
namespace {

class XPCFanControllerTest : public LinkTest {
protected:
  /// The one message of that name that the helper received.
  template <class Message>
  Message received() {
    Message found;
    int count = 0;
    for (const auto& message : helper.messages) {
      if (const auto* const match = std::get_if<Message>(&message)) {
        found = *match;
        ++count;
      }
    }
    EXPECT_EQ(count, 1);
    return found;
  }

  static FanControlPlan planOf(double rpm) {
    FanControlPlan plan;
    plan.fans.push_back({1, FanControlModePlan::fixedRPM(rpm)});
    return plan;
  }
};

TEST_F(XPCFanControllerTest, SetManualCarriesFanAndRPM) {
  const auto controller = makeConnectedController();
  EXPECT_EQ(run(controller->setManual(1, 3000)), ControlResult::applied);
  EXPECT_EQ(received<messages::SetManualRPM>(), (messages::SetManualRPM{1, 3000}));
}

TEST_F(XPCFanControllerTest, SetPercentCarriesFanAndPercentage) {
  const auto controller = makeConnectedController();
  EXPECT_EQ(run(controller->setPercent(0, 62.5)), ControlResult::applied);
  EXPECT_EQ(received<messages::SetPercent>(), (messages::SetPercent{0, 62.5}));
}

TEST_F(XPCFanControllerTest, FullBlastAndAutomaticCarryNothing) {
  const auto controller = makeConnectedController();
  EXPECT_EQ(run(controller->fullBlast()), ControlResult::applied);
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_EQ(helper.count("FullBlast"), 1);
  EXPECT_EQ(helper.count("Automatic"), 1);
}

TEST_F(XPCFanControllerTest, ApplyPlanCarriesThePlansJSON) {
  const auto controller = makeConnectedController();
  EXPECT_EQ(run(controller->applyPlan(planOf(3000))), ControlResult::applied);
  EXPECT_EQ(received<messages::ApplyConfig>().plan, core::encode(planOf(3000)));
}

TEST_F(XPCFanControllerTest, APlanThatCannotBeEncodedIsNotSent) {
  const auto controller = makeConnectedController();
  restart(); // So that any other command would have to check the build.
  for (const double number :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(run(controller->applyPlan(planOf(number))), ControlResult::failed("could not encode plan"));
  }
  pass(10);
  EXPECT_EQ(helper.log(), Log());
}

TEST_F(XPCFanControllerTest, EachResultCodeArrivesAsItsResult) {
  const auto controller = makeConnectedController();
  const std::vector<std::pair<std::int64_t, ControlResult>> results = {
      {0, ControlResult::applied},
      {1, ControlResult::acquiring},
      {2, ControlResult::timedOut},
      {3, ControlResult::reclaimed},
      {4, ControlResult::rejected(0)},
      {5, ControlResult::notPrivileged},
      {6, ControlResult::noHelper},
      {7, ControlResult::failed("xpc: unrecognized result code 7")},
      {8, ControlResult::failed("xpc: unrecognized result code 8")},
      {-1, ControlResult::failed("xpc: unrecognized result code -1")},
  };
  for (const auto& [code, result] : results) {
    helper.code = code;
    EXPECT_EQ(run(controller->automatic()), result) << code;
  }
}

TEST_F(XPCFanControllerTest, WithoutAHelperACommandEndsWithNoHelper) {
  const auto controller = makeController();
  EXPECT_EQ(run(controller->setManual(0, 3000)), ControlResult::noHelper);
  EXPECT_EQ(run(controller->setPercent(0, 50)), ControlResult::noHelper);
  EXPECT_EQ(run(controller->fullBlast()), ControlResult::noHelper);
  EXPECT_EQ(run(controller->automatic()), ControlResult::noHelper);
  EXPECT_EQ(run(controller->applyPlan(planOf(3000))), ControlResult::noHelper);
}

TEST_F(XPCFanControllerTest, WithoutAHelperTheStateStreamStaysSilent) {
  const auto controller = makeController();
  run(controller->setManual(0, 3000));
  pass(60);
  EXPECT_EQ(controller->stateStream().tryNext(), std::nullopt);
}

TEST_F(XPCFanControllerTest, ARefusalArrivesAsNoHelper) {
  const auto controller = makeConnectedController();
  helper.answers["FullBlast"] = Refusal{Refusal::Reason::notAuthorized, "no"};
  EXPECT_EQ(run(controller->fullBlast()), ControlResult::noHelper);
}

TEST_F(XPCFanControllerTest, AReplyOfAnotherKindIsAsGoodAsNone) {
  const auto controller = makeConnectedController();
  const std::vector<HelperReply> others = {replies::Done{}, replies::Version{ownBuild}, replies::State{"{}"}};
  for (const auto& reply : others) {
    helper.answers["Automatic"] = reply;
    EXPECT_EQ(run(controller->automatic()), ControlResult::noHelper) << reply.index();
  }
}

TEST_F(XPCFanControllerTest, ACommandWaitsForAsLongAsTheHelperTakes) {
  const auto controller = makeConnectedController();
  helper.hold("FullBlast");
  const auto result = begin(controller->fullBlast());
  pass(3600);
  EXPECT_EQ(*result, std::nullopt);
  helper.letGo();
  time.clock.settle();
  EXPECT_EQ(*result, ControlResult::applied);
}

TEST_F(XPCFanControllerTest, ACommandThatTheHelperDiesOverEndsWithNoHelper) {
  const auto controller = makeConnectedController();
  helper.hold("FullBlast");
  const auto result = begin(controller->fullBlast());
  kill();
  EXPECT_EQ(*result, ControlResult::noHelper);
}

TEST_F(XPCFanControllerTest, CommandsUnderWayDoNotWaitForEachOther) {
  const auto controller = makeConnectedController();
  helper.hold("FullBlast");
  const auto blast = begin(controller->fullBlast());
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_EQ(*blast, std::nullopt);
}

/// The second one comes from another thread just as the check that the first one waits for is over.
TEST_F(XPCFanControllerTest, CommandsReachTheHelperInTheirOrder) {
  boost::asio::io_context mainThread;
  boost::asio::io_context callersThread;
  bringUp();
  const auto controller = XPCFanController::make(time.executor(), mainThread.get_executor(), time.clock,
                                                 link.channels(), {.ownBuildVersion = ownBuild}, attempts);
  const auto first = begin(controller->setManual(0, 1000));
  EXPECT_EQ(helper.log(), Log{"HelperVersion"}); // The verdict waits for the main thread.
  boost::asio::co_spawn(callersThread, controller->setManual(0, 2000), boost::asio::detached);
  mainThread.poll();
  callersThread.poll();
  time.clock.settle();
  EXPECT_EQ(*first, ControlResult::applied);
  std::vector<std::int64_t> speeds;
  for (const auto& message : helper.messages) {
    if (const auto* const set = std::get_if<messages::SetManualRPM>(&message)) speeds.push_back(set->rpm);
  }
  EXPECT_EQ(speeds, (std::vector<std::int64_t>{1000, 2000}));
}

TEST_F(XPCFanControllerTest, RestoreAutoWaitsForTheHelper) {
  const auto controller = makeConnectedController();
  helper.hold("RestoreAuto");
  bool isDone = false;
  const auto restore = [&]() -> Async<void> {
    co_await controller->restoreAuto();
    isDone = true;
  };
  time.start(restore());
  EXPECT_FALSE(isDone);
  helper.letGo();
  time.clock.settle();
  EXPECT_TRUE(isDone);
}

TEST_F(XPCFanControllerTest, RestoreAutoEndsWithoutAHelper) {
  const auto controller = makeController();
  run(controller->restoreAuto()); // Work that never ends is reported as an exception.
  EXPECT_EQ(helper.log(), Log());
}

TEST_F(XPCFanControllerTest, RestoreAutoAndHeartbeatAwaitNoCheck) {
  bringUp();
  helper.hold("HelperVersion");
  const auto controller = makeController();
  run(controller->restoreAuto());
  run(controller->heartbeat());
  time.clock.settle();
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "RestoreAuto", "Heartbeat"}));
}

TEST_F(XPCFanControllerTest, RestoreAutoAndHeartbeatBeginNoCheck) {
  const auto controller = makeConnectedController();
  restart();
  run(controller->restoreAuto());
  run(controller->heartbeat());
  pass(10);
  EXPECT_EQ(helper.log(), (Log{"RestoreAuto", "Heartbeat"}));
}

TEST_F(XPCFanControllerTest, AHeartbeatDoesNotWait) {
  const auto controller = makeConnectedController();
  helper.hold("Heartbeat");
  run(controller->heartbeat());
  run(controller->heartbeat());
  time.clock.settle();
  EXPECT_EQ(helper.log(), (Log{"Heartbeat", "Heartbeat"}));
}

TEST_F(XPCFanControllerTest, AHeartbeatWithoutAHelperIsSilent) {
  const auto controller = makeController();
  run(controller->heartbeat());
  time.clock.settle();
  EXPECT_EQ(link.channelsMade(), 1U);
}

TEST_F(XPCFanControllerTest, TheRemoteStateIsReadAtOnceAndWithoutACheck) {
  const auto controller = makeConnectedController();
  restart();
  helper.state.isHolding = true;
  helper.state.targets[0] = 3000;
  EXPECT_EQ(run(controller->readRemoteState()), helper.state);
  EXPECT_EQ(helper.log(), (Log{"ReadState"}));
}

TEST_F(XPCFanControllerTest, AStateThatDoesNotDecodeIsNone) {
  const auto controller = makeConnectedController();
  for (const std::string& text : {"", "{", "{}", "[]", "\xff", "{\"perFanMode\":{},\"targets\":{}}"}) {
    helper.answers["ReadState"] = replies::State{text};
    EXPECT_EQ(run(controller->readRemoteState()), std::nullopt) << text;
  }
}

TEST_F(XPCFanControllerTest, TheRemoteVersionIsWhatTheHelperSays) {
  const auto controller = makeConnectedController();
  helper.build = "2.0.0+1";
  EXPECT_EQ(run(controller->readRemoteVersion()), "2.0.0+1");
  helper.answers["HelperVersion"] = replies::Done{};
  EXPECT_EQ(run(controller->readRemoteVersion()), std::nullopt);
}

TEST_F(XPCFanControllerTest, LettingGoEndsTheCallsUnderWay) {
  auto controller = makeConnectedController();
  helper.hold("FullBlast");
  helper.hold("RestoreAuto");
  const auto blast = begin(controller->fullBlast());
  bool isRestored = false;
  const auto restore = [](Async<void> work, bool& isDone) -> Async<void> {
    co_await std::move(work);
    isDone = true;
  };
  time.start(restore(controller->restoreAuto(), isRestored));
  controller.reset();
  time.clock.settle();
  EXPECT_EQ(*blast, ControlResult::noHelper);
  EXPECT_TRUE(isRestored);
}

TEST_F(XPCFanControllerTest, ACommandBegunAfterItsControllerWentEndsWithNoHelper) {
  auto controller = makeConnectedController();
  auto command = controller->fullBlast();
  controller.reset();
  EXPECT_EQ(run(std::move(command)), ControlResult::noHelper);
  EXPECT_EQ(helper.log(), Log());
}

TEST_F(XPCFanControllerTest, TheHelperSeesAControllerGo) {
  auto controller = makeConnectedController();
  run(controller->automatic());
  listener->watch(helper.callers.back());
  controller.reset();
  time.clock.settle();
  EXPECT_EQ(helper.gone, std::vector{helper.callers.back()});
}

} // namespace
} // namespace ventolith::helper
