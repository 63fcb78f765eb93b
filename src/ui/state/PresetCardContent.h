// What a preset's card offers, and the words of the presets screen.
#pragma once

#include "core/FanControlPlan.h"

#include <QString>

#include <optional>
#include <string>

namespace ventolith::ui {

struct PresetCardContent {
  QString name;
  bool isActive = false; // Its stroke and its footer say so; it has no "Activate" then.
  bool canActivate = false;
  QString activateToolTip; // Empty while it can be activated.
  bool canDelete = false;
  QString deleteToolTip; // Empty while it can be deleted.

  bool operator==(const PresetCardContent&) const = default;
};

[[nodiscard]] PresetCardContent presetCardContent(const core::FanPreset& preset,
                                                  const std::optional<core::UUID>& activePresetID,
                                                  bool isHelperActive);

/// The name on a card while the user changes it. It goes to the model as it stands.
struct PresetRenaming {
  bool isEditingName = false;
  QString draftName;

  void begin(const core::FanPreset& preset);
  /// Ends the editing, and gives the name for the model.
  [[nodiscard]] std::string submit();
  void cancel() { isEditingName = false; }
};

struct PresetsTexts {
  QString introduction;
  QString namePlaceholder;
  QString duplicate;
  QString rename;
  QString deletePreset;
  QString more; // Spoken: the menu's button is an icon.
  QString active;
  QString activate;
  QString newFromCurrent;
  QString newFromCurrentCaption;
};
[[nodiscard]] PresetsTexts presetsTexts();

} // namespace ventolith::ui
