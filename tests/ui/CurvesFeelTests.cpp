// How the curve editor behaves: its size, the keyboard, and what it repaints.
#include "CurvesFixture.h"
#include "ui/CurveLiveLine.h"

#include <QAccessible>

namespace ventolith::ui {
namespace {

TEST_F(CurvesTest, TheChartIsAsHighAsTheWindowAllows) {
  beginAndShow();
  struct Case {
    int window;
    int chart;
  };
  for (const auto& [window, height] : {Case{640, 300}, Case{760, 342}, Case{1000, 420}}) {
    view->resize(900, window);
    turn();
    EXPECT_EQ(chart().height(), height);
  }
}

TEST_F(CurvesTest, NarrowContentPutsTheSlidersBelowEachOther) {
  beginAndShow();
  EXPECT_EQ(slider("Hysteresis").mapTo(view.get(), QPoint()).y(),
            slider("Response").mapTo(view.get(), QPoint()).y());
  view->resize(640, 900);
  turn();
  EXPECT_LT(slider("Hysteresis").mapTo(view.get(), QPoint()).y(),
            slider("Response").mapTo(view.get(), QPoint()).y());
}

TEST_F(CurvesTest, TheKeyboardGoesFromTopToBottom) {
  beginAndShow();
  activate(*view);
  select(60, 40); // "Delete Point" can be reached then.
  picker("Fan")->setFocus();
  QStringList names;
  for (int step = 0; step < 11; ++step) {
    QWidget* focused = QApplication::focusWidget();
    names << QAccessible::queryAccessibleInterface(focused)->text(QAccessible::Name);
    QTest::keyClick(focused, Qt::Key_Tab);
  }
  names.removeDuplicates(); // The chart has a stop for each further point.
  EXPECT_EQ(names,
            (QStringList{QStringLiteral("Fan"), QStringLiteral("Link fans"), QStringLiteral("Source sensor"),
                         QStringLiteral("Temperature to speed curve"), QStringLiteral("Add Point"),
                         QStringLiteral("Reset"), QStringLiteral("Save as Preset…"),
                         QStringLiteral("Hysteresis"), QStringLiteral("Response")}));
}

TEST_F(CurvesTest, AReadingThatChangesNothingHereRepaintsTheChartAlone) {
  beginAndShow();
  const PaintCount tuning(slider("Response"));
  const PaintCount button(buttonIn(*view, "Add Point"));
  const PaintCount sensor(*picker("Source sensor"));
  const PaintCount curve(chart());
  read(app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("TCHP", 52)}));
  EXPECT_GT(curve.count(), 0);
  EXPECT_EQ(tuning.count() + button.count() + sensor.count(), 0);
}

TEST_F(CurvesTest, AStepOfADragRepaintsTheChartAlone) {
  readings.next = app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("TCHP", 35)});
  beginAndShow();
  pressChart(60, 40);
  turn();
  const PaintCount all(*view);
  const PaintCount line(*view->findChild<CurveLiveLine*>());
  const PaintCount card(*chart().parentWidget());
  const PaintCount curve(chart());
  moveOnChart(60, 55);
  turn();
  EXPECT_EQ(curve.count(), 1);
  EXPECT_EQ(all.count() + card.count() + line.count(), 0);
}

TEST_F(CurvesTest, AHiddenScreenDoesNothingUntilItIsShown) {
  beginAndShow();
  view->hide();
  read(app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("TCHP", 77)}));
  EXPECT_FALSE(shows(*view, "Live: 77°C → 69%"));
  view->show();
  turn();
  EXPECT_TRUE(shows(*view, "Live: 77°C → 69%"));
}

} // namespace
} // namespace ventolith::ui
