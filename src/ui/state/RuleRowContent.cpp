#include "ui/state/RuleRowContent.h"

#include "core/Visitor.h"
#include "ui/state/Numbers.h"

#include <QCoreApplication>

#include <algorithm>

namespace ventolith::ui {

namespace {

class Rules {
  Q_DECLARE_TR_FUNCTIONS(Rules)
};

QString sensorLabel(const std::optional<std::string>& sensorID, const core::SensorSnapshot& snapshot) {
  const auto isIt = [&](const core::TempSensor& sensor) { return sensor.id() == sensorID; };
  const auto found = std::find_if(snapshot.temps.begin(), snapshot.temps.end(), isIt);
  return found != snapshot.temps.end() ? utf8Text(found->name) : Rules::tr("Hottest");
}

QString fanLabel(core::FanID id, const core::SensorSnapshot& snapshot) {
  const auto isIt = [id](const core::Fan& fan) { return fan.id == id; };
  const auto found = std::find_if(snapshot.fans.begin(), snapshot.fans.end(), isIt);
  return found != snapshot.fans.end() ? utf8Text(found->name) : Rules::tr("Fan %1").arg(wholeText(id));
}

QString fanTargetLabel(const core::RuleFanTarget& target, const core::SensorSnapshot& snapshot) {
  using Target = core::RuleFanTarget;
  return std::visit(core::Visitor{
                        [](const Target::All&) { return Rules::tr("All fans"); },
                        [&](const Target::OneFan& one) { return fanLabel(one.fan, snapshot); },
                    },
                    target.value);
}

} // namespace

RuleRowContent ruleRowContent(const core::FanRule& rule, const core::SensorSnapshot& snapshot) {
  return {
      .sensor = sensorLabel(rule.sensorID, snapshot),
      .fanTarget = fanTargetLabel(rule.fanTarget, snapshot),
      .threshold = Rules::tr("%1°C").arg(cutText(rule.thresholdCelsius)),
      .targetPercent = Rules::tr("%1%").arg(cutText(rule.targetPercent)),
      .releaseBelow = Rules::tr("release below %1°C").arg(cutText(rule.releaseBelowCelsius)),
      .dwell = Rules::tr("dwell %1s").arg(cutText(rule.dwellSeconds)),
      .enabledWord = rule.enabled ? Rules::tr("enabled") : Rules::tr("disabled"),
      .isEnabled = rule.enabled,
  };
}

PickerContent<std::optional<std::string>> ruleSensorMenu(const core::FanRule& rule,
                                                         const core::SensorSnapshot& snapshot) {
  PickerContent<std::optional<std::string>> menu;
  menu.entries.push_back({std::nullopt, Rules::tr("Hottest")});
  for (const core::TempSensor& sensor : snapshot.temps)
    menu.entries.push_back({sensor.id(), utf8Text(sensor.name)});
  menu.select(rule.sensorID);
  return menu;
}

PickerContent<core::RuleFanTarget> ruleFanMenu(const core::FanRule& rule,
                                               const core::SensorSnapshot& snapshot) {
  PickerContent<core::RuleFanTarget> menu;
  menu.entries.push_back({core::RuleFanTarget::all(), Rules::tr("All fans")});
  for (const core::Fan& fan : snapshot.fans)
    menu.entries.push_back({core::RuleFanTarget::fan(fan.id), utf8Text(fan.name)});
  menu.select(rule.fanTarget);
  return menu;
}

RulesTexts rulesTexts() {
  return {
      .title = Rules::tr("Rules"),
      .subtitle = Rules::tr(
          "Rules layer on top of a curve- or manual-controlled fan. The first rule that matches wins."),
      .newRule = Rules::tr("New Rule"),
      .emptyHeading = Rules::tr("No rules yet"),
      .emptyText =
          Rules::tr("Rules catch spikes your curve doesn't cover — like a hot SSD during a big copy."),
      .createFirstRule = Rules::tr("Create your first rule"),
      .when = Rules::tr("WHEN"),
      .exceeds = Rules::tr("exceeds"),
      .thenSet = Rules::tr("THEN set"),
      .to = Rules::tr("to"),
      .deleteRule = Rules::tr("Delete Rule"),
  };
}

} // namespace ventolith::ui
