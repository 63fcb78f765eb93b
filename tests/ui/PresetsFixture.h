// The presets' screen over a model among doubles, and the user's hand on it.
#pragma once

#include "Finding.h"
#include "ViewFixture.h"
#include "app/PresetLibrary.h"
#include "kit/Controls.h"
#include "ui/AutoSwitchSection.h"
#include "ui/CurveThumbnail.h"
#include "ui/NewPresetCard.h"
#include "ui/PresetCard.h"
#include "ui/PresetsView.h"
#include "ui/kit/Badge.h"
#include "ui/kit/MenuButton.h"
#include "ui/kit/Switch.h"
#include "ui/kit/TextField.h"
#include "ui/kit/TextLabel.h"

#include <memory>
#include <string>
#include <vector>

namespace ventolith::ui {

namespace PresetLibrary = app::PresetLibrary;

class PresetsTest : public ViewTest {
protected:
  ~PresetsTest() override { view = nullptr; }

  void show() {
    view = std::make_unique<PresetsView>(*context);
    view->resize(800, 708);
    view->show();
    activate(*view);
    turn();
  }
  void beginAndShow() {
    begin();
    show();
  }
  void beginWithHelperAndShow() {
    beginWithHelper();
    show();
  }
  /// The last card is one of this then.
  core::FanPreset add(std::string name, core::FanControlPlan plan) {
    const core::FanPreset made = preset(std::move(name), std::move(plan));
    model->addOrUpdatePreset(made);
    turn();
    return made;
  }

  [[nodiscard]] PresetCard& card(std::size_t place) const { return *view->cards().at(place); }
  [[nodiscard]] PresetCard& lastCard() const { return *view->cards().back(); }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> all;
    for (PresetCard* one : view->cards())
      all.push_back(one->name().text().toStdString());
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

  std::unique_ptr<PresetsView> view;
};

} // namespace ventolith::ui
