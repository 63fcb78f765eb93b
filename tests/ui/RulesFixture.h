// The rules' screen over a model among doubles, and the user's hand on it.
#pragma once

#include "Finding.h"
#include "ViewFixture.h"
#include "kit/Controls.h"
#include "ui/RuleRow.h"
#include "ui/RulesList.h"
#include "ui/RulesView.h"
#include "ui/kit/MenuButton.h"
#include "ui/kit/Stepper.h"
#include "ui/kit/Switch.h"
#include "ui/kit/TextLabel.h"

#include <memory>
#include <string>
#include <vector>

namespace ventolith::ui {

/// A rule that is told from others by its threshold.
inline core::FanRule ruleAt(double threshold) {
  core::FanRule rule = support::rule();
  rule.thresholdCelsius = threshold;
  rule.releaseBelowCelsius = threshold - 5;
  rule.targetPercent = 80;
  rule.dwellSeconds = 3;
  return rule;
}

class RulesTest : public ViewTest {
protected:
  RulesTest() {
    readings.next = support::snapshot(
        {{.id = 0, .name = "Left"}, {.id = 1, .name = "Right"}},
        {{.key = "TCHP", .name = "CPU", .celsius = 60}, {.key = "TB0T", .name = "Battery", .celsius = 30}});
  }
  ~RulesTest() override { view = nullptr; }

  void show() {
    view = std::make_unique<RulesView>(*context);
    view->resize(760, 588);
    view->show();
    activate(*view);
    turn();
  }
  void showRules(std::vector<core::FanRule> rules) {
    begin();
    set(std::move(rules));
    show();
  }
  void set(std::vector<core::FanRule> rules) {
    model->setRules(std::move(rules));
    turn();
  }

  [[nodiscard]] const std::vector<core::FanRule>& rules() const { return model->activePlan().rules; }
  [[nodiscard]] std::vector<double> thresholds() const {
    std::vector<double> all;
    for (const core::FanRule& rule : rules())
      all.push_back(rule.thresholdCelsius);
    return all;
  }
  [[nodiscard]] RulesList& list() const { return view->rulesList(); }
  [[nodiscard]] RuleRow& row(std::size_t place) const { return *list().rows().at(place); }
  [[nodiscard]] std::vector<double> thresholdsShown() const {
    std::vector<double> all;
    for (const RuleRow* row : list().rows())
      all.push_back(row->rule().thresholdCelsius);
    return all;
  }

  static std::vector<std::string> titles(MenuButton& button) {
    std::vector<std::string> all;
    for (const MenuRow& row : button.menu().rows())
      all.push_back(row.title.toStdString());
    return all;
  }
  void choose(MenuButton& button, int row) {
    button.openMenu();
    MenuPanel& menu = button.menu();
    QTest::mouseClick(&menu, Qt::LeftButton, Qt::NoModifier,
                      menu.actionGeometry(menu.actionOf(row)).center());
    view->activateWindow(); // The test's platform leaves the keyboard with the menu that closed.
    turn();
  }

  std::unique_ptr<RulesView> view;
};

} // namespace ventolith::ui
