// The heart of the control policy: what each fan should do now, from the plan, a fresh snapshot and the
// time. Pure: it touches no hardware and reads no clock; what it remembers from one tick to the next is
// in its own fields.
#pragma once

#include "core/FanControlPlan.h"
#include "core/SensorSnapshot.h"
#include "runtime/Time.h"

#include <boost/container_hash/hash.hpp>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <variant>

namespace ventolith::core {

/// What one fan should do now.
struct FanDecision {
  struct Target { // Hold the fan at this speed.
    double rpm;
    bool operator==(const Target&) const = default;
  };
  struct ReleaseToAuto { // Give it back to the firmware.
    bool operator==(const ReleaseToAuto&) const = default;
  };
  struct IdleStopped { // Park it at zero RPM.
    bool operator==(const IdleStopped&) const = default;
  };

  std::variant<Target, ReleaseToAuto, IdleStopped> value;

  [[nodiscard]] static FanDecision target(double rpm) { return {Target{rpm}}; }
  [[nodiscard]] static FanDecision releaseToAuto() { return {ReleaseToAuto{}}; }
  [[nodiscard]] static FanDecision idleStopped() { return {IdleStopped{}}; }
  bool operator==(const FanDecision&) const = default;
};

using FanDecisions = std::map<FanID, FanDecision>;

/// When a fan that is asked for no speed may stop, and what wakes it.
namespace FanStopPolicy {
inline constexpr double stopDwellSeconds = 10.0;  // How long a zero request lasts before the fan stops.
inline constexpr double resumePercent = 3.0;      // The lowest request that can wake a stopped fan,
inline constexpr double resumeDwellSeconds = 3.0; // and how long it lasts before it does.
inline constexpr double stoppedTargetRPM = 0.0;
} // namespace FanStopPolicy

class PlanEvaluator {
public:
  /// One tick. Missing data has a meaning at each point: a missing sensor keeps a latched rule latched
  /// and an unlatched one from firing, and sends its curve's fan to the firmware; a missing fan gets no
  /// decision. Never fails. `now` never goes backwards from tick to tick.
  FanDecisions evaluate(const FanControlPlan& plan, const SensorSnapshot& snapshot, runtime::Instant now);

  /// Forgets everything.
  void reset();

  [[nodiscard]] const std::set<FanID>& stoppedFans() const { return stoppedFans_; }
  void setStoppedFans(std::set<FanID> fans) { stoppedFans_ = std::move(fans); }

  // What it remembers, to be looked at.
  /// The filtered temperature of a sensor by its id; none if it was not in the last snapshot.
  [[nodiscard]] std::optional<double> filteredCelsius(const std::string& sensorID) const;
  [[nodiscard]] std::size_t filteredSensorCount() const { return emaBySensor_.size(); }
  [[nodiscard]] const std::map<FanID, double>& lastTargetByFan() const { return lastTargetByFan_; }

private:
  struct Filtered {
    double celsius = 0;
    std::uint64_t tick = 0; // The last one in which the sensor was there.
  };
  struct StopRequest {
    FanID fan;
    double percent;
    bool isRuleOverride;
  };
  using Overrides = std::map<FanID, double>;

  void filter(const SensorSnapshot& snapshot, double alpha);
  [[nodiscard]] std::optional<double> temperature(const std::optional<std::string>& sensorID) const;
  void updateRule(const FanRule& rule, std::optional<double> celsius, runtime::Instant now);
  [[nodiscard]] Overrides latchedOverrides(const FanControlPlan& plan, runtime::Instant now);

  FanDecision decide(const FanPlan& entry, const Fan& fan, const Overrides& overrides,
                     const ControlTuning& tuning, runtime::Instant now);
  FanDecision follow(const FanCurve& curve, const Fan& fan, const ControlTuning& tuning,
                     runtime::Instant now);
  FanDecision runUnlessStopped(const StopRequest& request, const Fan& fan, double rpm, runtime::Instant now);
  std::optional<FanDecision> stopDecision(const StopRequest& request, runtime::Instant now);
  FanDecision holdAt(const Fan& fan, double rpm);
  FanDecision release(FanID fan);
  void forgetStop(FanID fan);

  std::unordered_map<std::string, Filtered> emaBySensor_;
  std::optional<double> hottest_; // The highest of emaBySensor_.
  std::uint64_t tick_ = 0;
  std::map<FanID, double> lastTargetByFan_;
  std::unordered_map<UUID, runtime::Instant, boost::hash<UUID>> ruleFiringSince_;
  std::unordered_set<UUID, boost::hash<UUID>> ruleLatched_;
  std::map<FanID, runtime::Instant> zeroSince_;   // Since when a fan has been asked for 0 %.
  std::map<FanID, runtime::Instant> resumeSince_; // Since when a stopped fan has been asked to wake.
  std::set<FanID> stoppedFans_;
  std::string sensorID_; // A buffer that is kept so that no tick has to make one.
};

} // namespace ventolith::core
