#include "ui/FanControlBlock.h"

#include "Finding.h"
#include "ViewFixture.h"
#include "ui/kit/Badge.h"
#include "ui/kit/Slider.h"
#include "ui/kit/TextLabel.h"

#include <QAccessible>

#include <memory>

namespace ventolith::ui {
namespace {

using core::FanControlModePlan;
using core::FanControlPlan;

class FanControlBlockTest : public ViewTest {
protected:
  FanControlBlockTest() {
    readings.next =
        app::snapshot({{.id = 4, .name = "Left", .currentRPM = 2310, .minRPM = 2000, .maxRPM = 8000}});
  }
  ~FanControlBlockTest() override { block = nullptr; }

  void show() {
    block = std::make_unique<FanControlBlock>(*context, fan());
    block->resize(290, 48);
    block->show();
    turn();
  }
  void showWithHelper() {
    beginWithHelper();
    show();
  }
  void showPlan(FanControlModePlan mode) {
    store.savePlan({.fans = {{4, std::move(mode)}}});
    showWithHelper();
  }
  [[nodiscard]] core::Fan fan() const { return model->snapshot().fans.at(0); }
  void refresh() {
    turn();
    block->refresh(fan());
  }
  [[nodiscard]] Slider& slider() const { return *block->findChild<Slider*>(); }
  [[nodiscard]] Button& fullBlast() const { return *block->findChildren<Button*>().at(0); }
  [[nodiscard]] Button& automatic() const { return *block->findChildren<Button*>().at(1); }
  [[nodiscard]] FanControlPlan manual(double rpm) const {
    return {.fans = {{4, FanControlModePlan::fixedRPM(rpm)}}};
  }
  [[nodiscard]] QPoint knobAt(double rpm) const { return slider().geometryOf().knobCentre(rpm).toPoint(); }

