#include "Pages.h"

#include "ui/CurveChart.h"
#include "ui/RootView.h"
#include "ui/SavePresetForm.h"
#include "ui/kit/Popover.h"
#include "ui/kit/TextField.h"

#include <QTest>

namespace ventolith::ui::pictures {

namespace {

constexpr QSize usual{1000, 880};

core::FanCurve fourPoints() {
  core::FanCurve curve;
  for (const auto& [celsius, percent] : {std::pair{40, 10}, {58, 35}, {75, 70}, {90, 100}})
    curve.points.push_back(
        {.celsius = static_cast<double>(celsius), .percent = static_cast<double>(percent)});
  return curve;
}

/// The editor with the second point chosen.
QWidget& chosen(Scene& scene) {
  scene.itsModel().setFanCurve(fourPoints(), {0});
  auto& root = scene.keep(std::make_unique<RootView>(scene.given()));
  root.setSection(AppSection::curves);
  root.setAttribute(Qt::WA_DontShowOnScreen);
  root.resize(usual);
  root.show(); // What is chosen is gone with each showing.
  scene.settleDown();
  auto& chart = *root.findChild<CurveChart*>();
  const QPoint second = chart.chart().position({.celsius = 58, .percent = 35}).toPoint();
  QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, second);
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
