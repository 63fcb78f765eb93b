// Short words for plans, snapshots and times, with the values that a test does not care about filled in.
#pragma once

#include "core/FanControlPlan.h"
#include "core/PlanEvaluator.h"
#include "core/SensorSnapshot.h"
#include "runtime/Time.h"

#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::support {

/// An instant, `seconds` after an arbitrary one.
inline runtime::Instant at(double seconds) {
  return runtime::Instant(std::chrono::hours(1)) + runtime::fromSeconds(seconds);
}

/// A fan of 2000 to 8000 RPM, so that one percent of its range is 60 RPM.
inline core::Fan fan(core::FanID id, std::int64_t minRPM = 2000, std::int64_t maxRPM = 8000) {
  return {.id = id, .name = "Fan", .currentRPM = minRPM, .minRPM = minRPM, .maxRPM = maxRPM, .mode = 0};
}

/// A sensor of the id "SMC-" and `key`.
inline core::TempSensor sensor(std::string key, double celsius) {
  return {.key = std::move(key), .name = "Sensor", .celsius = celsius};
}

inline core::SensorSnapshot snapshot(std::vector<core::Fan> fans, std::vector<core::TempSensor> temps = {}) {
  return {.fans = std::move(fans), .temps = std::move(temps)};
}

inline core::FanCurve curve(std::vector<std::pair<double, double>> points,
                            std::optional<std::string> sourceSensorID = std::nullopt) {
  core::FanCurve curve;
  curve.sourceSensorID = std::move(sourceSensorID);
  for (const auto& [celsius, percent] : points)
    curve.points.push_back({.celsius = celsius, .percent = percent});
  return curve;
}

/// The curve that asks for as many percent as there are degrees, and exactly: a power of two divides
/// without a rest.
inline core::FanControlModePlan percentAsCelsius(std::optional<std::string> sourceSensorID = std::nullopt) {
  return core::FanControlModePlan::curve(curve({{0, 0}, {128, 128}}, std::move(sourceSensorID)));
}

/// Fires above 85 degrees without dwell, lets go below 75, and asks all fans for 100 %.
inline core::FanRule rule() {
  core::FanRule rule;
  rule.name = "hot";
  rule.thresholdCelsius = 85;
  rule.releaseBelowCelsius = 75;
  rule.targetPercent = 100;
  return rule;
}

/// Neither filters the temperatures nor limits the slew of a curve.
inline constexpr core::ControlTuning direct{.emaAlpha = 1, .maxDeltaRPMPerTick = 1e9};

inline core::FanControlPlan plan(std::vector<core::FanPlan> fans, std::vector<core::FanRule> rules = {},
                                 core::ControlTuning tuning = direct) {
  return {.fans = std::move(fans), .rules = std::move(rules), .tuning = tuning};
}

inline core::FanControlPlan planOf(core::FanControlModePlan mode) {
  return plan({{0, std::move(mode)}});
}

/// What the test prints of a decision.
inline std::string text(const core::FanDecision& decision) {
  if (const auto* target = std::get_if<core::FanDecision::Target>(&decision.value)) {
    return "target " + std::to_string(target->rpm);
  }
  return decision == core::FanDecision::idleStopped() ? "idleStopped" : "releaseToAuto";
}

} // namespace ventolith::support

namespace ventolith::core {
/// Found by GoogleTest.
inline void PrintTo(const FanDecision& decision, std::ostream* stream) {
  *stream << support::text(decision);
}
} // namespace ventolith::core
