// The curve editor's screen over a model among doubles, and the user's hand on it.
#pragma once

#include "Finding.h"
#include "ViewFixture.h"
#include "ui/CurveChart.h"
#include "ui/CurvesView.h"
#include "ui/kit/CheckBox.h"
#include "ui/kit/Controls.h"
#include "ui/kit/Picker.h"
#include "ui/kit/Popover.h"
#include "ui/kit/Slider.h"
#include "ui/kit/TextField.h"

#include <QApplication>
#include <QTest>

#include <memory>
#include <utility>
#include <vector>

namespace ventolith::ui {

class CurvesTest : public ViewTest {
protected:
  using Values = std::vector<std::pair<double, double>>;

  ~CurvesTest() override { view = nullptr; }

  void show() {
    view = std::make_unique<CurvesView>(*context);
    view->resize(760, 900);
    view->show();
    turn();
  }
  void beginAndShow() {
    begin();
    show();
  }

  [[nodiscard]] CurveChart& chart() const { return *view->findChild<CurveChart*>(); }
  [[nodiscard]] const CurveEditing& editing() const { return *chart().editing(); }
  /// By its spoken name.
  [[nodiscard]] Picker* picker(const char* name) const {
    for (Picker* one : seenIn<Picker>(*view))
      if (one->accessibleName() == QString::fromUtf8(name)) return one;
    return nullptr;
  }
  [[nodiscard]] Slider& slider(const char* name) const {
    for (Slider* one : seenIn<Slider>(*view))
      if (one->accessibleName() == QString::fromUtf8(name)) return *one;
    throw std::logic_error("no such slider");
  }
  [[nodiscard]] Popover& popover() const { return *view->findChild<Popover*>(); }
  [[nodiscard]] TextField& nameField() const { return *popover().findChild<TextField*>(); }
  void choose(Picker& picker, int position) {
    picker.setCurrent(position);
    Q_EMIT picker.picked(position);
    turn();
  }
  void press(const char* title) {
    click(buttonIn(*view, title));
    turn();
  }

  [[nodiscard]] QPoint at(double celsius, double percent) const {
    return chart().chart().position({.celsius = celsius, .percent = percent}).toPoint();
  }
  void pressChart(double celsius, double percent) const {
    QTest::mousePress(&chart(), Qt::LeftButton, Qt::NoModifier, at(celsius, percent));
  }
  void moveOnChart(double celsius, double percent) const {
    const QPoint place = at(celsius, percent);
    QMouseEvent event(QEvent::MouseMove, place, chart().mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(&chart(), &event);
  }
  void letGoOfChart() const {
    QTest::mouseRelease(&chart(), Qt::LeftButton, Qt::NoModifier, chart().rect().center());
  }
  void select(double celsius, double percent) const {
    pressChart(celsius, percent);
    letGoOfChart();
  }

  [[nodiscard]] static Values valuesOf(const core::FanCurve& curve) {
    Values pairs;
    for (const core::CurvePoint& point : curve.points)
      pairs.emplace_back(point.celsius, point.percent);
    return pairs;
  }
  [[nodiscard]] Values edited() const { return valuesOf(editing().editingCurve()); }
  [[nodiscard]] Values planned(core::FanID fan) const {
    return valuesOf(model->curve(fan).value_or(core::FanCurve{}));
  }
  [[nodiscard]] std::vector<core::FanID> plannedFans() const {
    std::vector<core::FanID> fans;
    for (const auto& one : model->activePlan().fans)
      fans.push_back(one.fanID);
    return fans;
  }

  std::unique_ptr<CurvesView> view;
};

} // namespace ventolith::ui
