#include "programs/ventolithctl/PlanWarnings.h"

#include "core/Visitor.h"
#include "hardware/FanKeys.h"
#include "helper/engine/LocalFanController.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ventolith::ctl {

namespace {

using core::CurvePoint;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::FanCurve;
using core::FanID;
using core::FanPlan;
using core::FanRule;
using core::RuleFanTarget;

constexpr double hotCelsius = 80; // Above it a fan has to turn.
constexpr double ceilingCelsius = helper::LocalFanController::thermalCeilingCelsius;

bool isPercent(double percent) {
  return percent >= 0 && percent <= 100;
}

/// Whether the rule sees to the fan in the heat, whatever sensor the heat is at.
bool coolsInTheHeat(const FanRule& rule, FanID fan) {
  const auto* one = std::get_if<RuleFanTarget::OneFan>(&rule.fanTarget.value);
  const bool isForFan = one == nullptr || one->fan == fan;
  return rule.enabled && isForFan && !rule.sensorID && rule.targetPercent > 0 &&
         rule.thresholdCelsius <= hotCelsius;
}

/// Whether the curve gives 0 % anywhere above the hot limit: next to it or at a point beyond, for between
/// two points that are not at 0 % it cannot.
bool isStoppedInTheHeat(const FanCurve& curve) {
  if (curve.percent(std::nextafter(hotCelsius, std::numeric_limits<double>::infinity())) <= 0) return true;
  return std::any_of(curve.points.begin(), curve.points.end(), [](const CurvePoint& point) {
    return point.celsius > hotCelsius && point.percent <= 0;
  });
}

class Inspection {
public:
  explicit Inspection(const FanControlPlan& plan) : plan_(plan) {}

  std::vector<PlanWarning> run() {
    for (std::size_t place = 0; place < plan_.fans.size(); ++place)
      inspectFan(place);
    for (std::size_t place = 0; place < plan_.rules.size(); ++place)
      inspectRule(place);
    inspectTuning();
    if (holdsNothing() && !plan_.rules.empty())
      warn("fans", "every fan is left to the firmware, so nothing is held and no rule ever acts");
    return std::move(warnings_);
  }

private:
  void warn(std::string path, std::string text) { warnings_.push_back({std::move(path), std::move(text)}); }

  void warnUnlessPercent(std::string path, double percent) {
    if (!isPercent(percent)) warn(std::move(path), fmt::format("{} % lies outside 0 to 100 %", percent));
  }

  void inspectFan(std::size_t place) {
    const FanPlan& entry = plan_.fans[place];
    const std::string path = fmt::format("fans[{}]", place);
    const auto before = plan_.fans.begin() + static_cast<std::ptrdiff_t>(place);
    if (std::any_of(plan_.fans.begin(), before,
                    [&](const FanPlan& other) { return other.fanID == entry.fanID; })) {
      warn(path + ".fanID", fmt::format("fan {} is listed twice: this entry wins", entry.fanID));
    }
    if (!hardware::fankeys::isNameable(entry.fanID))
      warn(path + ".fanID", fmt::format("no machine has a fan {}", entry.fanID));
    std::visit(core::Visitor{
                   [](const FanControlModePlan::Automatic&) {},
                   [&](const FanControlModePlan::FixedRPM& fixed) {
                     if (fixed.rpm > 0) return;
                     warn(path + ".mode.fixedRPM._0",
                          "a fixed speed never stops a fan: it runs at its minimum");
                   },
                   [&](const FanControlModePlan::FixedPercent& fixed) {
                     inspectPercent(path + ".mode.fixedPercent._0", fixed.percent, entry.fanID);
                   },
                   [&](const FanControlModePlan::Curve& curve) {
                     inspectCurve(path + ".mode.curve._0", curve.curve, entry.fanID);
                   },
               },
               entry.mode.value);
  }

  void inspectPercent(const std::string& path, double percent, FanID fan) {
    warnUnlessPercent(path, percent);
    if (percent <= 0) warnIfNothingCools(path, fan);
  }

  void inspectCurve(const std::string& path, const FanCurve& curve, FanID fan) {
    if (curve.points.empty()) {
      warn(path + ".points", "a curve without points asks for 0 % at every temperature");
      return;
    }
    for (std::size_t place = 0; place < curve.points.size(); ++place) {
      warnUnlessPercent(fmt::format("{}.points[{}].percent", path, place), curve.points[place].percent);
    }
    inspectSlope(path, curve);
    if (isStoppedInTheHeat(curve)) warnIfNothingCools(path + ".points", fan);
  }

