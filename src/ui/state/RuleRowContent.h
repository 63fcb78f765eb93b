// What a row of the rules editor reads, and what its two menus list.
#pragma once

#include "core/FanControlPlan.h"
#include "core/SensorSnapshot.h"
#include "ui/state/PickerContent.h"

#include <QString>

#include <optional>
#include <string>

namespace ventolith::ui {

struct RuleRowContent {
  QString sensor; // A sensor that is gone reads as the hottest.
  QString fanTarget;
  QString threshold; // The numbers are cut, not rounded.
  QString targetPercent;
  QString releaseBelow;
  QString dwell;
  QString enabledWord;
  bool isEnabled = true; // One that is not is drawn faint; its controls stay usable.

  bool operator==(const RuleRowContent&) const = default;
};

[[nodiscard]] RuleRowContent ruleRowContent(const core::FanRule& rule, const core::SensorSnapshot& snapshot);

[[nodiscard]] PickerContent<std::optional<std::string>> ruleSensorMenu(const core::FanRule& rule,
                                                                       const core::SensorSnapshot& snapshot);
[[nodiscard]] PickerContent<core::RuleFanTarget> ruleFanMenu(const core::FanRule& rule,
                                                             const core::SensorSnapshot& snapshot);

struct RulesTexts {
  QString title;
  QString subtitle;
  QString newRule;
  QString emptyHeading;
  QString emptyText;
  QString createFirstRule;
  // Of a row.
  QString when;
  QString exceeds;
  QString thenSet;
  QString to;
  QString deleteRule; // Spoken: the button itself is an icon.
};
[[nodiscard]] RulesTexts rulesTexts();

} // namespace ventolith::ui
