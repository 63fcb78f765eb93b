// Plans and snapshots of any size for the benchmarks.
#pragma once

#include "core/FanHoldPlanner.h"

#include <fmt/format.h>

namespace ventolith::bench {

inline core::FanCurve curve() {
  core::FanCurve curve;
  curve.points = {
      {.celsius = 30, .percent = 0}, {.celsius = 50, .percent = 30}, {.celsius = 80, .percent = 100}};
  return curve;
}

inline core::SensorSnapshot snapshot(std::int64_t fans, std::int64_t sensors, double celsius) {
  core::SensorSnapshot snapshot;
  for (std::int64_t fan = 0; fan < fans; ++fan)
    snapshot.fans.push_back({fan, "Fan", 2000, 2000, 8000, 0});
  for (std::int64_t sensor = 0; sensor < sensors; ++sensor) {
    snapshot.temps.push_back({fmt::format("pACC MTR Temp Sensor{}", sensor), "CPU",
                              celsius + static_cast<double>(sensor % 10), core::SensorCategory::cpu,
                              core::SensorSource::hid});
  }
  return snapshot;
}

/// Every fan on a curve, every rule on a sensor and latched or about to be.
inline core::FanControlPlan plan(std::int64_t fans, std::int64_t sensors, std::int64_t rules) {
  core::FanControlPlan plan;
  for (std::int64_t fan = 0; fan < fans; ++fan)
    plan.fans.push_back({fan, core::FanControlModePlan::curve(curve())});
  for (std::int64_t number = 0; number < rules; ++number) {
    core::FanRule rule;
    rule.name = "rule";
    rule.sensorID = fmt::format("HID-pACC MTR Temp Sensor{}", number % std::max<std::int64_t>(sensors, 1));
    rule.thresholdCelsius = number % 2 == 0 ? 40 : 90;
    rule.releaseBelowCelsius = rule.thresholdCelsius - 5;
    rule.targetPercent = 60;
    rule.fanTarget = core::RuleFanTarget::fan(number % std::max<std::int64_t>(fans, 1));
    plan.rules.push_back(std::move(rule));
  }
  return plan;
}

} // namespace ventolith::bench
