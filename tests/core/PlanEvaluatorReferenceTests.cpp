// Thousands of random ticks, decided a second time by an evaluator that is as plain as can be.
#include "core/PlanEvaluator.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace ventolith::core {
namespace {

/// The policy step by step: no shared helpers, nothing kept but what the policy itself remembers.
class PlainEvaluator {
public:
  FanDecisions evaluate(const FanControlPlan& plan, const SensorSnapshot& snapshot, double now) {
    filter(plan, snapshot);
    const std::map<FanID, double> overrides = rules(plan, now);
    FanDecisions decisions;
    for (const FanPlan& entry : plan.fans) {
      for (const Fan& fan : snapshot.fans) {
        if (fan.id != entry.fanID) continue;
        decisions.insert_or_assign(fan.id, decide(entry.mode, fan, overrides, plan.tuning, now));
        break;
      }
    }
    return decisions;
  }

  std::set<FanID> stoppedFans;

private:
  void filter(const FanControlPlan& plan, const SensorSnapshot& snapshot) {
    const double alpha = plan.tuning.emaAlpha;
    std::set<std::string> present;
    for (const TempSensor& sensor : snapshot.temps) {
      const std::string id = sensor.id();
      present.insert(id);
      if (ema_.count(id) == 0) {
        ema_[id] = sensor.celsius;
      } else {
        ema_[id] = sensor.celsius * alpha + ema_[id] * (1 - alpha);
      }
    }
    const std::map<std::string, double> before = ema_;
    for (const auto& [id, celsius] : before) {
      if (present.count(id) == 0) ema_.erase(id);
    }
  }

  std::optional<double> temperature(const std::optional<std::string>& id) const {
    if (id) return ema_.count(*id) == 0 ? std::nullopt : std::optional(ema_.at(*id));
    std::optional<double> highest;
    for (const auto& [name, celsius] : ema_) {
      if (!highest || celsius > *highest) highest = celsius;
    }
    return highest;
  }

  std::map<FanID, double> rules(const FanControlPlan& plan, double now) {
    std::map<FanID, double> overrides;
    for (const FanRule& rule : plan.rules) {
      if (!rule.enabled) continue;
      const std::string id = uuidText(rule.id);
      const std::optional<double> celsius = temperature(rule.sensorID);
      if (latched_.count(id) == 1) {
        const double level = std::min(rule.thresholdCelsius - 0.5, rule.releaseBelowCelsius);
        if (celsius && *celsius < level) {
          latched_.erase(id);
          firingSince_.erase(id);
        }
      }
      if (latched_.count(id) == 0 && celsius && *celsius > rule.thresholdCelsius) {
        if (firingSince_.count(id) == 0) firingSince_[id] = now;
        if (rule.dwellSeconds <= now - firingSince_[id]) latched_.insert(id);
      } else if (latched_.count(id) == 0) {
        firingSince_.erase(id);
      }
      if (latched_.count(id) == 0) continue;
      std::vector<FanID> fans;
      if (const auto* one = std::get_if<RuleFanTarget::OneFan>(&rule.fanTarget.value)) {
        fans.push_back(one->fan);
      } else {
        for (const FanPlan& entry : plan.fans)
          fans.push_back(entry.fanID);
      }
      for (const FanID fan : fans) {
        if (overrides.count(fan) == 0) overrides[fan] = rule.targetPercent;
      }
    }
    return overrides;
  }

  FanDecision decide(const FanControlModePlan& mode, const Fan& fan, const std::map<FanID, double>& overrides,
                     const ControlTuning& tuning, double now) {
    const auto min = static_cast<double>(fan.minRPM);
    const auto max = static_cast<double>(fan.maxRPM);
    const auto clamp = [](double percent) { return percent < 0 ? 0.0 : percent > 100 ? 100.0 : percent; };
    const auto scale = [&](double percent) { return clamp(percent) * (max - min) / 100 + min; };
    double rpm = 0;
    std::optional<FanDecision> stop;
    if (overrides.count(fan.id) == 1) {
      const double percent = overrides.at(fan.id);
      rpm = scale(percent);
      stop = stopDecision(fan.id, percent, true, now);
    } else if (std::holds_alternative<FanControlModePlan::Automatic>(mode.value)) {
      return release(fan.id);
    } else if (const auto* fixedRPM = std::get_if<FanControlModePlan::FixedRPM>(&mode.value)) {
      rpm = fixedRPM->rpm;
      forget(fan.id);
    } else if (const auto* fixed = std::get_if<FanControlModePlan::FixedPercent>(&mode.value)) {
      rpm = scale(fixed->percent);
      stop = stopDecision(fan.id, clamp(fixed->percent), false, now);
    } else {
      const FanCurve& curve = std::get<FanControlModePlan::Curve>(mode.value).curve;
      const std::optional<double> celsius = temperature(curve.sourceSensorID);
      if (!celsius) return release(fan.id);
      const double percent = curvePercent(curve, *celsius);
      stop = stopDecision(fan.id, percent, false, now);
      rpm = scale(percent);
      if (lastTarget_.count(fan.id) == 1) {
        const double last = lastTarget_.at(fan.id);
        if (rpm <= last - tuning.maxDeltaRPMPerTick) rpm = last - tuning.maxDeltaRPMPerTick;
        if (rpm > last + tuning.maxDeltaRPMPerTick) rpm = last + tuning.maxDeltaRPMPerTick;
      }
    }
    if (stop) {
      lastTarget_.erase(fan.id);
      return *stop;
    }
    if (rpm < min) rpm = min;
    if (rpm > max) rpm = max;
    lastTarget_[fan.id] = rpm;
    return FanDecision::target(rpm);
  }

