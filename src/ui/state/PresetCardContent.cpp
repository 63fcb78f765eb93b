#include "ui/state/PresetCardContent.h"

#include "ui/state/Numbers.h"

#include <QCoreApplication>

namespace ventolith::ui {

namespace {

class Presets {
  Q_DECLARE_TR_FUNCTIONS(Presets)
};

} // namespace

PresetCardContent presetCardContent(const core::FanPreset& preset,
                                    const std::optional<core::UUID>& activePresetID, bool isHelperActive) {
  PresetCardContent content{.name = utf8Text(preset.name),
                            .isActive = activePresetID == preset.id,
                            .canActivate = isHelperActive,
                            .canDelete = !preset.isBuiltIn};
  if (!content.canActivate) {
    content.activateToolTip =
        Presets::tr("Fan control isn't active yet — set up the helper to enable presets");
  }
  if (!content.canDelete) content.deleteToolTip = Presets::tr("Built-in presets can't be deleted");
  return content;
}

void PresetRenaming::begin(const core::FanPreset& preset) {
  draftName = utf8Text(preset.name);
  isEditingName = true;
}

std::string PresetRenaming::submit() {
  isEditingName = false;
  return draftName.toStdString();
}

PresetsTexts presetsTexts() {
  return {
      .introduction = Presets::tr("Presets bundle your curves and rules into one-tap modes. Switch anywhere "
                                  "— the tray, the toolbar, or here."),
      .namePlaceholder = Presets::tr("Name"),
      .duplicate = Presets::tr("Duplicate"),
      .rename = Presets::tr("Rename"),
      .deletePreset = Presets::tr("Delete"),
      .more = Presets::tr("More"),
      .active = Presets::tr("Active"),
      .activate = Presets::tr("Activate"),
      .newFromCurrent = Presets::tr("New from current"),
      .newFromCurrentCaption = Presets::tr("Saves whatever your fans are doing right now as a new preset."),
  };
}

} // namespace ventolith::ui
