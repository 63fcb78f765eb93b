#include "Controls.h"

#include "ui/kit/Stepper.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

using Wanted = std::vector<double>;

TEST(StepperRange, StepsFromAnyValueAndStopsAtTheBounds) {
  const struct {
    StepperRange range;
    double value;
    int direction;
    std::optional<double> next;
  } table[] = {
      {{0, 100, 5}, 80, 1, 85},    {{0, 100, 5}, 83, 1, 88},  {{0, 100, 5}, 97, 1, 100},
      {{0, 100, 5}, 3, -1, 0},     {{0, 100, 5}, 100, 1, {}}, {{0, 100, 5}, 0, -1, {}},
      {{0, 110, 1}, -1, 1, 0},     {{0, 110, 1}, -1, -1, {}}, {{0, 110, 1}, 200, 1, {}},
      {{0, 110, 1}, 200, -1, 110},
  };
  for (const auto& [range, value, direction, next] : table)
    EXPECT_EQ(range.stepped(value, direction), next) << value << " " << direction;
}

class StepperTest : public ::testing::Test {
protected:
  StepperTest() {
    auto made = std::make_unique<ManualPulse>();
    pulse = made.get();
    stepper = &stage.put<Stepper>(StepperSize::normal, nullptr, std::move(made));
    stepper->setRange({0, 100, 5});
    give(80);
    QObject::connect(stepper, &Stepper::valueWanted, [this](double value) {
      wanted.push_back(value);
      if (isGranted) give(value);
    });
    stage.show();
    stepper->setFocus(Qt::TabFocusReason);
  }

  void give(double value) { stepper->setValue(value, QStringLiteral("%1%").arg(value)); }
  void press(int direction) {
    QTest::mousePress(stepper, Qt::LeftButton, {}, stepper->arrow(direction).center());
  }
  void release() { QTest::mouseRelease(stepper, Qt::LeftButton, {}, stepper->arrow(1).center()); }

  Wanted wanted;
  bool isGranted = true;
  Stage stage;
  ManualPulse* pulse;
  Stepper* stepper;
};

TEST_F(StepperTest, ItsArrowsAreFifteenByTwentyTwo) {
  EXPECT_EQ((stepper->arrow(1) | stepper->arrow(-1)).size(), QSize(15, 22));
  EXPECT_EQ(stepper->sizeHint().height(), 22);
}

TEST_F(StepperTest, KeepsRoomForALongerLabel) {
  stepper->setRoomFor(QStringLiteral("100%"));
  const QSize before = stepper->sizeHint();
  give(100);
  EXPECT_EQ(stepper->sizeHint(), before);
}

TEST_F(StepperTest, KeepsItsLabelAtTheLeadingEdgeOfItsRoom) {
  const auto isInked = [&](int left) {
    const QImage picture = stepper->grab().toImage();
    for (int x = left; x < left + 8; ++x)
      for (int y = 0; y < picture.height(); ++y)
        if (picture.pixel(x, y) != picture.pixel(0, 0)) return true;
    return false;
  };
  stepper->setRoomFor(QStringLiteral("10000%"));
  stepper->resize(stepper->sizeHint());
  EXPECT_TRUE(isInked(0));
  EXPECT_FALSE(isInked(stepper->width() - Stepper::arrowsWidth - Stepper::gap - 10));
}

TEST_F(StepperTest, ArrowsAskForTheNextValue) {
  QTest::mouseClick(stepper, Qt::LeftButton, {}, stepper->arrow(1).center());
  QTest::mouseClick(stepper, Qt::LeftButton, {}, stepper->arrow(-1).center());
  EXPECT_EQ(wanted, (Wanted{85, 80}));
}

TEST_F(StepperTest, TheLabelIsNoArrow) {
  QTest::mouseClick(stepper, Qt::LeftButton, {}, QPoint(2, 10));
  EXPECT_TRUE(wanted.empty());
}

TEST_F(StepperTest, AWishThatIsNotGrantedLeavesTheValue) {
  isGranted = false;
  QTest::mouseClick(stepper, Qt::LeftButton, {}, stepper->arrow(1).center());
  QTest::mouseClick(stepper, Qt::LeftButton, {}, stepper->arrow(1).center());
  EXPECT_EQ(wanted, (Wanted{85, 85}));
  EXPECT_DOUBLE_EQ(stepper->value(), 80);
}

