// A controller that lives on another executor than whoever holds it.
#include "ModelDoubles.h"
#include "app/AppModel.h"
#include "app/HostedController.h"
#include "support/Plans.h"

#include <boost/asio/strand.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace ventolith::app {
namespace {

using Strand = boost::asio::strand<runtime::Executor>;

/// Notes on which of the two executors it is made, used and destroyed.
class PlacedController final : public core::FanControlling {
public:
  PlacedController(const Strand& engine, std::vector<bool>& onEngine) : engine_(engine), onEngine_(onEngine) {
    note();
  }
  ~PlacedController() override { note(); }

  Async<ControlResult> applyPlan(FanControlPlan) override {
    note();
    co_return ControlResult::timedOut;
  }
  Async<void> restoreAuto() override {
    note();
    co_return;
  }
  Async<void> heartbeat() override {
    note();
    co_return;
  }
  core::ControlStateStream& stateStream() override {
    note();
    return states;
  }
  Async<ControlResult> setManual(core::FanID, std::int64_t) override { return applyPlan({}); }
  Async<ControlResult> setPercent(core::FanID, double) override { return applyPlan({}); }
  Async<ControlResult> fullBlast() override { return applyPlan({}); }
  Async<ControlResult> automatic() override { return applyPlan({}); }

  core::ControlStateStream states;

private:
  void note() { onEngine_.push_back(engine_.running_in_this_thread()); }

  const Strand& engine_;
  std::vector<bool>& onEngine_;
};

class HostedControllerTest : public testing::Test {
protected:
  HostedControllerTest() {
    boost::asio::post(
        main, [this] { hosted = std::make_unique<HostedController>(main, engine, maker(), taker()); });
    time.clock.settle();
  }
  ~HostedControllerTest() override { release(); }

  FanControllerFactory maker() {
    return [this] {
      auto made = std::make_shared<PlacedController>(engine, onEngine);
      controller = made;
      return made;
    };
  }
  HostedController::OnState taker() {
    return [this](const ControlState& state) {
      statesOnMain.push_back(main.running_in_this_thread());
      states.push_back(state);
    };
  }
  void release() {
    boost::asio::post(main, [this] { hosted = nullptr; });
    time.clock.settle();
  }
  void onMain(Async<void> work) {
    runtime::start(main, "test", std::move(work));
    time.clock.settle();
  }

  support::VirtualTime time;
  Strand main = boost::asio::make_strand(time.executor());
  Strand engine = boost::asio::make_strand(time.executor());
  std::vector<bool> onEngine;
  std::weak_ptr<PlacedController> controller;
  std::vector<bool> statesOnMain;
  std::vector<ControlState> states;
  std::unique_ptr<HostedController> hosted;
};

TEST_F(HostedControllerTest, TheControllerLivesOnTheEnginesExecutorAlone) {
  std::optional<ControlResult> result;
  const auto use = [&]() -> Async<void> {
    result = co_await hosted->applyPlan({});
    co_await hosted->heartbeat();
    co_await hosted->restoreAuto();
    EXPECT_TRUE(main.running_in_this_thread());
  };
  onMain(use());
  release();
  EXPECT_EQ(result, ControlResult::timedOut);
  EXPECT_TRUE(controller.expired());
  EXPECT_EQ(onEngine, std::vector<bool>(6, true)); // Made, its stream, three calls, destroyed.
}

TEST_F(HostedControllerTest, StatesArriveOnTheMainExecutorInOrder) {
  boost::asio::post(engine, [this] {
    for (const char* text : {"a", "b", "c"})
      controller.lock()->states.yield({.lastError = text});
  });
  time.clock.settle();
  EXPECT_EQ(statesOnMain, std::vector<bool>(3, true));
  ASSERT_EQ(states.size(), 3U);
  EXPECT_EQ(states[0].lastError, "a");
  EXPECT_EQ(states[2].lastError, "c");
}

TEST_F(HostedControllerTest, AStateUnderWayToAHolderThatIsGoneIsDropped) {
  boost::asio::post(engine, [this] { controller.lock()->states.yield({.lastError = "late"}); });
  release(); // Begins before the state is read.
  EXPECT_TRUE(states.empty());
}

TEST_F(HostedControllerTest, AHolderThatIsGoneAtOnceLeavesNothing) {
  const auto brief = [this] { HostedController(main, engine, maker(), taker()); };
  boost::asio::post(main, brief);
  time.clock.settle();
  EXPECT_TRUE(controller.expired());
  EXPECT_EQ(onEngine.back(), true);
}

TEST(PlacedModel, ThePowerMonitorLivesOnTheEnginesExecutor) {
  support::VirtualTime time;
  const Strand main = boost::asio::make_strand(time.executor());
  const Strand engine = boost::asio::make_strand(time.executor());
  struct PlacedPower final : PowerSourceProvider {
    PlacedPower(const Strand& strand, std::vector<bool>& places) : engine(strand), onEngine(places) {}
    ~PlacedPower() override { note(); }
    void note() const { onEngine.push_back(engine.running_in_this_thread()); }
    void start(std::function<void()>) override { note(); }
    void stop() override { note(); }
    [[nodiscard]] PowerSource current() const override {
      note();
      return PowerSource::ac;
    }
    const Strand& engine;
    std::vector<bool>& onEngine;
  };
  std::vector<bool> onEngine;
  ControllerLog log(time);
  ScriptedUserClient driver;
  hardware::SMCConnection smc(engine, driver);
  ScriptedReadings readings(time);
  const MapBundleInfo bundle{{}};
  runtime::SystemFiles files;
  const auto registration = std::make_shared<Registration>(engine);
  std::shared_ptr<AppModel> model;
  boost::asio::post(main, [&] {
    model = AppModel::make({.mainExecutor = main,
                            .engineExecutor = engine,
                            .clock = time.clock,
                            .smc = smc,
                            .sensors = readings,
                            .makePreviewController = loggingControllers("preview", log),
                            .makeHelperController = loggingControllers("helper", log),
                            .daemonService = std::make_unique<ScriptedDaemonService>(registration),
                            .configStore = ConfigStore(files, [] { return "/nonexistent/ventolith"; }),
                            .powerSource = std::make_unique<PlacedPower>(engine, onEngine),
                            .bundle = bundle,
                            .makeUpdateEngine = nullptr,
                            .supportURL = std::nullopt,
                            .openURL = nullptr});
  });
  time.clock.settle();
  EXPECT_EQ(model->powerSource(), PowerSource::ac);
  boost::asio::post(main, [&] { model = nullptr; });
  time.clock.settle();
  EXPECT_EQ(onEngine, std::vector<bool>(4, true)); // Started, asked, stopped, destroyed.
}

} // namespace
} // namespace ventolith::app