  std::unique_ptr<FanControlBlock> block;
};

TEST_F(FanControlBlockTest, ShowsTheFanItsSpeedItsModeAndItsPercentage) {
  showWithHelper();
  EXPECT_EQ(textsIn(*block), (QStringList{QStringLiteral("Left"), QStringLiteral("2310 rpm"),
                                          QStringLiteral("Auto"), QStringLiteral("5%")}));
}

TEST_F(FanControlBlockTest, AFreshReadingIsShownInPlace) {
  showWithHelper();
  readings.next.fans[0].currentRPM = 5000;
  pass(5);
  refresh();
  EXPECT_TRUE(shows(*block, "5000 rpm"));
  EXPECT_TRUE(shows(*block, "50%"));
  EXPECT_DOUBLE_EQ(slider().value(), 5000);
}

TEST_F(FanControlBlockTest, TheSliderRunsThroughTheRangeOfTheFan) {
  showWithHelper();
  EXPECT_EQ(slider().range(), (SliderRange{.minimum = 2000, .maximum = 8000}));
}

TEST_F(FanControlBlockTest, WithoutAHelperNothingCanBePressed) {
  begin();
  show();
  EXPECT_FALSE(slider().isEnabled());
  EXPECT_FALSE(fullBlast().isEnabled());
  EXPECT_FALSE(automatic().isEnabled());
  EXPECT_EQ(automatic().toolTip().toStdString(), "Fan control isn't active yet");
}

TEST_F(FanControlBlockTest, WithAHelperEverythingCanBePressed) {
  showWithHelper();
  EXPECT_TRUE(slider().isEnabled());
  EXPECT_TRUE(fullBlast().isEnabled());
  EXPECT_TRUE(automatic().isEnabled());
  EXPECT_EQ(fullBlast().toolTip().toStdString(), "Full Blast");
  EXPECT_EQ(automatic().toolTip().toStdString(), "Restore automatic fan control");
}

TEST_F(FanControlBlockTest, APressOfTheSliderBeginsADrag) {
  showWithHelper();
  QTest::mousePress(&slider(), Qt::LeftButton, {}, knobAt(2310));
  EXPECT_EQ(model->draggingFans(), std::set<core::FanID>{4});
  EXPECT_EQ(sentCount(), 0U);
}

TEST_F(FanControlBlockTest, ADragIsPreviewedAndSendsNothing) {
  showWithHelper();
  QTest::mousePress(&slider(), Qt::LeftButton, {}, knobAt(2310));
  QTest::mouseMove(&slider(), knobAt(5000));
  refresh();
  EXPECT_NEAR(model->sliderValue(fan()), 5000, 40);
  EXPECT_TRUE(shows(*block, "50%"));
  EXPECT_EQ(sentCount(), 0U);
}

TEST_F(FanControlBlockTest, LettingGoSendsTheSpeed) {
  showWithHelper();
  QTest::mousePress(&slider(), Qt::LeftButton, {}, knobAt(2310));
  QTest::mouseMove(&slider(), knobAt(5000));
  QTest::mouseRelease(&slider(), Qt::LeftButton, {}, knobAt(5000));
  turn();
  EXPECT_TRUE(model->draggingFans().empty());
  ASSERT_EQ(sentCount(), 1U);
  EXPECT_EQ(sentPlans().back(), manual(std::round(slider().value())));
}

TEST_F(FanControlBlockTest, ASpeedTakesTheFanOffItsCurve) {
  showPlan(support::percentAsCelsius());
  EXPECT_TRUE(shows(*block, "Curve"));
  EXPECT_TRUE(slider().isEnabled());
  slider().slideTo(5000);
  refresh();
  EXPECT_EQ(model->activePlan(), manual(5000));
  EXPECT_TRUE(shows(*block, "Manual"));
}

TEST_F(FanControlBlockTest, ABlockThatGoesEndsItsDrag) {
  showWithHelper();
  QTest::mousePress(&slider(), Qt::LeftButton, {}, knobAt(2310));
  block = nullptr;
  EXPECT_TRUE(model->draggingFans().empty());
}

TEST_F(FanControlBlockTest, FullBlastAsksForAllOfTheFan) {
  showWithHelper();
  click(fullBlast());
  turn();
  EXPECT_EQ(model->activePlan(), (FanControlPlan{.fans = {{4, FanControlModePlan::fixedPercent(100)}}}));
}

TEST_F(FanControlBlockTest, AutoGivesTheFanBack) {
  showPlan(FanControlModePlan::fixedRPM(5000));
  click(automatic());
  turn();
  EXPECT_EQ(model->planMode(4), FanControlModePlan::automatic());
}

TEST_F(FanControlBlockTest, SaysItselfToWhoDoesNotSeeIt) {
  showWithHelper();
  QAccessibleInterface& spoken = *QAccessible::queryAccessibleInterface(&slider());
  EXPECT_EQ(spoken.text(QAccessible::Name).toStdString(), "Left speed");
  EXPECT_EQ(spoken.text(QAccessible::Value).toStdString(), "5 percent");
  EXPECT_EQ(spoken.text(QAccessible::Description).toStdString(), "Sets a manual fan speed when released");
  EXPECT_EQ(fullBlast().accessibleName().toStdString(), "Set Left to Full Blast");
  EXPECT_EQ(automatic().accessibleName().toStdString(), "Restore automatic control for Left");
}

TEST_F(FanControlBlockTest, ASpeedOfMoreDigitsDoesNotMoveTheControls) {
  showWithHelper();
  const QRect before = slider().geometry();
  readings.next.fans[0].currentRPM = 12345;
  readings.next.fans[0].name = "A fan with a name that is far too long for a row of a panel";
  pass(5);
  refresh();
  turn();
  EXPECT_EQ(slider().geometry(), before);
  const Badge& badge = *block->findChild<Badge*>();
  EXPECT_EQ(badge.geometry().right(), block->rect().right());
  EXPECT_EQ(badge.width(), badge.sizeHint().width());
}

} // namespace
} // namespace ventolith::ui
