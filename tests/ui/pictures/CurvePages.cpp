#include "Pages.h"

#include "ui/CurveChart.h"
#include "ui/CurveControlsRow.h"
#include "ui/RootView.h"
#include "ui/SavePresetForm.h"
#include "ui/kit/Picker.h"
#include "ui/kit/Popover.h"
#include "ui/kit/TextField.h"

namespace ventolith::ui::pictures {

namespace {

constexpr QSize usual{1000, 880};

/// The editor with the fan that has a curve of a preset, and its second point chosen. Nothing is sent: the
/// preset stays the active one.
QWidget& chosen(Scene& scene) {
  auto& root = scene.keep(std::make_unique<RootView>(scene.given()));
  root.setSection(AppSection::curves);
  root.setAttribute(Qt::WA_DontShowOnScreen);
  root.resize(usual);
  root.show(); // What is chosen is gone with each showing.
  scene.settleDown();
  auto& fan = *root.findChild<CurveControlsRow*>()->findChild<Picker*>();
  fan.setCurrent(1);
  Q_EMIT fan.picked(1);
  root.findChild<CurveChart*>()->choosePoint(1);
  return root;
}

QWidget& savePopover(Scene& scene) {
  auto& popover = scene.keep(std::make_unique<Popover>(scene.look(), nullptr));
  auto* form = new SavePresetForm(scene.look());
  form->begin(QStringLiteral("Custom"));
  popover.setContent(form);
  popover.setInitialFocus(form->field());
  return popover;
}

} // namespace

std::vector<Page> curvePages() {
  return {{.name = QStringLiteral("fan-curves-chosen"), .sizes = {usual}, .make = chosen},
          {.name = QStringLiteral("fan-curves-save"), .make = savePopover}};
}

} // namespace ventolith::ui::pictures