  std::optional<FanDecision> stopDecision(FanID fan, double requested, bool isRuleOverride, double now) {
    if (requested > 0) {
      zeroSince_.erase(fan);
      if (stoppedFans.count(fan) == 0) return std::nullopt;
      if (isRuleOverride) {
        forget(fan);
        return std::nullopt;
      }
      if (requested >= 3.0) {
        if (resumeSince_.count(fan) == 0) resumeSince_[fan] = now;
        if (now - resumeSince_[fan] >= 3.0) {
          forget(fan);
          return std::nullopt;
        }
        return FanDecision::idleStopped();
      }
      resumeSince_.erase(fan);
      return FanDecision::idleStopped();
    }
    resumeSince_.erase(fan);
    if (zeroSince_.count(fan) == 0) zeroSince_[fan] = now;
    if (stoppedFans.count(fan) == 0 && now - zeroSince_[fan] < 10.0) return std::nullopt;
    stoppedFans.insert(fan);
    return FanDecision::idleStopped();
  }

  static double curvePercent(const FanCurve& curve, double celsius) {
    std::vector<CurvePoint> points;
    for (const CurvePoint& point : curve.points) { // Sorted by insertion, after its equals.
      auto place = points.begin();
      while (place != points.end() && place->celsius <= point.celsius)
        ++place;
      points.insert(place, point);
    }
    if (points.empty()) return 0;
    double raw = 0;
    if (points.front().celsius >= celsius) {
      raw = points.front().percent;
    } else if (points.back().celsius <= celsius) {
      raw = points.back().percent;
    } else {
      std::size_t left = 0;
      while (!(points[left].celsius <= celsius && points[left + 1].celsius >= celsius))
        ++left;
      const CurvePoint& a = points[left];
      const CurvePoint& b = points[left + 1];
      raw = a.celsius == b.celsius
                ? b.percent
                : a.percent + ((celsius - a.celsius) / (b.celsius - a.celsius)) * (b.percent - a.percent);
    }
    return raw <= 0 ? 0 : raw > 100 ? 100 : raw;
  }

  FanDecision release(FanID fan) {
    lastTarget_.erase(fan);
    forget(fan);
    return FanDecision::releaseToAuto();
  }

  void forget(FanID fan) {
    zeroSince_.erase(fan);
    resumeSince_.erase(fan);
    stoppedFans.erase(fan);
  }

  std::map<std::string, double> ema_;
  std::map<FanID, double> lastTarget_;
  std::map<std::string, double> firingSince_;
  std::set<std::string> latched_;
  std::map<FanID, double> zeroSince_;
  std::map<FanID, double> resumeSince_;
};

/// Plans and readings that meet the limits of the policy often: temperatures and levels in halves of a
/// degree, percentages around 0 and 3, few sensors and fans, some of them missing or doubled.
class RandomWorld {
public:
  explicit RandomWorld(std::uint32_t seed) : engine_(seed) {
    for (std::size_t i = 0; i < 4; ++i)
      ruleIDs_.push_back(makeUUID());
  }

  /// A whole number from `low` to `high`, the same on every system.
  int number(int low, int high) {
    const auto span = static_cast<std::uint32_t>(high - low + 1);
    return low + static_cast<int>(static_cast<std::uint32_t>(engine_()) % span);
  }
  bool chance(int percent) { return number(1, 100) <= percent; }
  double halves(int low, int high) { return number(2 * low, 2 * high) / 2.0; }

