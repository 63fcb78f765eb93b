// The card that chooses presets by power source.
#pragma once

#include "core/FanControlPlan.h"
#include "ui/ModelView.h"
#include "ui/kit/Picker.h"
#include "ui/state/AutoSwitchContent.h"

#include <optional>
#include <vector>

QT_BEGIN_NAMESPACE
class QVBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

class Switch;
class TextLabel;

/// Every control hands the model a changed copy of its settings.
class AutoSwitchSection final : public ModelView {
  Q_OBJECT

public:
  using PresetChoice = ChoicePicker<std::optional<core::UUID>>;

  explicit AutoSwitchSection(const ViewContext& context, QWidget* parent = nullptr);

  [[nodiscard]] Switch& enabledSwitch() { return *enabledSwitch_; }
  [[nodiscard]] PresetChoice& onBattery() { return *onBattery_; }
  [[nodiscard]] PresetChoice& onAC() { return *onAC_; }
  [[nodiscard]] TextLabel& currently() { return *currently_; }
  [[nodiscard]] std::vector<QWidget*> tabStops();

protected:
  void refresh(Fields changed) override;

private:
  void makeControls(const AutoSwitchTexts& texts);
  void layOut(const AutoSwitchTexts& texts);
  void addRow(QVBoxLayout& column, const QString& text, QWidget* control, int height) const;

  // Children.
  Switch* enabledSwitch_;
  PresetChoice* onBattery_;
  PresetChoice* onAC_;
  TextLabel* currently_;
};

} // namespace ventolith::ui
