// The application model, the line and the helper together, on a simulated Mac.
#include "../helper/daemon/Doubles.h"
#include "ModelDoubles.h"
#include "app/AppModel.h"
#include "helper/daemon/HelperDaemon.h"
#include "helper/link/HelperBuildVersion.h"
#include "helper/link/InProcessLink.h"
#include "platform/simulated/SimulatedMachine.h"
#include "support/VirtualDisk.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace ventolith::app {
namespace {

using core::ControlMode;
using helper::DaemonStatus;

/// One life of the helper, from its start to its death. What is killed does nothing any more, but its work
/// may refer to it.
struct HelperLife {
  HelperLife(support::VirtualTime& time, helper::InProcessLink& link,
             const std::shared_ptr<simulated::SimulatedMac>& mac)
      : machine(simulated::simulatedMachine(mac)),
        smc(time.executor(), *machine.smc),
        sensors(time.executor(), smc, *machine.hid, time.clock, [](const std::string&) {}),
        listener(link.claimListener()),
        daemon(time.executor(), time.clock, {smc, sensors, *machine.privileges},
               {*listener, authorizer, sleepEvents, supervisor, log},
               helper::HelperBuildVersion::identifier) {
    if (time.clock.run(smc.open())) throw std::logic_error("the machine does not open");
    time.start(run());
  }

  Async<void> run() { outcome = co_await daemon.run(stop.token()); }

  hardware::Machine machine;
  hardware::SMCConnection smc;
  hardware::SensorReader sensors;
  std::unique_ptr<helper::HelperListener> listener;
  helper::ScriptedAuthorizer authorizer;
  helper::ManualSleep sleepEvents;
  helper::RecordingSupervisor supervisor;
  helper::RecordingLog log;
  helper::HelperDaemon daemon;
  runtime::StopSource stop;
  std::optional<helper::HelperDaemon::Outcome> outcome;
};

class ModelWithHelperTest : public testing::Test {
protected:
  ~ModelWithHelperTest() override {
    release();
    for (const auto& life : lives)
      life->stop.requestStop();
    pass(30);
  }

  void bringHelperUp() { lives.push_back(std::make_unique<HelperLife>(time, link, mac)); }

  void start() {
    makeModel();
    pass(1);
  }
  void makeModel() {
    registration->status = DaemonStatus::enabled;
    model = AppModel::make(
        {.mainExecutor = time.executor(),
         .engineExecutor = time.executor(),
         .clock = time.clock,
         .smc = smc,
         .sensors = sensors,
         .makePreviewController = previewControllers(time.executor(), time.clock, [](const std::string&) {}),
         .makeHelperController =
             helperControllers(time.executor(), time.executor(), time.clock, link.channels()),
         .daemonService = std::make_unique<ScriptedDaemonService>(registration),
         .configStore = store,
         .powerSource = std::make_unique<ScriptedPower>(socket),
         .bundle = bundle,
         .makeUpdateEngine = nullptr,
         .supportURL = std::nullopt,
         .openURL = nullptr});
  }
  void release() {
    model = nullptr;
    time.clock.settle();
  }

  void pass(double seconds) { time.clock.advance(runtime::fromSeconds(seconds)); }

  [[nodiscard]] std::vector<int> modes() {
    std::vector<int> modes;
    for (const auto& fan : mac->fans())
      modes.push_back(fan.mode());
    return modes;
  }
  /// The user's fan, from the model's snapshot.
  [[nodiscard]] core::Fan fan(std::size_t index) const { return model->snapshot().fans.at(index); }

  void holdFirstFanAt(double rpm) {
    model->previewSliderRPM(fan(0), rpm);
    model->commitManualRPM(fan(0));
    pass(12); // The latch takes a while.
  }

