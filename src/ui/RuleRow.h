// One rule as a sentence that is edited in place: WHEN Hottest exceeds 85°C THEN set All fans to 80%.
#pragma once

#include "core/FanControlPlan.h"
#include "ui/ModelView.h"
#include "ui/kit/ControlFeel.h"
#include "ui/kit/MenuPanel.h"
#include "ui/kit/Surface.h"
#include "ui/state/RuleRowContent.h"

#include <functional>
#include <vector>

QT_BEGIN_NAMESPACE
class QHBoxLayout;
class QVBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

class Button;
class Dot;
class MenuButton;
class Stepper;
class Switch;
class TextLabel;

/// A card that hands every edit to the model at once, and shows it at once. It takes the keyboard itself,
/// too, for the list to move it by. Whoever holds it tells it of what the model says (`refresh`).
class RuleRow final : public Surface {
  Q_OBJECT

public:
  RuleRow(const ViewContext& context, core::FanRule rule, QWidget* parent = nullptr);
  ~RuleRow() override;

  [[nodiscard]] const core::FanRule& rule() const { return rule_; }
  /// Shows that rule among the sensors and fans that there are now. Controls in use stay in use.
  void refresh(const core::FanRule& rule);

  // Its controls, in the order in which the keyboard comes by.
  [[nodiscard]] MenuButton& sensorMenu() { return *sensorMenu_; }
  [[nodiscard]] Stepper& thresholdStepper() { return *thresholdStepper_; }
  [[nodiscard]] MenuButton& fanMenu() { return *fanMenu_; }
  [[nodiscard]] Stepper& targetPercentStepper() { return *targetPercentStepper_; }
  [[nodiscard]] Stepper& releaseBelowStepper() { return *releaseBelowStepper_; }
  [[nodiscard]] Stepper& dwellStepper() { return *dwellStepper_; }
  [[nodiscard]] Switch& enabledToggle() { return *enabledToggle_; }
  [[nodiscard]] Button& deleteButton() { return *deleteButton_; }
  /// The row itself and its controls.
  [[nodiscard]] std::vector<QWidget*> tabStops();

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  using Edit = std::function<core::FanRule(core::FanRule rule)>;

  void makeControls();
  void layOut();
  [[nodiscard]] QVBoxLayout* primaryLines();
  [[nodiscard]] QHBoxLayout* secondaryLine();
  void connectControls();
  void edit(const Edit& change);
  void showContent(const RuleRowContent& content);
  void showDot();
  [[nodiscard]] std::vector<MenuRow> sensorRows();
  [[nodiscard]] std::vector<MenuRow> fanRows();

  const ViewContext& context_;
  core::FanRule rule_;
  RuleRowContent content_;
  RulesTexts texts_;
  PickerContent<std::optional<std::string>> sensors_; // What the menus listed when they opened.
  PickerContent<core::RuleFanTarget> fans_;

  // Children.
  MenuButton* sensorMenu_;
  Stepper* thresholdStepper_;
  MenuButton* fanMenu_;
  Stepper* targetPercentStepper_;
  Stepper* releaseBelowStepper_;
  Stepper* dwellStepper_;
  Switch* enabledToggle_;
  Dot* enabledDot_;
  TextLabel* enabledWord_;
  Button* deleteButton_;
  QWidget* veil_; // Makes a disabled rule faint.
  ControlFeel feel_;
};

} // namespace ventolith::ui
