#include "RulesFixture.h"

#include "ui/kit/Palette.h"
#include "ui/kit/Type.h"

#include <cmath>

namespace ventolith::ui {
namespace {

class RuleRowTest : public RulesTest {};

TEST_F(RuleRowTest, ReadsAsASentence) {
  core::FanRule one = ruleAt(62.9);
  one.sensorID = "SMC-TB0T";
  one.fanTarget = core::RuleFanTarget::fan(1);
  one.dwellSeconds = 5;
  showRules({one});
  EXPECT_EQ(row(0).sensorMenu().title(), QStringLiteral("Battery"));
  EXPECT_EQ(row(0).thresholdStepper().label(), QStringLiteral("62°C"));
  EXPECT_EQ(row(0).fanMenu().title(), QStringLiteral("Right"));
  EXPECT_EQ(row(0).targetPercentStepper().label(), QStringLiteral("80%"));
  EXPECT_EQ(row(0).releaseBelowStepper().label(), QStringLiteral("release below 57°C"));
  EXPECT_EQ(row(0).dwellStepper().label(), QStringLiteral("dwell 5s"));
  for (const char* word : {"WHEN", "exceeds", "THEN set", "to", "enabled"})
    EXPECT_TRUE(shows(row(0), word)) << word;
  EXPECT_EQ(row(0).accessibleName(), QStringLiteral("WHEN Battery exceeds 62°C THEN set Right to 80%"));
}

struct StepperCase {
  const char* name;
  Stepper& (RuleRow::*stepper)();
  double core::FanRule::* field;
  double step;
  double maximum;
};

class RuleStepperTest : public RulesTest, public testing::WithParamInterface<StepperCase> {};

TEST_P(RuleStepperTest, MovesItsFieldByItsStepWithinItsRange) {
  showRules({ruleAt(85)});
  Stepper& stepper = (row(0).*GetParam().stepper)();
  EXPECT_EQ(stepper.range(),
            (StepperRange{.minimum = 0, .maximum = GetParam().maximum, .step = GetParam().step}));
  core::FanRule expected = rules()[0];
  expected.*GetParam().field += GetParam().step;
  QTest::keyClick(&stepper, Qt::Key_Up);
  EXPECT_EQ(rules()[0], expected);
  EXPECT_EQ(stepper.value(), expected.*GetParam().field);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, RuleStepperTest,
    testing::Values(
        StepperCase{"threshold", &RuleRow::thresholdStepper, &core::FanRule::thresholdCelsius, 1, 110},
        StepperCase{"target", &RuleRow::targetPercentStepper, &core::FanRule::targetPercent, 5, 100},
        StepperCase{"release", &RuleRow::releaseBelowStepper, &core::FanRule::releaseBelowCelsius, 1, 110},
        StepperCase{"dwell", &RuleRow::dwellStepper, &core::FanRule::dwellSeconds, 1, 30}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(RuleRowTest, StepsThatComeFasterThanTheModelTellsAddUp) {
  showRules({ruleAt(85)});
  for (int step = 0; step < 3; ++step)
    QTest::keyClick(&row(0).thresholdStepper(), Qt::Key_Up);
  EXPECT_EQ(rules()[0].thresholdCelsius, 88);
}

TEST_F(RuleRowTest, TargetMovesByFiveFromAnyValueAndStaysInItsRange) {
  core::FanRule odd = ruleAt(85);
  odd.targetPercent = 93;
  showRules({odd});
  Stepper& stepper = row(0).targetPercentStepper();
  QTest::keyClick(&stepper, Qt::Key_Up);
  EXPECT_EQ(rules()[0].targetPercent, 98);
  QTest::keyClick(&stepper, Qt::Key_Up);
  EXPECT_EQ(rules()[0].targetPercent, 100);
}

TEST_F(RuleRowTest, LoweringTheThresholdTakesTheReleasePointAlong) {
  core::FanRule one = ruleAt(85);
  one.releaseBelowCelsius = 80;
  showRules({one});
  row(0).thresholdStepper().want(70);
  EXPECT_EQ(rules()[0].releaseBelowCelsius, 69);
  EXPECT_EQ(row(0).releaseBelowStepper().label(), QStringLiteral("release below 69°C"));
}

TEST_F(RuleRowTest, ReleasePointStopsADegreeBelowTheThreshold) {
  core::FanRule one = ruleAt(85);
  one.releaseBelowCelsius = 84;
  showRules({one});
  QTest::keyClick(&row(0).releaseBelowStepper(), Qt::Key_Up);
  EXPECT_EQ(rules()[0].releaseBelowCelsius, 84);
  EXPECT_EQ(row(0).releaseBelowStepper().value(), 84);
}

TEST_F(RuleRowTest, ReleasePointOfAThresholdOfZeroIsShownBelowItsRange) {
  core::FanRule one = ruleAt(1);
  one.releaseBelowCelsius = 0;
  showRules({one});
  row(0).thresholdStepper().want(0);
  EXPECT_EQ(rules()[0].releaseBelowCelsius, -1);
  EXPECT_EQ(row(0).releaseBelowStepper().label(), QStringLiteral("release below -1°C"));
}

TEST_F(RuleRowTest, AnyEditRepairsTheReleasePoint) {
  core::FanRule broken = ruleAt(60);
  broken.releaseBelowCelsius = 70;
  showRules({broken});
  click(row(0).enabledToggle());
  EXPECT_FALSE(rules()[0].enabled);
  EXPECT_EQ(rules()[0].releaseBelowCelsius, 59);
}

TEST_F(RuleRowTest, SensorMenuListsTheHottestAndThenTheSensorsInOrder) {
  showRules({ruleAt(85)});
  EXPECT_EQ(row(0).sensorMenu().title(), QStringLiteral("Hottest"));
  row(0).sensorMenu().openMenu();
  EXPECT_EQ(titles(row(0).sensorMenu()), (std::vector<std::string>{"Hottest", "CPU", "Battery"}));
  row(0).sensorMenu().menu().close();
  choose(row(0).sensorMenu(), 2);
  EXPECT_EQ(rules()[0].sensorID, "SMC-TB0T");
  EXPECT_EQ(row(0).sensorMenu().title(), QStringLiteral("Battery"));
  choose(row(0).sensorMenu(), 0);
  EXPECT_EQ(rules()[0].sensorID, std::nullopt);
}

TEST_F(RuleRowTest, FanMenuListsAllFansAndThenEach) {
  showRules({ruleAt(85)});
  EXPECT_EQ(row(0).fanMenu().title(), QStringLiteral("All fans"));
  row(0).fanMenu().openMenu();
  EXPECT_EQ(titles(row(0).fanMenu()), (std::vector<std::string>{"All fans", "Left", "Right"}));
  row(0).fanMenu().menu().close();
  choose(row(0).fanMenu(), 1);
  EXPECT_EQ(rules()[0].fanTarget, core::RuleFanTarget::fan(0));
  choose(row(0).fanMenu(), 0);
  EXPECT_EQ(rules()[0].fanTarget, core::RuleFanTarget::all());
}

TEST_F(RuleRowTest, SensorThatIsGoneReadsAsTheHottestAndStaysInTheRule) {
  core::FanRule one = ruleAt(85);
  one.sensorID = "SMC-TCHP";
  showRules({one});
  read(support::snapshot({}, {}));
  EXPECT_EQ(row(0).sensorMenu().title(), QStringLiteral("Hottest"));
  EXPECT_EQ(rules()[0].sensorID, "SMC-TCHP");
}

TEST_F(RuleRowTest, FanThatIsGoneReadsByItsNumber) {
  core::FanRule one = ruleAt(85);
  one.fanTarget = core::RuleFanTarget::fan(3);
  showRules({one});
  EXPECT_EQ(row(0).fanMenu().title(), QStringLiteral("Fan 3"));
}

TEST_F(RuleRowTest, ToggleSaysWhetherTheRuleHolds) {
  showRules({ruleAt(85)});
  click(row(0).enabledToggle());
  turn();
  EXPECT_FALSE(rules()[0].enabled);
  EXPECT_TRUE(shows(row(0), "disabled"));
  click(row(0).enabledToggle());
  turn();
  EXPECT_TRUE(rules()[0].enabled);
  EXPECT_TRUE(shows(row(0), "enabled"));
}

TEST_F(RuleRowTest, DisabledRuleIsFaintAndItsControlsStayUsable) {
  core::FanRule off = ruleAt(85);
  off.enabled = false;
  showRules({off});
  const QImage picture = row(0).grab().toImage();
  const QColor onDivider = picture.pixelColor(row(0).width() / 2, 14 + 24 + 6 + 24 + 11);
  const Palette& palette = theme.palette();
  const QColor expected = mixed(palette.cardBackground, palette.separator, 0.55);
  EXPECT_NEAR(onDivider.red(), expected.red(), 1);
  EXPECT_NEAR(onDivider.blue(), expected.blue(), 1);
  QTest::mouseClick(&row(0).thresholdStepper(), Qt::LeftButton, Qt::NoModifier,
                    row(0).thresholdStepper().arrow(1).center());
  EXPECT_EQ(rules()[0].thresholdCelsius, 86);
}

TEST_F(RuleRowTest, DeletesAtOnce) {
  showRules({ruleAt(85), ruleAt(62)});
  click(row(0).deleteButton());
  EXPECT_EQ(thresholds(), std::vector<double>{62});
}

TEST_F(RuleRowTest, OpenMenuStaysOpenAndTakesUpAnotherSensor) {
  showRules({ruleAt(85)});
  MenuButton& menu = row(0).sensorMenu();
  menu.openMenu();
  menu.menu().setActiveAction(menu.menu().actionOf(2));
  const QAction* const before = menu.menu().actionOf(2);
  read(support::snapshot({}, {{.key = "TCHP", .name = "CPU", .celsius = 70},
                              {.key = "TB0T", .name = "Battery", .celsius = 30}}));
  EXPECT_EQ(menu.menu().actionOf(2), before) << "another temperature is another menu";
  read(support::snapshot({}, {{.key = "TN0n", .name = "SSD", .celsius = 40},
                              {.key = "TB0T", .name = "Battery", .celsius = 30}}));
  EXPECT_TRUE(menu.isMenuOpen());
  EXPECT_EQ(titles(menu), (std::vector<std::string>{"Hottest", "SSD", "Battery"}));
  EXPECT_EQ(menu.menu().activeAction(), menu.menu().actionOf(2));
}

TEST_F(RuleRowTest, ControlsKeepTheirPlacesWhileTheirValuesChange) {
  core::FanRule one = ruleAt(85);
  one.targetPercent = 5;
  one.dwellSeconds = 9;
  showRules({one});
  const auto places = [&] {
    std::vector<QRect> all;
    for (QWidget* stop : row(0).tabStops())
      all.push_back(stop->geometry());
    return all;
  };
  const std::vector<QRect> before = places();
  row(0).thresholdStepper().want(9);
  row(0).targetPercentStepper().want(95);
  row(0).dwellStepper().want(10);
  turn();
  EXPECT_EQ(row(0).dwellStepper().label(), QStringLiteral("dwell 10s"));
  EXPECT_EQ(places(), before);
}

TEST_F(RuleRowTest, LabelsStandRightBeforeTheirArrows) {
  showRules({ruleAt(85)});
  Stepper& stepper = row(0).thresholdStepper();
  const double label = TextLine(stepper.label(), TextRole::stepperLabel).width();
  EXPECT_EQ(stepper.arrow(1).left(), static_cast<int>(std::ceil(label)) + 6);
}

TEST_F(RuleRowTest, LabelOfThreeDigitsTakesWhatItNeeds) {
  showRules({ruleAt(99)});
  const int before = row(0).thresholdStepper().width();
  row(0).thresholdStepper().want(100);
  turn();
  const double digit = TextLine(QStringLiteral("1"), TextRole::stepperLabel).width();
  EXPECT_NEAR(row(0).thresholdStepper().width(), before + digit, 1);
}

TEST_F(RuleRowTest, ControlsHaveSpokenNames) {
  showRules({ruleAt(85)});
  EXPECT_EQ(spoken(row(0).thresholdStepper()).text(QAccessible::Name), QStringLiteral("Threshold"));
  EXPECT_EQ(spoken(row(0).thresholdStepper()).text(QAccessible::Value), QStringLiteral("85°C"));
  EXPECT_EQ(spoken(row(0).targetPercentStepper()).text(QAccessible::Name), QStringLiteral("Fan speed"));
  EXPECT_EQ(spoken(row(0).releaseBelowStepper()).text(QAccessible::Name), QStringLiteral("Release point"));
  EXPECT_EQ(spoken(row(0).dwellStepper()).text(QAccessible::Name), QStringLiteral("Dwell"));
  EXPECT_EQ(spoken(row(0).sensorMenu()).text(QAccessible::Name), QStringLiteral("Hottest"));
  EXPECT_EQ(spoken(row(0).enabledToggle()).text(QAccessible::Name), QStringLiteral("Enabled"));
  EXPECT_EQ(spoken(row(0).deleteButton()).text(QAccessible::Name), QStringLiteral("Delete Rule"));
}

} // namespace
} // namespace ventolith::ui
