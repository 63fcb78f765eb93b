#include "ui/CurveChart.h"
#include "ui/CurveChartAccessibility.h"
#include "ui/kit/Controls.h"
#include "ui/state/CurveEditingFixture.h"

#include <QImage>
#include <QLineEdit>

#include <algorithm>

namespace ventolith::ui {
namespace {

using Values = std::vector<std::pair<double, double>>;

/// The chart of the curve that every fan begins with: 40° 15 %, 60° 40 %, 80° 75 %, 92° 100 %.
class CurveChartTest : public testing::Test {
protected:
  CurveChartTest() {
    model.reading.temps = {support::sensor("TCHP", 50)};
    stage.window.resize(768, 420);
    before = &stage.put<TextBox>();
    chart = &stage.put<CurveChart>();
    after = &stage.put<TextBox>();
    editing.appear();
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
  void key(Qt::Key key, bool isRepeat = false) const {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), isRepeat);
    QApplication::sendEvent(chart, &event);
  }
  void releaseKey(Qt::Key key, bool isRepeat = false) const {
    QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier, QString(), isRepeat);
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

TEST_F(CurveChartTest, APressTakesAPointAndTheDragMovesItInSteps) {
  press(60, 40);
  move(64.4, 57);
  EXPECT_EQ(chosen(), 1U);
  EXPECT_EQ(values()[1], std::pair(64.0, 55.0));
}

TEST_F(CurveChartTest, ADragSendsNothingBeforeItsEnd) {
  press(60, 40);
  for (int percent = 45; percent <= 70; percent += 5)
    move(60, percent);
  EXPECT_EQ(model.log, Log{});
  letGo();
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(model.sentCurve.points[1].percent, 70);
}

TEST_F(CurveChartTest, AClickOnEmptyGroundSendsTheCurveAgainAndKeepsTheChoice) {
  choose(60, 40);
  press(45, 90);
  letGo();
  EXPECT_EQ(chosen(), 1U);
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, ADragFromEmptyGroundTakesTheFirstPointThatItComesNear) {
  press(60, 80);
  EXPECT_EQ(chosen(), std::nullopt);
  move(61, 50);
  EXPECT_EQ(chosen(), 1U);
}

TEST_F(CurveChartTest, ADragBeyondThePlotEndsAtTheAxes) {
  press(40, 15);
  move(QPoint(-300, 2000));
  EXPECT_EQ(values()[0], std::pair(30.0, 0.0));
  letGo();
  press(92, 100);
  move(QPoint(5000, -2000));
  EXPECT_EQ(values()[3], std::pair(105.0, 100.0));
}

TEST_F(CurveChartTest, OtherButtonsDoNothing) {
  QTest::mouseClick(chart, Qt::RightButton, Qt::NoModifier, at(60, 40));
  EXPECT_EQ(chosen(), std::nullopt);
  EXPECT_EQ(model.log, Log{});
}

TEST_F(CurveChartTest, ADragThatIsHiddenAwayEndsAndIsKept) {
  press(60, 40);
  move(60, 60);
  chart->hide();
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(editing.draggingPointID(), std::nullopt);
}

TEST_F(CurveChartTest, TheHandIsOpenOverAPointAndClosedWhileItHolds) {
  hover(45, 90);
  EXPECT_EQ(chart->cursor().shape(), Qt::ArrowCursor);
  hover(60, 40);
  EXPECT_EQ(chart->cursor().shape(), Qt::OpenHandCursor);
  press(60, 40);
  EXPECT_EQ(chart->cursor().shape(), Qt::ClosedHandCursor);
  QTest::mouseRelease(chart, Qt::LeftButton, Qt::NoModifier, at(60, 40));
  EXPECT_EQ(chart->cursor().shape(), Qt::OpenHandCursor);
}

TEST_F(CurveChartTest, TellsOfEachChangeAndOfNoOther) {
  QSignalSpy edited(chart, &CurveChart::edited);
  press(60, 40); // Chooses.
  move(60.2, 41);
  EXPECT_EQ(edited.count(), 1);
  move(60, 45);
  EXPECT_EQ(edited.count(), 2);
}

// The keyboard

TEST_F(CurveChartTest, TabGoesFromPointToPointAndThenOn) {
  before->setFocus();
  for (std::size_t place = 0; place < 4; ++place) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(chart->hasFocus());
    EXPECT_EQ(chosen(), place);
  }
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_TRUE(after->hasFocus());
}

TEST_F(CurveChartTest, BacktabGoesTheOtherWay) {
  after->setFocus();
  for (const std::size_t place : {3U, 2U, 1U, 0U}) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(chosen(), place);
  }
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
  EXPECT_TRUE(before->hasFocus());
}

