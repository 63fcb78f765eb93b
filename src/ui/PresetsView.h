// The screen "Presets": a card for each, one to make another, and what chooses among them by power source.
#pragma once

#include "ui/ModelView.h"

#include <vector>

namespace ventolith::ui {

class AdaptiveGrid;
class AutoSwitchSection;
class NewPresetCard;
class PresetCard;

/// A card follows its preset: it stays the same, with whatever the user does in it, wherever it moves.
class PresetsView final : public ModelView {
  Q_OBJECT

public:
  explicit PresetsView(const ViewContext& context, QWidget* parent = nullptr);

  [[nodiscard]] const std::vector<PresetCard*>& cards() const { return cards_; }
  [[nodiscard]] NewPresetCard& newPresetCard() { return *newPresetCard_; }
  [[nodiscard]] AutoSwitchSection& autoSwitch() { return *autoSwitch_; }

protected:
  void refresh(Fields changed) override;

private:
  void layOut();
  void takePresets();
  void remove(const std::vector<PresetCard*>& cards);
  void arrange();

  // Children.
  QWidget* gridArea_;
  AdaptiveGrid* columns_;
  NewPresetCard* newPresetCard_;
  AutoSwitchSection* autoSwitch_;
  std::vector<PresetCard*> cards_;
};

} // namespace ventolith::ui