  FanControlPlan plan() {
    FanControlPlan made;
    const int fans = number(0, 4);
    for (int i = 0; i < fans; ++i)
      made.fans.push_back({number(0, 3), mode()});
    const int rules = number(0, 4);
    for (int i = 0; i < rules; ++i)
      made.rules.push_back(rule());
    made.tuning.emaAlpha = number(0, 10) / 10.0;
    made.tuning.maxDeltaRPMPerTick = pick({0, 60, 150.5, 400, 1e5});
    return made;
  }

  SensorSnapshot reading() {
    SensorSnapshot made;
    for (FanID id = 0; id < 4; ++id) {
      if (!chance(95)) continue;
      made.fans.push_back(support::fan(id, 1000 + 500 * id, chance(97) ? 5000 + 377 * id : 900));
    }
    for (std::size_t i = 0; i < heat_.size(); ++i) {
      heat_[i] = std::clamp(heat_[i] + halves(-6, 6), 0.0, 110.0);
      if (chance(4)) heat_[i] = 0;
      if (!chance(95)) continue;
      made.temps.push_back(support::sensor(std::string(1, static_cast<char>('a' + i)), heat_[i]));
      if (chance(3)) made.temps.push_back(made.temps.back());
    }
    if (chance(3)) made.temps.clear();
    return made;
  }

  double step() { return pick({0, 0.25, 0.5, 1, 1.5, 1.5, 3, 5, 10}); }

private:
  double pick(const std::vector<double>& values) {
    return values[static_cast<std::size_t>(number(0, static_cast<int>(values.size()) - 1))];
  }

  std::optional<std::string> sensorID() {
    if (chance(50)) return std::nullopt;
    return "SMC-" + std::string(1, static_cast<char>('a' + number(0, 3))); // "SMC-d" never exists.
  }

  double percent() { return chance(60) ? pick({0, 0, -3, 0.5, 2, 2.999, 3, 4}) : number(0, 260) / 2.0; }

  FanControlModePlan mode() {
    switch (number(0, 5)) {
    case 0: return FanControlModePlan::automatic();
    case 1: return FanControlModePlan::fixedRPM(number(-1, 16) * 500);
    case 2: return FanControlModePlan::fixedPercent(percent());
    default: break;
    }
    FanCurve curve;
    curve.sourceSensorID = sensorID();
    const int points = number(0, 5);
    for (int i = 0; i < points; ++i)
      curve.points.push_back({.celsius = number(0, 20) * 5.0, .percent = percent()});
    if (chance(50)) curve.interpolation = CurveInterpolation::monotone;
    return FanControlModePlan::curve(curve);
  }

  FanRule rule() {
    FanRule made;
    made.id = ruleIDs_[static_cast<std::size_t>(number(0, 3))]; // Now and then one stands twice.
    made.sensorID = sensorID();
    made.thresholdCelsius = halves(20, 100);
    made.releaseBelowCelsius = made.thresholdCelsius + halves(-20, 3);
    made.targetPercent = percent();
    if (chance(50)) made.fanTarget = RuleFanTarget::fan(number(0, 4));
    made.dwellSeconds = pick({0, 0, 1.5, 3, 5});
    made.enabled = chance(85);
    return made;
  }

  std::mt19937 engine_;
  std::vector<UUID> ruleIDs_;
  std::vector<double> heat_ = {40, 40, 40};
};

TEST(PlanEvaluatorReference, DecidesLikeThePlainEvaluatorOverThousandsOfTicks) {
  int targets = 0;
  int releases = 0;
  int stops = 0;
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    RandomWorld world(seed);
    PlanEvaluator evaluator;
    PlainEvaluator plain;
    FanControlPlan plan = world.plan();
    double now = 0;
    for (int tick = 0; tick < 300; ++tick) {
      if (world.chance(4)) plan = world.plan();
      if (world.chance(5) && !plan.rules.empty()) plan.rules.front().enabled = !plan.rules.front().enabled;
      now += world.step();
      const SensorSnapshot reading = world.reading();
      const FanDecisions decisions = evaluator.evaluate(plan, reading, support::at(now));
      ASSERT_EQ(decisions, plain.evaluate(plan, reading, now))
          << "seed " << seed << ", tick " << tick << ", plan " << encode(plan);
      ASSERT_EQ(evaluator.stoppedFans(), plain.stoppedFans) << "seed " << seed << ", tick " << tick;
      for (const auto& [id, decision] : decisions) {
        if (decision == FanDecision::idleStopped()) ++stops;
        if (decision == FanDecision::releaseToAuto()) ++releases;
        if (std::holds_alternative<FanDecision::Target>(decision.value)) ++targets;
      }
    }
  }
  // The worlds are worth their name only if they lead everywhere.
  EXPECT_GT(targets, 5000);
  EXPECT_GT(releases, 2000);
  EXPECT_GT(stops, 1000);
}

} // namespace
} // namespace ventolith::core