TEST_F(StepperTest, AValueThatIsGivenAsksForNothing) {
  give(12);
  EXPECT_TRUE(wanted.empty());
  EXPECT_EQ(stepper->label(), QStringLiteral("12%"));
}

TEST_F(StepperTest, AnArrowThatIsHeldRepeatsUntilItIsReleased) {
  press(-1);
  EXPECT_EQ(pulse->wait(), Stepper::firstRepeat);
  pulse->beat();
  EXPECT_EQ(pulse->wait(), Stepper::nextRepeat);
  pulse->beat();
  EXPECT_EQ(wanted, (Wanted{75, 70, 65}));
  release();
  EXPECT_FALSE(pulse->isWaiting());
}

TEST_F(StepperTest, RepeatingItStopsAtTheBound) {
  give(95);
  press(1);
  pulse->beat();
  pulse->beat();
  EXPECT_EQ(wanted, (Wanted{100}));
}

TEST_F(StepperTest, OffItsArrowThePointerHoldsTheRepeat) {
  press(1);
  const auto moveTo = [this](QPoint place) {
    QMouseEvent event(QEvent::MouseMove, place, stepper->mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(stepper, &event);
  };
  moveTo(QPoint(-30, 5));
  pulse->beat();
  EXPECT_EQ(wanted, (Wanted{85}));
  moveTo(stepper->arrow(1).center());
  pulse->beat();
  EXPECT_EQ(wanted, (Wanted{85, 90}));
}

TEST_F(StepperTest, AHoldEndsWhenItIsDisabledOrHidden) {
  press(1);
  stepper->setEnabled(false);
  EXPECT_FALSE(pulse->isWaiting());
  stepper->setEnabled(true);
  press(1);
  stepper->hide();
  EXPECT_FALSE(pulse->isWaiting());
}

TEST_F(StepperTest, KeysStepAndPageKeysTakeTen) {
  const struct {
    Qt::Key key;
    double value;
  } table[] = {{Qt::Key_Up, 45}, {Qt::Key_Down, 35}, {Qt::Key_PageUp, 90}, {Qt::Key_PageDown, 0}};
  for (const auto& [key, value] : table) {
    give(40);
    wanted.clear();
    QTest::keyClick(stepper, key);
    EXPECT_EQ(wanted, (Wanted{value}));
  }
}

TEST_F(StepperTest, TheWheelStepsWithTheFocusAlone) {
  turnWheel(*stepper, 240);
  EXPECT_EQ(wanted, (Wanted{90}));
  stepper->clearFocus();
  turnWheel(*stepper, 120);
  EXPECT_EQ(wanted.size(), 1U);
}

TEST_F(StepperTest, DisabledItTakesNoInput) {
  stepper->setEnabled(false);
  press(1);
  release();
  QTest::keyClick(stepper, Qt::Key_Up);
  turnWheel(*stepper, 120);
  stepper->want(3);
  EXPECT_TRUE(wanted.empty());
}

TEST_F(StepperTest, SpeaksAsASpinBoxWithItsLabelAsTheValue) {
  stepper->setAccessibleName(QStringLiteral("Target speed"));
  QAccessibleInterface& its = spoken(*stepper);
  EXPECT_EQ(its.role(), QAccessible::SpinBox);
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Target speed"));
  EXPECT_EQ(its.text(QAccessible::Value), QStringLiteral("80%"));
  EXPECT_DOUBLE_EQ(its.valueInterface()->currentValue().toDouble(), 80);
  EXPECT_DOUBLE_EQ(its.valueInterface()->minimumStepSize().toDouble(), 5);
}

TEST_F(StepperTest, AssistiveTechnologyAsksLikeAnArrow) {
  QAccessibleInterface& its = spoken(*stepper);
  its.valueInterface()->setCurrentValue(250.0);
  EXPECT_EQ(wanted, (Wanted{100}));
  its.actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
  EXPECT_EQ(wanted, (Wanted{100, 95}));
}

} // namespace
} // namespace ventolith::ui