  support::VirtualTime time;
  support::VirtualDisk disk;
  ConfigStore store{disk, [] { return "/home/user/.config"; }};
  std::shared_ptr<simulated::SimulatedMac> mac = simulated::makeSimulatedMac("macbook-pro", time.clock, 1);
  hardware::Machine machine = simulated::simulatedMachine(mac); // The application's own way to it.
  hardware::SMCConnection smc{time.executor(), *machine.smc};
  hardware::SensorReader sensors{time.executor(), smc, *machine.hid, time.clock, [](const std::string&) {}};
  helper::InProcessLink link{time.executor()};
  std::shared_ptr<Registration> registration = std::make_shared<Registration>(time.executor());
  std::shared_ptr<Socket> socket = std::make_shared<Socket>();
  MapBundleInfo bundle{{}};
  std::vector<std::unique_ptr<HelperLife>> lives;
  std::shared_ptr<AppModel> model;
};

TEST_F(ModelWithHelperTest, AManualSpeedReachesTheFan) {
  bringHelperUp();
  start();
  holdFirstFanAt(4000);
  pass(20);
  EXPECT_EQ(modes(), (std::vector{1, 0}));
  EXPECT_NEAR(static_cast<double>(fan(0).currentRPM), 4000, 100);
  EXPECT_TRUE(model->controlState().isHolding);
  EXPECT_EQ(model->controlState().targets.at(0), 4000);
}

TEST_F(ModelWithHelperTest, HeartbeatsKeepTheFanForHours) {
  bringHelperUp();
  start();
  holdFirstFanAt(4000);
  for (int hour = 0; hour < 3; ++hour) {
    pass(3600);
    ASSERT_EQ(modes(), (std::vector{1, 0}));
  }
}

TEST_F(ModelWithHelperTest, AutomaticGivesTheFanBack) {
  bringHelperUp();
  start();
  holdFirstFanAt(4000);
  model->activateAutomatic();
  pass(5);
  EXPECT_EQ(modes(), (std::vector{0, 0}));
  EXPECT_FALSE(model->controlState().isHolding);
}

TEST_F(ModelWithHelperTest, QuittingGivesTheFansBackAtOnce) {
  bringHelperUp();
  start();
  holdFirstFanAt(4000);
  model->restoreAutoOnQuit();
  release();
  pass(1);
  EXPECT_EQ(modes(), (std::vector{0, 0}));
}

/// The stored plan waits for the check of the helper's build, which a quit does not.
TEST_F(ModelWithHelperTest, QuittingAtAnyStepOfTheStartLeavesNoFanHeld) {
  core::FanControlPlan stored;
  stored.fans.push_back({0, core::FanControlModePlan::fixedRPM(4000)});
  store.savePlan(stored);
  bringHelperUp();
  int startsWithHelper = 0;
  for (int steps = 0; steps < 60; ++steps) {
    makeModel();
    time.context.restart();
    for (int step = 0; step < steps; ++step)
      time.context.poll_one();
    startsWithHelper += model->isHelperActive() ? 1 : 0;
    model->restoreAutoOnQuit();
    release();
    for (int second = 0; second < 20; ++second) {
      pass(1);
      ASSERT_EQ(modes(), (std::vector{0, 0})) << "step " << steps << ", second " << second;
    }
  }
  EXPECT_GT(startsWithHelper, 10);
}

TEST_F(ModelWithHelperTest, AModelThatIsGoneWithoutAWordLosesTheFansToTheWatchdog) {
  bringHelperUp();
  start();
  holdFirstFanAt(4000);
  release();
  pass(30);
  EXPECT_EQ(modes(), (std::vector{0, 0}));
}

TEST_F(ModelWithHelperTest, TheStoredPlanIsHeldAgainAfterARestart) {
  bringHelperUp();
  start();
  holdFirstFanAt(4000);
  model->restoreAutoOnQuit();
  release();
  pass(5);
  start();
  pass(15);
  EXPECT_EQ(modes(), (std::vector{1, 0}));
}

TEST_F(ModelWithHelperTest, ACommandWithoutAHelperTakesTheFanOutOfThePlan) {
  bringHelperUp();
  start();
  link.killHelper();
  pass(1);
  model->commitManualRPM(fan(0));
  pass(10);
  EXPECT_EQ(model->mode(fan(0)), ControlMode::automatic);
  EXPECT_EQ(store.loadPlan(), core::FanControlPlan{});
}

TEST_F(ModelWithHelperTest, AHelperThatIsGoneAndBackGetsThePlanAgain) {
  bringHelperUp();
  start();
  holdFirstFanAt(4000);

  lives.back()->stop.requestStop(); // Ends in order: the fans go back.
  registration->status = DaemonStatus::notRegistered;
  pass(10);
  lives.back()->listener->invalidate();
  EXPECT_FALSE(model->isHelperActive());
  EXPECT_EQ(modes(), (std::vector{0, 0}));
  EXPECT_EQ(model->mode(fan(0)), ControlMode::manual); // Still what the user wants.

  bringHelperUp();
  registration->status = DaemonStatus::enabled;
  pass(20);
  EXPECT_TRUE(model->isHelperActive());
  EXPECT_EQ(modes(), (std::vector{1, 0}));
}

TEST_F(ModelWithHelperTest, AHelperThatIsKilledAndBackHoldsAgainOnTheNextAction) {
  bringHelperUp();
  start();
  holdFirstFanAt(4000);

  link.killHelper();
  lives.back()->stop.requestStop(); // Gives the fans back, as the next one's start would.
  pass(10);
  bringHelperUp();
  pass(10);
  EXPECT_TRUE(model->isHelperActive()); // Registered all the time.
  EXPECT_FALSE(model->controlState().isHolding);
  EXPECT_EQ(modes(), (std::vector{0, 0}));
  EXPECT_EQ(model->activePlan().fans.size(), 1U);

  holdFirstFanAt(3000);
  EXPECT_EQ(modes(), (std::vector{1, 0}));
  EXPECT_EQ(model->controlState().targets.at(0), 3000);
}

} // namespace
} // namespace ventolith::app