TEST_F(CurveChartTest, WhoComesWithTabFindsTheChosenPointAgain) {
  choose(80, 75);
  before->setFocus();
  QTest::keyClick(before, Qt::Key_Tab);
  EXPECT_EQ(chosen(), 2U);
}

TEST_F(CurveChartTest, ArrowsMoveTheChosenPointByOneStep) {
  struct Case {
    Qt::Key key;
    std::pair<double, double> expected;
  };
  for (const auto& [which, expected] : {Case{Qt::Key_Left, {59, 40}}, Case{Qt::Key_Right, {60, 40}},
                                        Case{Qt::Key_Up, {60, 45}}, Case{Qt::Key_Down, {60, 40}}}) {
    choose(values()[1].first, values()[1].second);
    focus();
    tap(which);
    EXPECT_EQ(values()[1], expected);
    EXPECT_EQ(model.log, Log{"curve for 0"});
  }
}

TEST_F(CurveChartTest, ArrowsStopWhereADragDoes) {
  choose(92, 100);
  focus();
  for (int step = 0; step < 30; ++step)
    key(Qt::Key_Left, step > 0);
  key(Qt::Key_Up);
  EXPECT_EQ(values()[3], std::pair(81.0, 100.0));
}

TEST_F(CurveChartTest, AHeldArrowIsOneGesture) {
  choose(60, 40);
  focus();
  key(Qt::Key_Right);
  for (int repeat = 0; repeat < 5; ++repeat) {
    releaseKey(Qt::Key_Right, true);
    key(Qt::Key_Right, true);
  }
  EXPECT_EQ(model.log, Log{});
  releaseKey(Qt::Key_Right);
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(model.sentCurve.points[1].celsius, 66);
}

TEST_F(CurveChartTest, AHeldArrowEndsWithTheFocus) {
  choose(60, 40);
  focus();
  key(Qt::Key_Up);
  after->setFocus();
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, AnArrowThatMovesNothingSendsNothing) {
  choose(92, 100);
  focus();
  tap(Qt::Key_Up);
  EXPECT_EQ(model.log, Log{});
}

TEST_F(CurveChartTest, TheFirstArrowChoosesAPoint) {
  focus();
  tap(Qt::Key_Right);
  EXPECT_EQ(chosen(), 0U);
  EXPECT_EQ(values()[0], std::pair(40.0, 15.0));
}

TEST_F(CurveChartTest, DeleteAndBackspaceTakeTheChosenPointAway) {
  choose(60, 40);
  focus();
  tap(Qt::Key_Delete);
  EXPECT_EQ(values(), (Values{{40, 15}, {80, 75}, {92, 100}}));
  choose(80, 75);
  tap(Qt::Key_Backspace);
  EXPECT_EQ(values(), (Values{{40, 15}, {92, 100}}));
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, DeleteLeavesTheEndsAlone) {
  choose(40, 15);
  focus();
  tap(Qt::Key_Delete);
  EXPECT_EQ(values().size(), 4U);
  EXPECT_EQ(model.log, Log{});
}

TEST_F(CurveChartTest, PlusAddsAPointAndChoosesIt) {
  focus();
  tap(Qt::Key_Plus);
  EXPECT_EQ(values()[1], std::pair(50.0, 27.5));
  EXPECT_EQ(chosen(), 1U);
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, KeysDoNothingWhileThePointerHolds) {
  press(60, 40);
  tap(Qt::Key_Delete);
  tap(Qt::Key_Up);
  EXPECT_EQ(values()[1], std::pair(60.0, 40.0));
  EXPECT_EQ(values().size(), 4U);
}

// What it looks like

TEST_F(CurveChartTest, ShowsLinePointsSafetyLineAndLivePointWhereTheirValuesAre) {
  const Palette& its = stage.theme.palette();
  const QImage shown = picture();
  EXPECT_EQ(shown.pixelColor(at(32, 15)), inPicture(its.chartLine));
  EXPECT_EQ(shown.pixelColor(at(60, 40)), inPicture(its.chartLine));
  EXPECT_EQ(shown.pixelColor(at(50, 27.5)), inPicture(its.success));
  int red = 0;
  for (int percent = 5; percent < 95; ++percent)
    red += shown.pixelColor(at(95, percent)).red() > shown.pixelColor(at(95, percent)).blue() + 60 ? 1 : 0;
  EXPECT_GT(red, 35); // Five of nine, here and there half a pixel.
  EXPECT_LT(red, 70);
}

