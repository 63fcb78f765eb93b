#include "Controls.h"

#include "ui/kit/Slider.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ventolith::ui {
namespace {

using Said = std::vector<std::string>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(SliderRange, AdmitsWhatTheStepsAllow) {
  const struct {
    SliderRange range;
    double value, admitted;
  } table[] = {
      {{0, 6, 0.5}, 2.1, 2},     {{0, 6, 0.5}, 2.3, 2.5},         {{0, 6, 0.5}, -1, 0}, {{0, 6, 0.5}, 7, 6},
      {{0, 1, 0}, 0.337, 0.337}, {{1000, 6000, 0}, 6000.5, 6000}, {{0, 10, 4}, 9, 8},   {{0, 10, 4}, 10, 10},
      {{5, 5, 0}, 9, 5},         {{0, 1, 0}, notANumber, 0},      {{1, 4, 2}, 2.1, 3},
  };
  for (const auto& [range, value, admitted] : table)
    EXPECT_DOUBLE_EQ(range.admitted(value), admitted) << value;
}

TEST(SliderGeometry, TheKnobTravelsFromEightToEightBeforeTheEnd) {
  const SliderGeometry it{{1000, 5000, 0}, 216, false};
  EXPECT_EQ(it.knobCentre(1000), QPointF(8, 9));
  EXPECT_EQ(it.knobCentre(3000), QPointF(108, 9));
  EXPECT_EQ(it.knobCentre(5000), QPointF(208, 9));
  EXPECT_EQ(it.track(), QRectF(0, 7, 216, 4));
  EXPECT_EQ(it.fill(3000), QRectF(0, 7, 108, 4));
}

TEST(SliderGeometry, PixelsAndValuesMapBackAndForth) {
  for (const bool isMirrored : {false, true}) {
    const SliderGeometry it{{1250, 6336, 0}, 331, isMirrored};
    for (const double value : {1250.0, 1251.0, 2310.0, 5921.5, 6336.0})
      EXPECT_NEAR(it.valueAt(it.knobCentre(value).x()), value, 1e-9);
  }
}

TEST(SliderGeometry, BeyondTheEndsAreTheBounds) {
  const SliderGeometry it{{10, 20, 0}, 100, false};
  EXPECT_DOUBLE_EQ(it.valueAt(-50), 10);
  EXPECT_DOUBLE_EQ(it.valueAt(4), 10);
  EXPECT_DOUBLE_EQ(it.valueAt(500), 20);
}

TEST(SliderGeometry, NothingToTravelIsTheMinimum) {
  const SliderGeometry narrow{{10, 20, 0}, 12, false};
  EXPECT_DOUBLE_EQ(narrow.valueAt(6), 10);
  const SliderGeometry empty{{10, 10, 0}, 100, false};
  EXPECT_DOUBLE_EQ(empty.fraction(10), 0);
  EXPECT_DOUBLE_EQ(empty.valueAt(50), 10);
  EXPECT_EQ(empty.knobCentre(notANumber), QPointF(8, 9));
}

TEST(SliderGeometry, MirroredItFillsFromTheRight) {
  const SliderGeometry it{{0, 4, 0}, 216, true};
  EXPECT_EQ(it.knobCentre(1), QPointF(158, 9));
  EXPECT_EQ(it.fill(1), QRectF(158, 7, 58, 4));
}

TEST(SliderGeometry, EveryStepHasATickBelowItsKnob) {
  const SliderGeometry it{{0, 6, 0.5}, 136, false};
  const auto ticks = it.ticks();
  ASSERT_EQ(ticks.size(), 13U);
  EXPECT_DOUBLE_EQ(ticks.front(), 8);
  EXPECT_DOUBLE_EQ(ticks[4], it.knobCentre(2).x());
  EXPECT_DOUBLE_EQ(ticks.back(), 128);
}

TEST(SliderGeometry, TicksThatWouldTouchAreLeftOut) {
  EXPECT_TRUE((SliderGeometry{{0, 6, 0.5}, 40, false}).ticks().empty());
  EXPECT_TRUE((SliderGeometry{{0, 1e12, 1e-6}, 400, false}).ticks().empty());
  EXPECT_TRUE((SliderGeometry{{0, 6, 0}, 400, false}).ticks().empty());
}

class SliderTest : public ::testing::Test {
protected:
  SliderTest() {
    auto made = std::make_unique<ManualPulse>();
    pulse = made.get();
    slider = &stage.put<Slider>(nullptr, std::move(made));
    slider->setFixedWidth(216);
    slider->setRange({0, 100, 0});
    slider->setValue(50);
    QObject::connect(slider, &Slider::pressBegan, [this] { said.emplace_back("began"); });
    QObject::connect(slider, &Slider::valueChanged,
                     [this](double value) { said.push_back(QString::number(value).toStdString()); });
    QObject::connect(slider, &Slider::pressEnded, [this] { said.emplace_back("ended"); });
    QObject::connect(slider, &Slider::pressAbandoned, [this] { said.emplace_back("abandoned"); });
    stage.show();
    slider->setFocus(Qt::TabFocusReason);
  }

