// The curve editor's chart over a model that keeps a log, and the user's hand on it.
#pragma once

#include "ui/CurveChart.h"
#include "ui/kit/Controls.h"
#include "ui/state/CurveEditingFixture.h"

#include <QImage>
#include <QLineEdit>

#include <optional>
#include <utility>
#include <vector>

namespace ventolith::ui {

/// The chart of the curve that every fan begins with: 40° 15 %, 60° 40 %, 80° 75 %, 92° 100 %.
class CurveChartTest : public testing::Test {
protected:
  using Values = std::vector<std::pair<double, double>>;

  CurveChartTest() {
    model.reading.temps = {support::sensor("TCHP", 50)};
    stage.window.resize(768, 420);
    before = &stage.put<TextBox>();
    chart = &stage.put<CurveChart>();
    after = &stage.put<TextBox>();
    editing.onFirstAppear();
    chart->setEditing(editing);
    stage.show();
  }

  /// Something else that takes the keyboard.
  class TextBox final : public QLineEdit {
  public:
    explicit TextBox(const Theme&) {}
  };

  [[nodiscard]] QPoint at(double celsius, double percent) const {
    return chart->chart().position({.celsius = celsius, .percent = percent}).toPoint();
  }
  void press(double celsius, double percent) const {
    QTest::mousePress(chart, Qt::LeftButton, Qt::NoModifier, at(celsius, percent));
  }
  void move(double celsius, double percent) const { move(at(celsius, percent)); }
  void move(QPoint place) const {
    QMouseEvent event(QEvent::MouseMove, place, chart->mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(chart, &event);
  }
  void hover(double celsius, double percent) const {
    const QPoint place = at(celsius, percent);
    QMouseEvent event(QEvent::MouseMove, place, chart->mapToGlobal(place), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
    QApplication::sendEvent(chart, &event);
  }
  void letGo() const { QTest::mouseRelease(chart, Qt::LeftButton, Qt::NoModifier, chart->rect().center()); }
  void choose(double celsius, double percent) {
    press(celsius, percent);
    letGo();
    model.log.clear();
  }
  void key(Qt::Key key, bool isRepeat = false, Qt::KeyboardModifiers with = {}) const {
    QKeyEvent event(QEvent::KeyPress, key, with, QString(), isRepeat);
    QApplication::sendEvent(chart, &event);
  }
  void releaseKey(Qt::Key key, bool isRepeat = false, Qt::KeyboardModifiers with = {}) const {
    QKeyEvent event(QEvent::KeyRelease, key, with, QString(), isRepeat);
    QApplication::sendEvent(chart, &event);
  }
  void tap(Qt::Key which) const {
    key(which);
    releaseKey(which);
  }
  void focus() const { chart->setFocus(Qt::OtherFocusReason); }

  [[nodiscard]] Values values() const {
    Values pairs;
    for (const core::CurvePoint& point : editing.editingCurve().points)
      pairs.emplace_back(point.celsius, point.percent);
    return pairs;
  }
  [[nodiscard]] std::optional<std::size_t> chosen() const { return editing.selectedPlace(); }
  [[nodiscard]] QImage picture() const {
    QImage image(chart->size(), QImage::Format_ARGB32);
    chart->render(&image);
    return image;
  }
  void read(std::vector<core::TempSensor> temps) {
    model.reading.temps = std::move(temps);
    chart->refresh();
  }

  RecordingCurveModel model;
  CurveEditing editing{model};
  Stage stage; // Its chart goes before what it shows.
  QWidget* before = nullptr;
  QWidget* after = nullptr;
  CurveChart* chart = nullptr;
};

} // namespace ventolith::ui