TEST_F(CurveChartTest, TheHaloIsAroundTheChosenPointAlone) {
  const QColor ground = inPicture(stage.theme.palette().cardBackground);
  const QPoint beside = at(60, 40) + QPoint(-6, -6); // Within the halo, off the point and the line.
  EXPECT_EQ(picture().pixelColor(beside), ground);
  choose(60, 40);
  EXPECT_EQ(picture().pixelColor(beside), inPicture(composed(ground, stage.theme.palette().accentSoft)));
}

TEST_F(CurveChartTest, ThereIsNoLivePointWithoutAReading) {
  read({});
  EXPECT_EQ(chart->shownLivePoint(), std::nullopt);
  EXPECT_EQ(picture().pixelColor(at(50, 27.5)), inPicture(stage.theme.palette().chartLine));
}

TEST_F(CurveChartTest, AReadingBeyondTheAxisStandsAtItsEnd) {
  read({support::sensor("TCHP", 21)});
  EXPECT_EQ(picture().pixelColor(at(30, 15)), inPicture(stage.theme.palette().success));
}

TEST_F(CurveChartTest, TheLiveLabelLeavesTheSafetyLabelFree) {
  const auto inkAboveThePlot = [&] {
    const QRectF& plot = chart->chart().plot;
    const QRectF strip(plot.left() + 4, 0, plot.right() - plot.left(), plot.top() - 10);
    const QImage shown = picture();
    int danger = 0;
    for (int y = 0; y < static_cast<int>(strip.bottom()); ++y)
      for (int x = static_cast<int>(strip.left()); x < static_cast<int>(strip.right()); ++x)
        danger += shown.pixelColor(x, y).red() > shown.pixelColor(x, y).green() + 60 ? 1 : 0;
    return danger;
  };
  read({});
  const int whole = inkAboveThePlot();
  ASSERT_GT(whole, 0);
  for (const double celsius : {90.0, 94.0, 99.0, 110.0}) {
    read({support::sensor("TCHP", celsius)});
    EXPECT_EQ(inkAboveThePlot(), whole) << celsius;
  }
}

TEST_F(CurveChartTest, TheGroundFollowsTheLook) {
  const QPoint corner(1, 1);
  EXPECT_EQ(picture().pixelColor(corner), inPicture(Palette::of(Appearance::light).cardBackground));
  stage.theme.force({.appearance = Appearance::dark, .reduceMotion = true});
  EXPECT_EQ(picture().pixelColor(corner), inPicture(Palette::of(Appearance::dark).cardBackground));
}

TEST_F(CurveChartTest, TheLivePointGoesAlongTheCurveToANewReading) {
  stage.theme.force({.reduceMotion = false});
  read({support::sensor("TCHP", 70)});
  EXPECT_EQ(chart->liveMotion().duration(), 300);
  chart->liveMotion().setCurrentTime(120);
  const auto between = chart->shownLivePoint();
  ASSERT_TRUE(between);
  EXPECT_GT(between->celsius, 50);
  EXPECT_LT(between->celsius, 70);
  EXPECT_EQ(between->percent, editing.editingCurve().percent(between->celsius));
  chart->liveMotion().setCurrentTime(300);
  EXPECT_EQ(chart->shownLivePoint()->celsius, 70);
}

TEST_F(CurveChartTest, TheLivePointStandsAtOnceWhileAPointIsHeld) {
  stage.theme.force({.reduceMotion = false});
  press(60, 40);
  read({support::sensor("TCHP", 70)});
  EXPECT_EQ(chart->shownLivePoint()->celsius, 70);
  EXPECT_NE(chart->liveMotion().state(), QAbstractAnimation::Running);
}

TEST_F(CurveChartTest, TheFocusRingIsAroundTheHaloAndGoesWithIt) {
  before->setFocus();
  QTest::keyClick(before, Qt::Key_Tab);
  FocusRing* ring = nullptr;
  for (auto* one : stage.window.findChildren<QFocusFrame*>())
    ring = dynamic_cast<FocusRing*>(one);
  ASSERT_NE(ring, nullptr);
  EXPECT_LT((ring->geometry().center() - chart->mapTo(&stage.window, at(40, 15))).manhattanLength(), 4);
  tap(Qt::Key_Up);
  EXPECT_LT((ring->geometry().center() - chart->mapTo(&stage.window, at(40, 20))).manhattanLength(), 4);
}