  void inspectSlope(const std::string& path, const FanCurve& curve) {
    std::vector<std::size_t> places(curve.points.size());
    for (std::size_t place = 0; place < places.size(); ++place)
      places[place] = place;
    std::stable_sort(places.begin(), places.end(), [&curve](std::size_t a, std::size_t b) {
      return curve.points[a].celsius < curve.points[b].celsius;
    });
    for (std::size_t next = 1; next < places.size(); ++next) {
      const CurvePoint& cooler = curve.points[places[next - 1]];
      const CurvePoint& warmer = curve.points[places[next]];
      if (warmer.percent >= cooler.percent) continue;
      warn(fmt::format("{}.points[{}].percent", path, places[next]),
           fmt::format("the curve falls as it gets warmer: {} % at {} °C, but {} % at {} °C", cooler.percent,
                       cooler.celsius, warmer.percent, warmer.celsius));
    }
  }

  void warnIfNothingCools(const std::string& path, FanID fan) {
    const auto cools = [fan](const FanRule& rule) { return coolsInTheHeat(rule, fan); };
    if (std::any_of(plan_.rules.begin(), plan_.rules.end(), cools)) return;
    warn(path,
         fmt::format("fan {} is asked for 0 % above {} °C, and no rule for the hottest sensor takes over",
                     fan, hotCelsius));
  }

  void inspectRule(std::size_t place) {
    const FanRule& rule = plan_.rules[place];
    const std::string path = fmt::format("rules[{}]", place);
    const auto before = plan_.rules.begin() + static_cast<std::ptrdiff_t>(place);
    if (std::any_of(plan_.rules.begin(), before, [&](const FanRule& other) { return other.id == rule.id; })) {
      warn(path + ".id", "another rule has the same id: the two fire and let go as one");
    }
    if (rule.releaseBelowCelsius > rule.thresholdCelsius) {
      warn(path + ".releaseBelowCelsius",
           fmt::format("lets go below {} °C, which is above its threshold of {} °C", rule.releaseBelowCelsius,
                       rule.thresholdCelsius));
    }
    warnUnlessPercent(path + ".targetPercent", rule.targetPercent);
    if (rule.enabled && rule.targetPercent <= 0)
      warn(path + ".targetPercent", "asks for 0 % in the heat, whatever the fans' own modes ask for");
    if (rule.thresholdCelsius >= ceilingCelsius)
      warn(path + ".thresholdCelsius",
           fmt::format("never fires: at {} °C every fan is given back", ceilingCelsius));
    const auto* one = std::get_if<RuleFanTarget::OneFan>(&rule.fanTarget.value);
    if (one != nullptr && !isListed(one->fan)) {
      warn(path + ".fanTarget.fan._0",
           fmt::format("the plan does not list fan {}: the rule does nothing", one->fan));
    }
  }

  [[nodiscard]] bool isListed(FanID fan) const {
    return std::any_of(plan_.fans.begin(), plan_.fans.end(),
                       [fan](const FanPlan& entry) { return entry.fanID == fan; });
  }

  [[nodiscard]] bool holdsNothing() const {
    return std::all_of(plan_.fans.begin(), plan_.fans.end(),
                       [](const FanPlan& entry) { return entry.mode.isAutomatic(); });
  }

  void inspectTuning() {
    const double alpha = plan_.tuning.emaAlpha;
    if (!(alpha > 0 && alpha <= 1)) {
      warn("tuning.emaAlpha",
           fmt::format("{} lies outside 0 to 1, 0 excluded: temperatures are not followed", alpha));
    }
    const double step = plan_.tuning.maxDeltaRPMPerTick;
    if (!(step > 0))
      warn("tuning.maxDeltaRPMPerTick", fmt::format("{} keeps curves from changing any speed", step));
  }

  const FanControlPlan& plan_;
  std::vector<PlanWarning> warnings_;
};

} // namespace

std::vector<PlanWarning> planWarnings(const FanControlPlan& plan) {
  return Inspection(plan).run();
}

std::vector<PlanWarning> unknownSensors(const FanControlPlan& plan, const std::set<std::string>& known) {
  std::vector<PlanWarning> warnings;
  const auto look = [&](const std::optional<std::string>& sensor, std::string path) {
    if (sensor && !known.contains(*sensor)) {
      warnings.push_back({std::move(path), fmt::format("the sensor \"{}\" is not in the trace", *sensor)});
    }
  };
  for (std::size_t place = 0; place < plan.fans.size(); ++place) {
    const auto* curve = std::get_if<FanControlModePlan::Curve>(&plan.fans[place].mode.value);
    if (curve != nullptr)
      look(curve->curve.sourceSensorID, fmt::format("fans[{}].mode.curve._0.sourceSensorID", place));
  }
  for (std::size_t place = 0; place < plan.rules.size(); ++place) {
    look(plan.rules[place].sensorID, fmt::format("rules[{}].sensorID", place));
  }
  return warnings;
}

} // namespace ventolith::ctl
