#include "helper/link/LinkFixture.h"

namespace ventolith::helper {
namespace {

class StatePollingTest : public LinkTest {
protected:
  std::vector<ControlState> states(const Controller& controller) {
    std::vector<ControlState> all;
    while (auto state = controller->stateStream().tryNext())
      all.push_back(std::move(*state));
    return all;
  }
};

TEST_F(StatePollingTest, TheFirstPollComesAtOnce) {
  const auto controller = makeConnectedController();
  run(controller->fullBlast());
  time.clock.settle();
  EXPECT_EQ(helper.count("ReadState"), 1);
}

TEST_F(StatePollingTest, TheFirstPollComesAfterTheCommandThatStartsIt) {
  const auto controller = makeConnectedController();
  run(controller->fullBlast());
  EXPECT_EQ(helper.log(), (Log{"FullBlast", "ReadState"}));
}

TEST_F(StatePollingTest, APollComesEveryInterval) {
  const auto controller = makeConnectedController();
  run(controller->fullBlast());
  pass(1.999);
  EXPECT_EQ(helper.count("ReadState"), 1);
  pass(0.001);
  EXPECT_EQ(helper.count("ReadState"), 2);
  pass(8);
  EXPECT_EQ(helper.count("ReadState"), 6);
}

TEST_F(StatePollingTest, TheIntervalIsAnOption) {
  bringUp();
  const auto controller =
      makeController({.statePollInterval = std::chrono::milliseconds(500), .ownBuildVersion = ownBuild});
  run(controller->fullBlast());
  pass(2);
  EXPECT_EQ(helper.count("ReadState"), 5);
}

TEST_F(StatePollingTest, EveryCommandThatTakesFansOverStartsIt) {
  bringUp();
  using Command = Async<ControlResult> (*)(XPCFanController&);
  const std::vector<Command> commands = {
      [](XPCFanController& controller) { return controller.setManual(0, 3000); },
      [](XPCFanController& controller) { return controller.setPercent(0, 50); },
      [](XPCFanController& controller) { return controller.fullBlast(); },
      [](XPCFanController& controller) { return controller.applyPlan(FanControlPlan::allAutomatic); },
  };
  for (const Command command : commands) {
    const auto controller = makeController();
    helper.messages.clear();
    run(command(*controller));
    pass(2);
    EXPECT_EQ(helper.count("ReadState"), 2);
  }
}

TEST_F(StatePollingTest, NothingElseStartsIt) {
  const auto controller = makeConnectedController();
  run(controller->automatic());
  run(controller->restoreAuto());
  run(controller->heartbeat());
  pass(60);
  EXPECT_EQ(helper.count("ReadState"), 0);
}

TEST_F(StatePollingTest, AFreshControllerDoesNotPoll) {
  bringUp();
  const auto controller = makeController();
  pass(60);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion"}));
}

TEST_F(StatePollingTest, SeveralCommandsStartItOnce) {
  const auto controller = makeConnectedController();
  run(controller->fullBlast());
  run(controller->setManual(0, 3000));
  run(controller->fullBlast());
  pass(2);
  EXPECT_EQ(helper.count("ReadState"), 2);
}

TEST_F(StatePollingTest, AutomaticDoesNotEndIt) {
  const auto controller = makeConnectedController();
  run(controller->fullBlast());
  run(controller->automatic());
  pass(4);
  EXPECT_EQ(helper.count("ReadState"), 3);
}

TEST_F(StatePollingTest, EachStateReachesTheStreamInOrder) {
  const auto controller = makeConnectedController();
  helper.state.isHolding = true;
  const ControlState held = helper.state;
  run(controller->fullBlast());
  time.clock.settle();
  helper.state.lastError = "too hot";
  pass(4);
  EXPECT_EQ(states(controller), (std::vector{held, helper.state, helper.state}));
}

TEST_F(StatePollingTest, AStateThatDoesNotDecodeReachesNobody) {
  const auto controller = makeConnectedController();
  helper.answers["ReadState"] = replies::State{"garbage"};
  run(controller->fullBlast());
  pass(4);
  EXPECT_EQ(states(controller).size(), 0U);
  helper.answers.clear();
  pass(2);
  EXPECT_EQ(states(controller).size(), 1U);
}

TEST_F(StatePollingTest, GoesOnWithAHelperThatWasRestarted) {
  const auto controller = makeConnectedController();
  run(controller->fullBlast());
  pass(2);
  restart();
  pass(2);
  EXPECT_EQ(helper.log(), (Log{"ReadState"})); // A poll checks no build.
}

TEST_F(StatePollingTest, ThePauseBeginsWhenThePollHasEnded) {
  const auto controller = makeConnectedController();
  helper.hold("ReadState");
  run(controller->fullBlast());
  pass(5);
  helper.letGo();
  time.clock.settle();
  pass(1.9);
  EXPECT_EQ(helper.count("ReadState"), 1);
  pass(0.1);
  EXPECT_EQ(helper.count("ReadState"), 2);
}

TEST_F(StatePollingTest, AControllerThatIsLetGoBetweenTwoPollsGoesWithItsLoop) {
  auto controller = makeConnectedController();
  run(controller->fullBlast());
  time.clock.settle();
  const std::weak_ptr<XPCFanController> observed = controller;
  listener->watch(helper.callers.back());
  controller.reset();
  EXPECT_TRUE(observed.expired());
  time.clock.settle();
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
  EXPECT_EQ(helper.gone.size(), 1U);
  pass(60);
  EXPECT_EQ(helper.count("ReadState"), 1);
}

TEST_F(StatePollingTest, AControllerThatIsLetGoDuringAPollGoesWithItsLoop) {
  auto controller = makeConnectedController();
  helper.hold("ReadState"); // For ever: the helper never answers.
  run(controller->fullBlast());
  time.clock.settle();
  ASSERT_EQ(helper.count("ReadState"), 1);
  const std::weak_ptr<XPCFanController> observed = controller;
  controller.reset();
  EXPECT_TRUE(observed.expired());
  pass(60);
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
}

} // namespace
} // namespace ventolith::helper