// Assistive technology

TEST_F(CurveChartTest, IsAChartWhosePointsAreItsChildren) {
  QAccessibleInterface& its = spoken(*chart);
  EXPECT_EQ(its.role(), QAccessible::Chart);
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Temperature to speed curve"));
  EXPECT_EQ(its.text(QAccessible::Value), QStringLiteral("40°C, 15%; 60°C, 40%; 80°C, 75%; 92°C, 100%"));
  ASSERT_EQ(its.childCount(), 4);
  QAccessibleInterface* point = its.child(1);
  ASSERT_NE(point, nullptr);
  EXPECT_EQ(point->text(QAccessible::Name), QStringLiteral("Point 2 of 4"));
  EXPECT_EQ(point->text(QAccessible::Value), QStringLiteral("60°C, 40%"));
  EXPECT_EQ(point->parent(), &its);
  EXPECT_EQ(its.indexOfChild(point), 1);
  EXPECT_TRUE(point->rect().contains(chart->mapToGlobal(at(60, 40))));
  EXPECT_EQ(its.childAt(point->rect().center().x(), point->rect().center().y()), point);
}

TEST_F(CurveChartTest, TheChosenPointIsTheOneThatTheKeyboardSpeaksTo) {
  QAccessibleInterface& its = spoken(*chart);
  choose(80, 75);
  focus();
  EXPECT_EQ(its.focusChild(), its.child(2));
  EXPECT_TRUE(its.child(2)->state().focused);
  EXPECT_TRUE(its.child(2)->state().selected);
  EXPECT_FALSE(its.child(1)->state().selected);
}

TEST_F(CurveChartTest, AssistiveTechnologyChoosesAndMovesPoints) {
  QAccessibleInterface* point = spoken(*chart).child(1);
  ASSERT_NE(point, nullptr);
  point->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(chosen(), 1U);
  EXPECT_EQ(model.log, Log{});
  point->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
  EXPECT_EQ(values()[1], std::pair(60.0, 45.0));
  point->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
  EXPECT_EQ(values()[1], std::pair(60.0, 40.0));
  model.log.clear();
  point->valueInterface()->setCurrentValue(70);
  EXPECT_EQ(values()[1], std::pair(60.0, 70.0));
  EXPECT_EQ(point->valueInterface()->currentValue().toDouble(), 70);
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, APointThatIsGoneIsNoLongerValid) {
  QAccessibleInterface* last = spoken(*chart).child(3);
  ASSERT_NE(last, nullptr);
  choose(60, 40);
  focus();
  tap(Qt::Key_Delete);
  EXPECT_EQ(spoken(*chart).childCount(), 3);
  EXPECT_FALSE(last->isValid());
  EXPECT_EQ(last->text(QAccessible::Name), QString());
  last->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
  EXPECT_EQ(values(), (Values{{40, 15}, {80, 75}, {92, 100}}));
}

TEST(CurveChartChange, IsWhatAListenerWouldWantToKnow) {
  const ChartValue one{.celsius = 40, .percent = 15}, two{.celsius = 60, .percent = 40};
  const ChartValue higher{.celsius = 60, .percent = 45};
  const auto marks = [](std::vector<ChartValue> points, std::optional<ChartValue> selected) {
    return CurveChartMarks{.points = std::move(points), .selected = selected};
  };
  struct Case {
    CurveChartMarks before, now;
    ChartChange expected;
  };
  const std::vector<Case> cases{
      {marks({one, two}, two), marks({one, two}, two), ChartChange::nothing},
      {marks({one, two}, one), marks({one, two}, two), ChartChange::choice},
      {marks({one, two}, one), marks({one, two}, std::nullopt), ChartChange::choice},
      {marks({one, two}, two), marks({one, higher}, higher), ChartChange::value},
      {marks({one, two}, two), marks({one}, std::nullopt), ChartChange::number},
      {marks({one}, one), marks({one, two}, two), ChartChange::number},
  };
  for (const auto& [before, now, expected] : cases)
    EXPECT_EQ(changeBetween(before, now), expected);
}

} // namespace
} // namespace ventolith::ui
