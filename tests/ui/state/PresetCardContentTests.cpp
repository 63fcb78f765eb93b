#include "ui/state/PresetCardContent.h"

#include "ui/state/Text.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

using support::utf8;

const core::FanPreset own{.name = "Night"};
const core::FanPreset builtIn{.name = "Quiet", .isBuiltIn = true};

TEST(PresetCard, IsActiveOnlyForTheActivePreset) {
  EXPECT_TRUE(presetCardContent(own, own.id, true).isActive);
  EXPECT_FALSE(presetCardContent(own, builtIn.id, true).isActive);
  EXPECT_FALSE(presetCardContent(own, std::nullopt, true).isActive);
}

TEST(PresetCard, ActivatesOnlyWithAHelperAndSaysWhy) {
  const PresetCardContent with = presetCardContent(own, std::nullopt, true);
  EXPECT_TRUE(with.canActivate);
  EXPECT_TRUE(with.activateToolTip.isEmpty());
  const PresetCardContent without = presetCardContent(own, std::nullopt, false);
  EXPECT_FALSE(without.canActivate);
  EXPECT_EQ(utf8(without.activateToolTip),
            "Fan control isn't active yet — set up the helper to enable presets");
}

TEST(PresetCard, BuiltInPresetCannotBeDeletedAndAloneSaysSo) {
  for (const bool isHelperActive : {false, true}) {
    const PresetCardContent fixed = presetCardContent(builtIn, std::nullopt, isHelperActive);
    EXPECT_FALSE(fixed.canDelete);
    EXPECT_EQ(utf8(fixed.deleteToolTip), "Built-in presets can't be deleted");
    const PresetCardContent free = presetCardContent(own, std::nullopt, isHelperActive);
    EXPECT_TRUE(free.canDelete);
    EXPECT_TRUE(free.deleteToolTip.isEmpty());
  }
}

TEST(PresetCard, ShowsTheName) {
  EXPECT_EQ(utf8(presetCardContent(own, std::nullopt, true).name), "Night");
}

TEST(PresetRenaming, BeginsWithTheName) {
  PresetRenaming renaming;
  EXPECT_FALSE(renaming.isEditingName);
  renaming.begin(builtIn);
  EXPECT_TRUE(renaming.isEditingName);
  EXPECT_EQ(utf8(renaming.draftName), "Quiet");
}

TEST(PresetRenaming, SubmitsTheTextAsItStands) {
  PresetRenaming renaming;
  renaming.begin(own);
  renaming.draftName = QStringLiteral("  Späte Nacht ");
  EXPECT_EQ(renaming.submit(), "  Späte Nacht ");
  EXPECT_FALSE(renaming.isEditingName);
}

TEST(PresetRenaming, CancellingEndsTheEditing) {
  PresetRenaming renaming;
  renaming.begin(own);
  renaming.cancel();
  EXPECT_FALSE(renaming.isEditingName);
}

TEST(Presets, ScreenKeepsItsWords) {
  const PresetsTexts texts = presetsTexts();
  const std::pair<QString, const char*> rows[] = {
      {texts.introduction,
       "Presets bundle your curves and rules into one-tap modes. Switch anywhere — the tray, "
       "the toolbar, or here."},
      {texts.namePlaceholder, "Name"},
      {texts.duplicate, "Duplicate"},
      {texts.rename, "Rename"},
      {texts.deletePreset, "Delete"},
      {texts.more, "More"},
      {texts.active, "Active"},
      {texts.activate, "Activate"},
      {texts.newFromCurrent, "New from current"},
      {texts.newFromCurrentCaption, "Saves whatever your fans are doing right now as a new preset."},
  };
  for (const auto& [shown, expected] : rows)
    EXPECT_EQ(utf8(shown), expected);
}

} // namespace
} // namespace ventolith::ui