  void press(int x) { QTest::mousePress(slider, Qt::LeftButton, {}, QPoint(x, 9)); }
  void drag(int x) {
    QMouseEvent event(QEvent::MouseMove, QPointF(x, 9), slider->mapToGlobal(QPointF(x, 9)), Qt::NoButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(slider, &event);
  }
  void release(int x) { QTest::mouseRelease(slider, Qt::LeftButton, {}, QPoint(x, 9)); }
  void repeat(int key) {
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, QString(), true);
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(slider, &up);
    QApplication::sendEvent(slider, &down);
  }

  Said said; // Outlives the stage: the slider's end may end a press.
  Stage stage;
  ManualPulse* pulse;
  Slider* slider;
};

TEST_F(SliderTest, IsAsHighAsTheDesignSays) {
  EXPECT_EQ(slider->sizeHint().height(), 18);
  slider->setRange({0, 6, 0.5});
  EXPECT_EQ(slider->sizeHint().height(), 25);
}

TEST_F(SliderTest, ADragIsOnePress) {
  press(108);
  drag(128);
  drag(148);
  release(148);
  EXPECT_EQ(said, (Said{"began", "50", "60", "70", "ended"}));
  EXPECT_DOUBLE_EQ(slider->value(), 70);
}

TEST_F(SliderTest, APressOnTheTrackBringsTheKnobThere) {
  press(28);
  EXPECT_EQ(said, (Said{"began", "10"}));
}

TEST_F(SliderTest, AKnobHeldAtItsEdgeDoesNotJump) {
  press(112);
  drag(132);
  EXPECT_EQ(said, (Said{"began", "50", "60"}));
}

TEST_F(SliderTest, AClickOnTheKnobSaysItsValueOnce) {
  press(108);
  release(108);
  EXPECT_EQ(said, (Said{"began", "50", "ended"}));
}

TEST_F(SliderTest, ADragWithinOneStepSaysNothingNew) {
  slider->setRange({0, 100, 25});
  press(108);
  drag(112);
  drag(148);
  drag(150);
  release(150);
  EXPECT_EQ(said, (Said{"began", "50", "75", "ended"}));
}

TEST_F(SliderTest, OtherButtonsDoNotPress) {
  QTest::mouseClick(slider, Qt::RightButton, {}, QPoint(28, 9));
  EXPECT_TRUE(said.empty());
}

TEST_F(SliderTest, AValueThatIsGivenIsShownWithoutASignal) {
  slider->setValue(80);
  EXPECT_DOUBLE_EQ(slider->value(), 80);
  slider->setValue(1000);
  EXPECT_DOUBLE_EQ(slider->value(), 100);
  slider->setRange({0, 60, 0});
  EXPECT_DOUBLE_EQ(slider->value(), 60);
  EXPECT_TRUE(said.empty());
}

TEST_F(SliderTest, AValueThatIsGivenDuringADragDoesNotFightIt) {
  press(108);
  drag(148);
  slider->setValue(5);
  EXPECT_DOUBLE_EQ(slider->value(), 70);
  drag(150);
  EXPECT_EQ(said.back(), "71");
  release(150);
  slider->setValue(5);
  EXPECT_DOUBLE_EQ(slider->value(), 5);
}

TEST_F(SliderTest, KeysMoveByTheirSteps) {
  const struct {
    Qt::Key key;
    const char* value;
  } table[] = {{Qt::Key_Right, "51"},  {Qt::Key_Left, "49"},     {Qt::Key_Up, "51"},  {Qt::Key_Down, "49"},
               {Qt::Key_PageUp, "60"}, {Qt::Key_PageDown, "40"}, {Qt::Key_Home, "0"}, {Qt::Key_End, "100"}};
  for (const auto& [key, value] : table) {
    slider->setValue(50);
    said.clear();
    QTest::keyClick(slider, key);
    EXPECT_EQ(said, (Said{"began", value, "ended"})) << value;
  }
}

TEST_F(SliderTest, SteppedItMovesByTheStepAndElseByTheGivenOne) {
  EXPECT_DOUBLE_EQ(slider->keyStep(), 1);
  slider->setKeyStep(25);
  EXPECT_DOUBLE_EQ(slider->keyStep(), 25);
  slider->setRange({0, 6, 0.5});
  EXPECT_DOUBLE_EQ(slider->keyStep(), 0.5);
}

TEST_F(SliderTest, AHeldKeyIsOnePress) {
  QTest::keyPress(slider, Qt::Key_Right);
  repeat(Qt::Key_Right);
  repeat(Qt::Key_Right);
  EXPECT_EQ(said, (Said{"began", "51", "52", "53"}));
  QTest::keyRelease(slider, Qt::Key_Right);
  EXPECT_EQ(said.back(), "ended");
}

TEST_F(SliderTest, ASecondKeyIsASecondPress) {
  QTest::keyPress(slider, Qt::Key_Right);
  QTest::keyPress(slider, Qt::Key_Left);
  QTest::keyRelease(slider, Qt::Key_Right);
  QTest::keyRelease(slider, Qt::Key_Left);
  EXPECT_EQ(said, (Said{"began", "51", "ended", "began", "50", "ended"}));
}

TEST_F(SliderTest, AKeyDuringADragDoesNothing) {
  press(108);
  QTest::keyClick(slider, Qt::Key_End);
  EXPECT_EQ(said, (Said{"began", "50"}));
}

TEST_F(SliderTest, ABurstOfTheWheelIsOnePress) {
  turnWheel(*slider, 120);
  turnWheel(*slider, 240);
  EXPECT_EQ(said, (Said{"began", "51", "53"}));
  ASSERT_TRUE(pulse->isWaiting());
  EXPECT_EQ(pulse->wait(), Slider::wheelRest);
  pulse->beat();
  EXPECT_EQ(said, (Said{"began", "51", "53", "ended"}));
  EXPECT_FALSE(pulse->isWaiting());
}

TEST_F(SliderTest, FractionsOfANotchAddUp) {
  turnWheel(*slider, 50);
  turnWheel(*slider, 50);
  EXPECT_TRUE(said.empty());
  EXPECT_FALSE(pulse->isWaiting());
  turnWheel(*slider, 50);
  EXPECT_EQ(said, (Said{"began", "51"}));
}

TEST_F(SliderTest, WithoutTheFocusTheWheelIsLeftToTheScreen) {
  slider->clearFocus();
  const QPointF place(10, 9);
  QWheelEvent event(place, place, QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(slider, &event);
  EXPECT_FALSE(event.isAccepted());
  EXPECT_TRUE(said.empty());
}

TEST_F(SliderTest, APressIsEndedOnceHoweverItIsTaken) {
  const struct {
    const char* name;
    std::function<void()> take;
  } table[] = {{"hidden", [this] { slider->hide(); }},
               {"without the keyboard", [this] { slider->clearFocus(); }}};
  for (const auto& [name, take] : table) {
    slider->show();
    slider->setFocus();
    said.clear();
    press(108);
    take();
    EXPECT_EQ(said, (Said{"began", "50", "ended"})) << name;
    release(108);
    EXPECT_EQ(said.size(), 3U) << name;
  }
}

TEST_F(SliderTest, APressThatADisabledSliderTakesIsAbandonedWhateverHeldIt) {
  const struct {
    const char* name;
    std::function<void()> hold, letGo;
    const char* value;
  } table[] = {
      {"pointer", [this] { press(108); }, [this] { release(108); }, "50"},
      {"key", [this] { QTest::keyPress(slider, Qt::Key_Right); },
       [this] { QTest::keyRelease(slider, Qt::Key_Right); }, "51"},
      {"wheel", [this] { turnWheel(*slider, 120); }, [this] { pulse->beat(); }, "51"},
  };
  for (const auto& [name, hold, letGo, value] : table) {
    slider->setEnabled(true);
    slider->setFocus();
    slider->setValue(50);
    said.clear();
    hold();
    slider->setEnabled(false);
    EXPECT_EQ(said, (Said{"began", value, "abandoned"})) << name;
    letGo();
    EXPECT_EQ(said.size(), 3U) << name;
  }
}

TEST_F(SliderTest, DisabledItTakesNoInput) {
  slider->setEnabled(false);
  press(20);
  release(20);
  QTest::keyClick(slider, Qt::Key_End);
  turnWheel(*slider, 120);
  slider->slideTo(3);
  EXPECT_TRUE(said.empty());
  EXPECT_DOUBLE_EQ(slider->value(), 50);
}

TEST_F(SliderTest, DisabledItsFillIsGrey) {
  const QPoint filled(20, 9);
  EXPECT_EQ(slider->grab().toImage().pixelColor(filled), stage.theme.palette().accentGraphic);
  slider->setEnabled(false);
  const QColor grey = slider->grab().toImage().pixelColor(filled);
  EXPECT_LT(std::abs(grey.saturation() - stage.theme.palette().tertiaryText.saturation()), 60);
  EXPECT_GT(grey.lightness(), stage.theme.palette().tertiaryText.lightness());
}

TEST_F(SliderTest, SpeaksItsNameValueAndHint) {
  slider->setAccessibleName(QStringLiteral("Fan 0 speed"));
  slider->setAccessibleDescription(QStringLiteral("Sets a manual fan speed when released"));
  slider->setSpokenText(QStringLiteral("50 percent"));
  QAccessibleInterface& its = spoken(*slider);
  EXPECT_EQ(its.role(), QAccessible::Slider);
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Fan 0 speed"));
  EXPECT_EQ(its.text(QAccessible::Description), QStringLiteral("Sets a manual fan speed when released"));
  EXPECT_EQ(its.text(QAccessible::Value), QStringLiteral("50 percent"));
  EXPECT_TRUE(its.state().focusable);
  EXPECT_FALSE(its.state().disabled);
  slider->setEnabled(false);
  EXPECT_TRUE(its.state().disabled);
}

TEST_F(SliderTest, AssistiveTechnologyReadsAndMovesTheValue) {
  slider->setRange({1000, 5000, 0});
  slider->setValue(2000);
  QAccessibleValueInterface& value = *spoken(*slider).valueInterface();
  EXPECT_DOUBLE_EQ(value.currentValue().toDouble(), 2000);
  EXPECT_DOUBLE_EQ(value.minimumValue().toDouble(), 1000);
  EXPECT_DOUBLE_EQ(value.maximumValue().toDouble(), 5000);
  EXPECT_DOUBLE_EQ(value.minimumStepSize().toDouble(), 40);
  value.setCurrentValue(3000.0);
  EXPECT_EQ(said, (Said{"began", "3000", "ended"}));
}

TEST_F(SliderTest, SpokenInPercentItMovesInPercentOfItsWay) {
  slider->setRange({1000, 5000, 0});
  slider->setValue(2010);
  slider->setSpoken(Slider::Spoken::percentOfTravel);
  QAccessibleInterface& its = spoken(*slider);
  EXPECT_DOUBLE_EQ(its.valueInterface()->currentValue().toDouble(), 25);
  EXPECT_DOUBLE_EQ(its.valueInterface()->maximumValue().toDouble(), 100);
  its.actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
  EXPECT_EQ(said, (Said{"began", "2040", "ended"}));
}

} // namespace
} // namespace ventolith::ui
