// The tray of presets, in the toolbar and in the menu bar's panel: what its button says, and what it lists.
#pragma once

#include "core/FanControlPlan.h"

#include <QString>

#include <optional>
#include <variant>
#include <vector>

namespace ventolith::ui {

/// What the model says.
struct PresetMenuState {
  std::vector<core::FanPreset> presets;
  std::optional<core::UUID> activePresetID;
  core::FanControlPlan activePlan;
  bool canControlFans = false;
};

struct PresetMenuContent {
  struct ActivateAutomatic {
    bool operator==(const ActivateAutomatic&) const = default;
  };
  struct ActivateFullBlast {
    bool operator==(const ActivateFullBlast&) const = default;
  };
  struct ActivatePreset {
    core::FanPreset preset;
    bool operator==(const ActivatePreset&) const = default;
  };
  using Action = std::variant<ActivateAutomatic, ActivateFullBlast, ActivatePreset>;

  struct Row {
    QString title;
    QString symbol;
    bool isMarked = false; // Shows a check mark before its title; the icon stays.
    bool isEnabled = true;
    Action action;

    bool operator==(const Row&) const = default;
  };

  // The closed button.
  QString title;
  QString symbol;

  std::vector<Row> quickRows;
  std::vector<Row> presetRows; // After a divider, which is there only if they are.

  bool operator==(const PresetMenuContent&) const = default;
};

[[nodiscard]] PresetMenuContent presetMenuContent(const PresetMenuState& state);

/// What runs now, in a word: the active preset's name, or "Automatic" or "Custom" by the plan.
[[nodiscard]] QString runningNow(const std::optional<core::FanPreset>& activePreset,
                                 const core::FanControlPlan& activePlan);

} // namespace ventolith::ui
