// The plan: the whole of what the user wants from the fans, as plain data. One form on disk and on the
// wire. Temperatures are degrees Celsius, speeds RPM, percentages 0 to 100, times seconds.
#pragma once

#include "core/FanCurve.h"
#include "core/JSON.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ventolith::core {

/// The SMC's index of a fan, from 0.
using FanID = std::int64_t;

/// What one fan does.
struct FanControlModePlan {
  struct Automatic { // The firmware drives the fan.
    bool operator==(const Automatic&) const = default;
  };
  struct FixedRPM {
    double rpm;
    bool operator==(const FixedRPM&) const = default;
  };
  struct FixedPercent {
    double percent; // Of the fan's range from its minimum to its maximum speed.
    bool operator==(const FixedPercent&) const = default;
  };
  struct Curve {
    FanCurve curve;
    bool operator==(const Curve&) const = default;
  };

  std::variant<Automatic, FixedRPM, FixedPercent, Curve> value;

  [[nodiscard]] static FanControlModePlan automatic() { return {Automatic{}}; }
  [[nodiscard]] static FanControlModePlan fixedRPM(double rpm) { return {FixedRPM{rpm}}; }
  [[nodiscard]] static FanControlModePlan fixedPercent(double percent) { return {FixedPercent{percent}}; }
  [[nodiscard]] static FanControlModePlan curve(FanCurve curve) { return {Curve{std::move(curve)}}; }

  [[nodiscard]] bool isAutomatic() const { return std::holds_alternative<Automatic>(value); }
  bool operator==(const FanControlModePlan&) const = default;
};

struct FanPlan {
  FanID fanID = 0;
  FanControlModePlan mode;

  bool operator==(const FanPlan&) const = default;
};

/// The fans a rule acts on.
struct RuleFanTarget {
  struct All { // Every fan listed in the plan.
    bool operator==(const All&) const = default;
  };
  struct OneFan {
    FanID fan;
    bool operator==(const OneFan&) const = default;
  };

  std::variant<All, OneFan> value;

  [[nodiscard]] static RuleFanTarget all() { return {All{}}; }
  [[nodiscard]] static RuleFanTarget fan(FanID fan) { return {OneFan{fan}}; }
  bool operator==(const RuleFanTarget&) const = default;
};

/// A temperature rule on top of the fans' modes.
struct FanRule {
  UUID id = makeUUID();
  std::string name;
  std::optional<std::string> sensorID; // A `TempSensor::id()`; none means the hottest sensor.
  double thresholdCelsius = 0;         // Fires strictly above.
  double releaseBelowCelsius = 0;      // Lets go strictly below the lower of this and threshold - 0.5.
  double targetPercent = 0;
  RuleFanTarget fanTarget;
  double dwellSeconds = 0; // How long the temperature stays above the threshold before the rule fires.
  bool enabled = true;

  bool operator==(const FanRule&) const = default;
};

struct ControlTuning {
  double emaAlpha = 0.3;             // Weight of the new reading in the temperature filter.
  double hysteresisCelsius = 2.0;    // Carried and stored; the evaluator does not consult it.
  double maxDeltaRPMPerTick = 400.0; // Slew limit of a curve-driven fan.
  double minDwellSeconds = 3.0;      // Carried and stored; the evaluator does not consult it.

  bool operator==(const ControlTuning&) const = default;
};

struct FanControlPlan {
  std::vector<FanPlan> fans;  // In the user's order; a fan that is not listed is not controlled.
  std::vector<FanRule> rules; // In priority order: fan by fan the first that has fired wins.
  ControlTuning tuning;

  /// No fan listed: nothing is held.
  static const FanControlPlan allAutomatic;

  bool operator==(const FanControlPlan&) const = default;
};

/// A named plan.
struct FanPreset {
  UUID id = makeUUID();
  std::string name;
  bool isBuiltIn = false;
  FanControlPlan plan;

  bool operator==(const FanPreset&) const = default;
};

/// Which preset to switch to when the power source changes.
struct AutoSwitchSettings {
  bool enabled = false;
  std::optional<UUID> onBatteryPresetID;
  std::optional<UUID> onACPresetID;

  static const AutoSwitchSettings off;

  bool operator==(const AutoSwitchSettings&) const = default;
};

// JSON: keys are the field names, written in the order of the fields; every field but the optional ones
// is required on reading, unknown keys are ignored. Reading fails with DecodeError.
[[nodiscard]] JSON toJSON(const FanCurve& curve);
[[nodiscard]] JSON toJSON(const FanControlPlan& plan);
[[nodiscard]] JSON toJSON(const FanPreset& preset);
[[nodiscard]] JSON toJSON(const AutoSwitchSettings& settings);
[[nodiscard]] FanControlPlan readFanControlPlan(const JSONReader& json);
[[nodiscard]] FanPreset readFanPreset(const JSONReader& json);
[[nodiscard]] AutoSwitchSettings readAutoSwitchSettings(const JSONReader& json);

/// A plan as it stands on disk and travels. Fails with std::invalid_argument if a number is not finite.
[[nodiscard]] std::string encode(const FanControlPlan& plan);
/// Fails with DecodeError; a text over the bounds of `JSONBounds` is refused.
[[nodiscard]] FanControlPlan decodeFanControlPlan(std::string_view text);

} // namespace ventolith::core
