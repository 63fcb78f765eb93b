#include "core/PlanEvaluator.h"

#include "core/Visitor.h"

#include <algorithm>

namespace ventolith::core {

using runtime::Instant;

namespace {

constexpr double ruleReleaseMargin =
    0.5; // Degrees below its threshold at which a rule lets go at the latest.

double elapsedSeconds(Instant from, Instant to) {
  return runtime::toSeconds(to - from);
}

double clampedPercent(double percent) {
  return std::max(0.0, std::min(percent, 100.0));
}

// Raised to the minimum first, then lowered to the maximum: of a range upside down the maximum wins.
double clampedToRange(double rpm, const Fan& fan) {
  return std::min(std::max(rpm, static_cast<double>(fan.minRPM)), static_cast<double>(fan.maxRPM));
}

double scale(double percent, const Fan& fan) {
  const auto min = static_cast<double>(fan.minRPM);
  const auto max = static_cast<double>(fan.maxRPM);
  return clampedPercent(percent) * (max - min) / 100 + min;
}

/// The fans of a snapshot by their ids. Of two fans with one id the first counts.
class FansByID {
public:
  explicit FansByID(const std::vector<Fan>& fans) : fans_(fans) {
    while (inPlace_ < fans.size() && fans[inPlace_].id == static_cast<FanID>(inPlace_))
      ++inPlace_;
  }

