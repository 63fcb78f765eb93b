// An application model among doubles, in virtual time.
#pragma once

#include "ModelDoubles.h"
#include "app/AppModel.h"
#include "support/Plans.h"
#include "support/VirtualDisk.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::app {

using core::Fan;
using core::FanControlModePlan;
using core::FanID;
using core::FanPreset;
using core::FanRule;
using core::UUID;
using helper::DaemonStatus;
using support::fan;
using support::plan;
using support::rule;
using support::snapshot;
using Fields = AppModel::Fields;
using Field = AppModelField;

/// Fans 0 and 1, of 2000 to 8000 RPM; no helper; power unknown; updates configured. Nothing happens before
/// `start`.
class AppModelTest : public testing::Test {
protected:
  AppModelTest() { readings.next = snapshot({fan(0), fan(1)}, {support::sensor("TCHP", 50)}); }
  // What the model has posted still refers to what stands here.
  ~AppModelTest() override {
    release();
    controllers.commands.open();
    readings.readings.open();
    registration->answers.open();
    time.clock.settle();
  }

  /// Makes the model, and lets happen what needs no time.
  void start() {
    model = AppModel::make(dependencies());
    time.clock.settle();
  }
  void startWithHelper() {
    registration->status = DaemonStatus::enabled;
    start();
  }
  void release() {
    model = nullptr;
    time.clock.settle();
  }
  void restart() {
    release();
    start();
  }

  AppModelDependencies dependencies() {
    return {.mainExecutor = time.executor(),
            .engineExecutor = time.executor(),
            .clock = time.clock,
            .smc = smc,
            .sensors = readings,
            .makePreviewController = loggingControllers("preview", controllers),
            .makeHelperController = loggingControllers("helper", controllers),
            .daemonService = std::make_unique<ScriptedDaemonService>(registration),
            .configStore = store,
            .powerSource = std::make_unique<ScriptedPower>(socket),
            .bundle = bundle,
            .makeUpdateEngine =
                [service = updateService](const UpdateFeedConfiguration&,
                                          std::shared_ptr<UpdateEngineDelegate> delegate) {
                  service->delegate = std::move(delegate);
                  return std::make_unique<ScriptedUpdateEngine>(service);
                },
            .supportURL = supportURL,
            .openURL = [this](const std::string& url) { opened.push_back(url); }};
  }

  void pass(double seconds) { time.clock.advance(runtime::fromSeconds(seconds)); }
  void settle() { time.clock.settle(); }

  void setHelper(DaemonStatus status) {
    registration->status = status;
    pass(3);
  }
  void plugInto(PowerSource source) {
    socket->source = source;
    socket->notify();
    settle();
  }

  /// The controller that the model uses now.
  LoggingController& controller() {
    return dynamic_cast<LoggingController&>(*controllers.controllers.back().lock());
  }
  [[nodiscard]] std::vector<FanControlPlan> sentPlans() const {
    std::vector<FanControlPlan> plans;
    for (const auto& sent : controllers.plans)
      plans.push_back(sent.plan);
    return plans;
  }
  [[nodiscard]] std::size_t sentCount() const { return controllers.plans.size(); }

  /// A plan that holds `fans` at speeds.
  static FanControlPlan fixed(std::vector<std::pair<FanID, double>> fans) {
    FanControlPlan plan;
    for (const auto& [id, rpm] : fans)
      plan.fans.push_back({id, FanControlModePlan::fixedRPM(rpm)});
    return plan;
  }
  static FanPreset preset(std::string name, FanControlPlan plan) {
    return {.name = std::move(name), .plan = std::move(plan)};
  }

  support::VirtualTime time;
  support::VirtualDisk disk;
  ConfigStore store{disk, [] { return "/home/user/.config"; }};
  ControllerLog controllers{time};
  ScriptedUserClient driver;
  hardware::SMCConnection smc{time.executor(), driver};
  ScriptedReadings readings{time};
  std::shared_ptr<Registration> registration = std::make_shared<Registration>(time.executor());
  std::shared_ptr<Socket> socket = std::make_shared<Socket>();
  MapBundleInfo bundle{{{"SUFeedURL", std::string("https://updates.example.com/feed.xml")},
                        {"SUPublicEDKey", std::string("AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=")}}};
  std::shared_ptr<UpdateService> updateService = std::make_shared<UpdateService>();
  std::optional<std::string> supportURL;
  std::vector<std::string> opened;
  std::shared_ptr<AppModel> model;
};

} // namespace ventolith::app
