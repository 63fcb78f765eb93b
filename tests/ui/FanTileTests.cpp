#include "Finding.h"
#include "ViewFixture.h"
#include "ui/FanTileView.h"

#include <QAccessible>

#include <memory>

namespace ventolith::ui {
namespace {

using core::ControlMode;
using core::FanControlModePlan;

class FanTileTest : public ViewTest {
protected:
  ~FanTileTest() override { tile = nullptr; }

  void show() {
    tile = std::make_unique<FanTileView>(*context, model->snapshot().fans.at(0));
    tile->resize(300, 230);
    tile->show();
    turn();
  }
  void showWith(FanControlModePlan mode) {
    store.savePlan(support::planOf(std::move(mode)));
    beginWithHelper();
    show();
  }
  /// The tile takes up what the model says, as its dashboard has it do.
  void refresh() {
    settle();
    tile->refresh(model->snapshot().fans.at(0));
  }

  [[nodiscard]] Slider& slider() const { return *tile->findChild<Slider*>(); }
  [[nodiscard]] QPoint knobAt(double rpm) const { return slider().geometryOf().knobCentre(rpm).toPoint(); }
  void press(double rpm) { QTest::mousePress(&slider(), Qt::LeftButton, Qt::NoModifier, knobAt(rpm)); }
  void dragTo(double rpm) {
    const QPointF place = knobAt(rpm);
    QMouseEvent move(QEvent::MouseMove, place, slider().mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(&slider(), &move);
  }
  void letGo() { QTest::mouseRelease(&slider(), Qt::LeftButton); }

  std::unique_ptr<FanTileView> tile;
};

TEST_F(FanTileTest, ShowsTheReadingOfItsFan) {
  readings.next =
      app::snapshot({{.id = 0, .name = "Fan 0", .currentRPM = 2310, .minRPM = 1250, .maxRPM = 6336}});
  beginWithHelper();
  show();
  for (const char* text : {"Fan 0", "Auto", "2310", "rpm", "1250–6336 rpm range",
                           "Automatic — firmware controlled", "Manual control", "21%"})
    EXPECT_TRUE(shows(*tile, text)) << text;
  EXPECT_NEAR(tile->findChild<Gauge*>()->fraction(), (2310.0 - 1250) / (6336 - 1250), 1e-9);
}

struct Enabled {
  const char* name;
  bool hasHelper;
  FanControlModePlan mode;
  bool slider;
  bool fullBlast;
};

class FanTileEnabledTest : public FanTileTest, public testing::WithParamInterface<Enabled> {};

TEST_P(FanTileEnabledTest, ControlsAreEnabledByHelperAndMode) {
  store.savePlan(support::planOf(GetParam().mode));
  if (GetParam().hasHelper)
    beginWithHelper();
  else
    begin();
  show();
  EXPECT_EQ(slider().isEnabled(), GetParam().slider);
  EXPECT_EQ(buttonIn(*tile, "Full Blast").isEnabled(), GetParam().fullBlast);
  EXPECT_TRUE(buttonIn(*tile, "Auto").isEnabled());
  EXPECT_EQ(shows(*tile, "Manual control (helper required)"), !GetParam().hasHelper);
}

INSTANTIATE_TEST_SUITE_P(
    All, FanTileEnabledTest,
    testing::Values(Enabled{"AutomaticWithHelper", true, FanControlModePlan::automatic(), true, true},
                    Enabled{"ManualWithHelper", true, FanControlModePlan::fixedRPM(3000), true, true},
                    Enabled{"FullBlastWithHelper", true, FanControlModePlan::fixedPercent(100), true, true},
                    Enabled{"CurveWithHelper", true, support::percentAsCelsius(), false, true},
                    Enabled{"AutomaticWithout", false, FanControlModePlan::automatic(), false, false},
                    Enabled{"ManualWithout", false, FanControlModePlan::fixedRPM(3000), false, false},
                    Enabled{"CurveWithout", false, support::percentAsCelsius(), false, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(FanTileTest, ADragIsShownAllTheWayAndSentOnceAtItsEnd) {
  showWith(FanControlModePlan::fixedRPM(5000));
  const std::size_t before = sentCount();
  press(5000);
  EXPECT_TRUE(model->draggingFans().contains(0));
  for (const double rpm : {4000.0, 3500.0, 3000.0}) {
    dragTo(rpm);
    refresh();
    EXPECT_NEAR(model->sliderValue(tile ? model->snapshot().fans.at(0) : core::Fan{}), rpm, 30);
    EXPECT_DOUBLE_EQ(slider().value(), model->fanSliderRPM().at(0));
  }
  EXPECT_TRUE(shows(*tile, qPrintable(QStringLiteral("Target: %1 rpm").arg(qRound(slider().value())))));
  EXPECT_EQ(sentCount(), before);
  const double chosen = slider().value();
  letGo();
  refresh();
  EXPECT_TRUE(model->draggingFans().empty());
  ASSERT_EQ(sentCount(), before + 1);
  EXPECT_EQ(sentPlans().back().fans.front().mode, FanControlModePlan::fixedRPM(std::round(chosen)));
}

TEST_F(FanTileTest, AReadingDuringADragMovesTheFiguresAndNotTheSlider) {
  showWith(FanControlModePlan::fixedRPM(5000));
  press(5000);
  dragTo(3000);
  const double held = slider().value();
  core::Fan fan = model->snapshot().fans.at(0);
  fan.currentRPM = 4321;
  tile->refresh(fan);
  EXPECT_TRUE(shows(*tile, "4321"));
  EXPECT_DOUBLE_EQ(slider().value(), held);
  EXPECT_NEAR(held, 3000, 30);
  letGo();
}

TEST_F(FanTileTest, NothingMovesBesideAKnobThatIsDragged) {
  showWith(FanControlModePlan::fixedRPM(5000));
  theme.force({.reduceMotion = false});
  core::Fan fan = model->snapshot().fans.at(0);
  press(5000);
  fan.currentRPM = fan.maxRPM;
  tile->refresh(fan);
  EXPECT_FALSE(tile->findChild<Gauge*>()->isMoving());
  EXPECT_DOUBLE_EQ(tile->findChild<Gauge*>()->shownFraction(), 1);
  letGo();
  fan.currentRPM = fan.minRPM;
  tile->refresh(fan);
  EXPECT_TRUE(tile->findChild<Gauge*>()->isMoving());
}

TEST_F(FanTileTest, ATileThatGoesDuringADragCommitsIt) {
  showWith(FanControlModePlan::fixedRPM(5000));
  press(5000);
  dragTo(3000);
  tile = nullptr;
  settle();
  EXPECT_TRUE(model->draggingFans().empty());
  EXPECT_EQ(model->mode(model->snapshot().fans.at(0)), ControlMode::manual);
}

TEST_F(FanTileTest, ACurveThatTakesTheFanDuringADragHasIt) {
  const app::FanPreset quiet = preset("Whisper", support::planOf(support::percentAsCelsius()));
  showWith(FanControlModePlan::fixedRPM(5000));
  model->addOrUpdatePreset(quiet);
  press(5000);
  dragTo(3000);
  model->activatePreset(quiet); // As a change of the power source does.
  refresh();
  EXPECT_FALSE(slider().isEnabled());
  EXPECT_TRUE(model->draggingFans().empty());
  letGo();
  refresh();
  EXPECT_EQ(model->activePresetID(), quiet.id);
  EXPECT_TRUE(shows(*tile, "Curve · Whisper"));
  EXPECT_DOUBLE_EQ(slider().value(), model->sliderValue(model->snapshot().fans.at(0)));
}

TEST_F(FanTileTest, AKeyHeldOnASliderThatIsDisabledHitsNothingElse) {
  showWith(FanControlModePlan::fixedRPM(5000));
  tile->activateWindow();
  slider().setFocus();
  QTest::keyPress(&slider(), Qt::Key_Right);
  model->applyPlan(support::planOf(support::percentAsCelsius()));
  refresh();
  EXPECT_EQ(tile->focusWidget(), nullptr);
  EXPECT_EQ(model->mode(model->snapshot().fans.at(0)), ControlMode::curve);
  model->setFanAutomatic(model->snapshot().fans.at(0));
  refresh();
  EXPECT_EQ(tile->focusWidget(), &slider());
}

TEST_F(FanTileTest, AHelperThatGoesDuringADragTakesNoSpeedWithIt) {
  showWith(FanControlModePlan::fixedRPM(5000));
  press(5000);
  dragTo(3000);
  setHelper(app::DaemonStatus::notRegistered);
  refresh();
  EXPECT_FALSE(slider().isEnabled());
  EXPECT_TRUE(model->draggingFans().empty());
  EXPECT_EQ(model->planMode(0), FanControlModePlan::fixedRPM(5000));
  refresh();
  EXPECT_DOUBLE_EQ(slider().value(), 5000);
}

TEST_F(FanTileTest, FullBlastHoldsTheFanAtItsMaximum) {
  showWith(FanControlModePlan::automatic());
  click(buttonIn(*tile, "Full Blast"));
  refresh();
  EXPECT_EQ(model->planMode(0), FanControlModePlan::fixedPercent(100));
  EXPECT_TRUE(shows(*tile, "Target: 8000 rpm"));
  EXPECT_TRUE(shows(*tile, "100%"));
}

TEST_F(FanTileTest, AutoGivesTheFanBackWithoutAHelperToo) {
  store.savePlan(support::planOf(FanControlModePlan::fixedRPM(3000)));
  begin();
  show();
  click(buttonIn(*tile, "Auto"));
  refresh();
  EXPECT_TRUE(model->activePlan().fans.empty());
  EXPECT_TRUE(shows(*tile, "Automatic — firmware controlled"));
}

TEST_F(FanTileTest, ACurveNamesTheActivePreset) {
  const app::FanPreset quiet = preset("Whisper", support::planOf(support::percentAsCelsius()));
  beginWithHelper();
  model->addOrUpdatePreset(quiet);
  model->activatePreset(quiet);
  show();
  EXPECT_TRUE(shows(*tile, "Curve · Whisper"));
}

TEST_F(FanTileTest, AStoppedFanSaysSoWhileAPresetIsActive) {
  const app::FanPreset quiet = preset("Whisper", support::planOf(support::percentAsCelsius()));
  beginWithHelper();
  model->addOrUpdatePreset(quiet);
  model->activatePreset(quiet);
  show();
  controller().states.yield({.stoppedFans = std::vector<core::FanID>{0}});
  refresh();
  EXPECT_TRUE(shows(*tile, "Curve · fan stopped (0%)"));
}

TEST_F(FanTileTest, AFanWithoutARangeHasAUsableSlider) {
  readings.next = app::snapshot({app::fan(0, 3000, 3000)});
  beginWithHelper();
  show();
  EXPECT_EQ(slider().range(), (SliderRange{.minimum = 3000, .maximum = 3001}));
  EXPECT_TRUE(shows(*tile, "0%"));
}

TEST_F(FanTileTest, OnlyWhatChangedIsPaintedAgain) {
  showWith(FanControlModePlan::automatic());
  const PaintCount all(*tile);
  const PaintCount badge(*tile->findChild<Badge*>());
  const PaintCount button(buttonIn(*tile, "Auto"));
  refresh();
  turn();
  EXPECT_EQ(all.count(), 0);
  core::Fan fan = model->snapshot().fans.at(0);
  fan.currentRPM += 60;
  tile->refresh(fan);
  turn();
  EXPECT_GT(all.count(), 0); // Beneath its figures.
  EXPECT_EQ(badge.count(), 0);
  EXPECT_EQ(button.count(), 0);
}

TEST_F(FanTileTest, TheKeyboardGoesFromTheSliderToTheButtons) {
  showWith(FanControlModePlan::automatic());
  tile->activateWindow();
  slider().setFocus();
  std::vector<QWidget*> order{tile->focusWidget()};
  for (int step = 0; step < 2; ++step) {
    QTest::keyClick(tile->focusWidget(), Qt::Key_Tab);
    order.push_back(tile->focusWidget());
  }
  EXPECT_EQ(order,
            (std::vector<QWidget*>{&slider(), &buttonIn(*tile, "Full Blast"), &buttonIn(*tile, "Auto")}));
}

TEST_F(FanTileTest, AnArrowKeyIsOneDragOfAHundredth) {
  showWith(FanControlModePlan::fixedRPM(5000));
  const std::size_t before = sentCount();
  QTest::keyClick(&slider(), Qt::Key_Right);
  refresh();
  EXPECT_EQ(sentCount(), before + 1);
  EXPECT_EQ(model->planMode(0), FanControlModePlan::fixedRPM(5060));
}

TEST_F(FanTileTest, ControlsSayWhoseTheyAre) {
  showWith(FanControlModePlan::fixedRPM(5000));
  const auto said = [](QWidget& control, QAccessible::Text what) {
    return QAccessible::queryAccessibleInterface(&control)->text(what);
  };
  EXPECT_EQ(said(slider(), QAccessible::Name), QStringLiteral("Manual control"));
  EXPECT_EQ(said(slider(), QAccessible::Value), QStringLiteral("50%"));
  EXPECT_EQ(said(slider(), QAccessible::Description), QStringLiteral("Fan"));
  EXPECT_EQ(said(buttonIn(*tile, "Full Blast"), QAccessible::Description), QStringLiteral("Fan"));
  EXPECT_EQ(said(*tile, QAccessible::Name), QStringLiteral("Fan"));
}

} // namespace
} // namespace ventolith::ui