  [[nodiscard]] const Fan* find(FanID id) const {
    const auto place = static_cast<std::size_t>(id);
    if (place < inPlace_) return &fans_[place];
    const auto rest = fans_.begin() + static_cast<std::ptrdiff_t>(inPlace_);
    const auto found = std::find_if(rest, fans_.end(), [id](const Fan& fan) { return fan.id == id; });
    return found == fans_.end() ? nullptr : &*found;
  }

private:
  const std::vector<Fan>& fans_;
  // So many fans from the first on have their place as their id: all of them, unless somebody made the
  // snapshot by hand.
  std::size_t inPlace_ = 0;
};

} // namespace

FanDecisions PlanEvaluator::evaluate(const FanControlPlan& plan, const SensorSnapshot& snapshot,
                                     Instant now) {
  filter(snapshot, plan.tuning.emaAlpha);
  const Overrides overrides = latchedOverrides(plan, now);
  const FansByID fans(snapshot.fans);
  FanDecisions decisions;
  for (const FanPlan& entry : plan.fans) {
    const Fan* fan = fans.find(entry.fanID);
    if (fan == nullptr) continue;
    decisions.insert_or_assign(entry.fanID, decide(entry, *fan, overrides, plan.tuning, now));
  }
  return decisions;
}

void PlanEvaluator::reset() {
  *this = PlanEvaluator();
}

std::optional<double> PlanEvaluator::filteredCelsius(const std::string& sensorID) const {
  const auto found = emaBySensor_.find(sensorID);
  return found == emaBySensor_.end() ? std::nullopt : std::optional(found->second.celsius);
}

void PlanEvaluator::filter(const SensorSnapshot& snapshot, double alpha) {
  ++tick_;
  for (const TempSensor& sensor : snapshot.temps) {
    sensorID_.assign(rawValue(sensor.source)).append("-").append(sensor.key);
    const auto [entry, isNew] = emaBySensor_.try_emplace(sensorID_);
    Filtered& filtered = entry->second;
    filtered.celsius = isNew ? sensor.celsius : sensor.celsius * alpha + filtered.celsius * (1 - alpha);
    filtered.tick = tick_;
  }
  // A sensor that drops out loses its history, and comes back unfiltered.
  std::erase_if(emaBySensor_, [this](const auto& entry) { return entry.second.tick != tick_; });
  hottest_ = std::nullopt;
  for (const auto& [id, filtered] : emaBySensor_)
    hottest_ = std::max(hottest_, std::optional(filtered.celsius));
}

std::optional<double> PlanEvaluator::temperature(const std::optional<std::string>& sensorID) const {
  return sensorID ? filteredCelsius(*sensorID) : hottest_;
}

void PlanEvaluator::updateRule(const FanRule& rule, std::optional<double> celsius, Instant now) {
  if (ruleLatched_.contains(rule.id)) {
    const double releaseLevel = std::min(rule.thresholdCelsius - ruleReleaseMargin, rule.releaseBelowCelsius);
    const bool hasCooled = celsius && *celsius < releaseLevel;
    if (!hasCooled) return;
    ruleLatched_.erase(rule.id);
    ruleFiringSince_.erase(rule.id);
  }
  if (celsius && *celsius > rule.thresholdCelsius) {
    const Instant start = ruleFiringSince_.try_emplace(rule.id, now).first->second;
    if (rule.dwellSeconds <= elapsedSeconds(start, now)) ruleLatched_.insert(rule.id);
  } else {
    ruleFiringSince_.erase(rule.id);
  }
}

PlanEvaluator::Overrides PlanEvaluator::latchedOverrides(const FanControlPlan& plan, Instant now) {
  Overrides overrides;
  for (const FanRule& rule : plan.rules) {
    if (!rule.enabled) continue; // What is known about it stays as it was.
    updateRule(rule, temperature(rule.sensorID), now);
    if (!ruleLatched_.contains(rule.id)) continue;
    // The first latched rule wins, fan by fan: try_emplace keeps what is there.
    std::visit(
        Visitor{
            [&](const RuleFanTarget::All&) {
              for (const FanPlan& entry : plan.fans)
                overrides.try_emplace(entry.fanID, rule.targetPercent);
            },
            [&](const RuleFanTarget::OneFan& one) { overrides.try_emplace(one.fan, rule.targetPercent); },
        },
        rule.fanTarget.value);
  }
  return overrides;
}

FanDecision PlanEvaluator::decide(const FanPlan& entry, const Fan& fan, const Overrides& overrides,
                                  const ControlTuning& tuning, Instant now) {
  // A rule overrides every mode, the firmware's included.
  if (const auto override = overrides.find(fan.id); override != overrides.end()) {
    const double percent = override->second;
    return runUnlessStopped({.fan = fan.id, .percent = percent, .isRuleOverride = true}, fan,
                            scale(percent, fan), now);
  }
  return std::visit(
      Visitor{
          [&](const FanControlModePlan::Automatic&) { return release(fan.id); },
          [&](const FanControlModePlan::FixedRPM& fixed) {
            forgetStop(fan.id); // A fixed speed never stops a fan.
            return holdAt(fan, fixed.rpm);
          },
          [&](const FanControlModePlan::FixedPercent& fixed) {
            const StopRequest request{
                .fan = fan.id, .percent = clampedPercent(fixed.percent), .isRuleOverride = false};
            return runUnlessStopped(request, fan, scale(fixed.percent, fan), now);
          },
          [&](const FanControlModePlan::Curve& curve) { return follow(curve.curve, fan, tuning, now); },
      },
      entry.mode.value);
}

FanDecision PlanEvaluator::follow(const FanCurve& curve, const Fan& fan, const ControlTuning& tuning,
                                  Instant now) {
  const auto celsius = temperature(curve.sourceSensorID);
  if (!celsius) return release(fan.id); // Without data the firmware is the safe owner.
  const double percent = curve.percent(*celsius);
  double rpm = scale(percent, fan);
  if (const auto last = lastTargetByFan_.find(fan.id); last != lastTargetByFan_.end()) {
    rpm = std::max(rpm, last->second - tuning.maxDeltaRPMPerTick);
    rpm = std::min(rpm, last->second + tuning.maxDeltaRPMPerTick);
  }
  return runUnlessStopped({.fan = fan.id, .percent = percent, .isRuleOverride = false}, fan, rpm, now);
}

FanDecision PlanEvaluator::runUnlessStopped(const StopRequest& request, const Fan& fan, double rpm,
                                            Instant now) {
  if (const auto stop = stopDecision(request, now)) {
    lastTargetByFan_.erase(fan.id); // A fan that wakes again starts without a slew limit.
    return *stop;
  }
  return holdAt(fan, rpm);
}

std::optional<FanDecision> PlanEvaluator::stopDecision(const StopRequest& request, Instant now) {
  const FanID fan = request.fan;
  if (request.percent > 0) {
    zeroSince_.erase(fan);
    if (!stoppedFans_.contains(fan)) return std::nullopt;
    if (request.isRuleOverride) {
      forgetStop(fan);
      return std::nullopt;
    }
    if (request.percent < FanStopPolicy::resumePercent) {
      resumeSince_.erase(fan); // Too weak to wake it: the count starts anew.
      return FanDecision::idleStopped();
    }
    const Instant start = resumeSince_.try_emplace(fan, now).first->second;
    if (elapsedSeconds(start, now) < FanStopPolicy::resumeDwellSeconds) return FanDecision::idleStopped();
    forgetStop(fan);
    return std::nullopt;
  }
  resumeSince_.erase(fan);
  const Instant start = zeroSince_.try_emplace(fan, now).first->second;
  const bool isDwelling = elapsedSeconds(start, now) < FanStopPolicy::stopDwellSeconds;
  if (!stoppedFans_.contains(fan) && isDwelling) return std::nullopt;
  stoppedFans_.insert(fan);
  return FanDecision::idleStopped();
}

FanDecision PlanEvaluator::holdAt(const Fan& fan, double rpm) {
  const double target = clampedToRange(rpm, fan);
  lastTargetByFan_.insert_or_assign(fan.id, target);
  return FanDecision::target(target);
}

FanDecision PlanEvaluator::release(FanID fan) {
  lastTargetByFan_.erase(fan);
  forgetStop(fan);
  return FanDecision::releaseToAuto();
}

void PlanEvaluator::forgetStop(FanID fan) {
  zeroSince_.erase(fan);
  resumeSince_.erase(fan);
  stoppedFans_.erase(fan);
}

} // namespace ventolith::core
