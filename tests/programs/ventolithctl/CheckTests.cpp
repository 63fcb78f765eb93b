#include "core/FanControlPlan.h"
#include "programs/ventolithctl/Fixture.h"
#include "programs/ventolithctl/PlanWarnings.h"

namespace ventolith::ctl {
namespace {

using core::CurvePoint;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::FanCurve;
using core::FanRule;
using core::RuleFanTarget;

FanControlModePlan curve(std::vector<std::pair<double, double>> points) {
  FanCurve curve;
  for (const auto& [celsius, percent] : points) {
    curve.points.push_back({.id = core::makeUUID(), .celsius = celsius, .percent = percent});
  }
  return FanControlModePlan::curve(std::move(curve));
}

const FanControlModePlan goodCurve = curve({{40, 0}, {80, 100}});

FanRule goodRule() {
  FanRule rule;
  rule.name = "hot";
  rule.thresholdCelsius = 80;
  rule.releaseBelowCelsius = 70;
  rule.targetPercent = 100;
  rule.fanTarget = RuleFanTarget::all();
  return rule;
}

FanControlPlan planOf(std::vector<core::FanPlan> fans, std::vector<FanRule> rules = {}) {
  return {.fans = std::move(fans), .rules = std::move(rules), .tuning = {}};
}

FanControlPlan withRule(FanRule rule) {
  return planOf({{0, goodCurve}}, {std::move(rule)});
}

TEST(PlanWarnings, AGoodPlanHasNone) {
  EXPECT_TRUE(planWarnings(withRule(goodRule())).empty());
}

TEST(PlanWarnings, NameThePathOfEachOddity) {
  FanRule otherFan = goodRule();
  otherFan.fanTarget = RuleFanTarget::fan(7);
  FanRule lateRelease = goodRule();
  lateRelease.releaseBelowCelsius = 81;
  FanRule beyondPercent = goodRule();
  beyondPercent.targetPercent = 101;
  const FanRule twin = goodRule();
  FanRule stopping = goodRule();
  stopping.targetPercent = 0;
  FanRule tooLate = goodRule();
  tooLate.thresholdCelsius = 95;
  FanControlPlan noFilter = withRule(goodRule());
  noFilter.tuning.emaAlpha = 0;
  FanControlPlan wildFilter = withRule(goodRule());
  wildFilter.tuning.emaAlpha = 1.5;
  FanControlPlan stuck = withRule(goodRule());
  stuck.tuning.maxDeltaRPMPerTick = 0;

  struct Row {
    std::string what;
    FanControlPlan plan;
    std::string path;
  };
  const std::vector<Row> rows = {
      {"falls", planOf({{0, curve({{40, 50}, {60, 20}, {70, 60}})}}),
       "fans[0].mode.curve._0.points[1].percent"},
      {"falls, unsorted", planOf({{0, curve({{60, 20}, {40, 50}})}}),
       "fans[0].mode.curve._0.points[0].percent"},
      {"no points", planOf({{0, goodCurve}, {1, curve({})}}), "fans[1].mode.curve._0.points"},
      {"point above 100", planOf({{0, curve({{40, 0}, {80, 140}})}}),
       "fans[0].mode.curve._0.points[1].percent"},
      {"point below 0", planOf({{0, curve({{40, -5}, {80, 100}})}}),
       "fans[0].mode.curve._0.points[0].percent"},
      {"percent above 100", planOf({{0, FanControlModePlan::fixedPercent(120)}}),
       "fans[0].mode.fixedPercent._0"},
      {"fixed 0", planOf({{0, FanControlModePlan::fixedPercent(0)}}), "fans[0].mode.fixedPercent._0"},
      {"0 at the hot end", planOf({{0, curve({{40, 0}, {70, 0}})}}), "fans[0].mode.curve._0.points"},
      {"0 beyond 80", planOf({{0, curve({{81, 0}, {90, 100}})}}), "fans[0].mode.curve._0.points"},
      {"fan twice", planOf({{0, goodCurve}, {1, goodCurve}, {0, goodCurve}}), "fans[2].fanID"},
      {"rule on an unlisted fan", withRule(otherFan), "rules[0].fanTarget.fan._0"},
      {"release above threshold", withRule(lateRelease), "rules[0].releaseBelowCelsius"},
      {"rule above 100", withRule(beyondPercent), "rules[0].targetPercent"},
      {"same id", planOf({{0, goodCurve}}, {twin, twin}), "rules[1].id"},
      {"alpha 0", noFilter, "tuning.emaAlpha"},
      {"alpha above 1", wildFilter, "tuning.emaAlpha"},
      {"no step", stuck, "tuning.maxDeltaRPMPerTick"},
      {"fan that no key names", planOf({{10, goodCurve}}), "fans[0].fanID"},
      {"fixed 0 RPM", planOf({{0, FanControlModePlan::fixedRPM(0)}}), "fans[0].mode.fixedRPM._0"},
      {"rule of 0", withRule(stopping), "rules[0].targetPercent"},
      {"rule above the ceiling", withRule(tooLate), "rules[0].thresholdCelsius"},
      {"rules without a held fan", planOf({{0, FanControlModePlan::automatic()}}, {twin}), "fans"},
  };
  for (const Row& row : rows) {
    const auto warnings = planWarnings(row.plan);
    ASSERT_EQ(warnings.size(), 1U) << row.what;
    EXPECT_EQ(warnings[0].path, row.path) << row.what;
  }
}

TEST(PlanWarnings, LimitsThemselvesAreInOrder) {
  FanRule atItsThreshold = goodRule();
  atItsThreshold.releaseBelowCelsius = atItsThreshold.thresholdCelsius;
  FanControlPlan plan = planOf({{0, curve({{80, 0}, {90, 100}})}, {1, FanControlModePlan::fixedPercent(100)}},
                               {atItsThreshold});
  plan.tuning.emaAlpha = 1;
  EXPECT_TRUE(planWarnings(plan).empty());
}

TEST(PlanWarnings, ParkedFanIsFineWhereARuleOfTheHottestSensorWakesIt) {
  const FanRule rule = goodRule();
  EXPECT_TRUE(planWarnings(planOf({{0, FanControlModePlan::fixedPercent(0)}}, {rule})).empty());

  FanRule disabled = rule;
  disabled.enabled = false;
  FanRule late = rule;
  late.thresholdCelsius = 80.5;
  FanRule ofOneSensor = rule;
  ofOneSensor.sensorID = "SMC-TG0D";
  for (const FanRule& useless : {disabled, late, ofOneSensor}) {
    EXPECT_EQ(planWarnings(planOf({{0, FanControlModePlan::fixedPercent(0)}}, {useless})).size(), 1U);
  }
}

TEST(PlanWarnings, UnknownSensorsAreThoseThatTheTraceDoesNotHave) {
  FanCurve ofGPU;
  ofGPU.sourceSensorID = "SMC-TG0D";
  FanRule rule = goodRule();
  rule.sensorID = "HID-nowhere";
  const auto plan = planOf({{0, FanControlModePlan::curve(ofGPU)}}, {goodRule(), rule});

  const auto warnings = unknownSensors(plan, {"SMC-TCHP"});
  ASSERT_EQ(warnings.size(), 2U);
  EXPECT_EQ(warnings[0].path, "fans[0].mode.curve._0.sourceSensorID");
  EXPECT_EQ(warnings[1].path, "rules[1].sensorID");
  EXPECT_TRUE(unknownSensors(plan, {"SMC-TG0D", "HID-nowhere"}).empty());
}

class CheckCommand : public CommandTest {};

TEST_F(CheckCommand, GoodPlanEndsWithDoneAndSaysNothing) {
  EXPECT_EQ(run({"check", file("plan.json", planText(R"({"fanID":0,"mode":{"automatic":{}}})"))}),
            ExitStatus::done);
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, "");
}

TEST_F(CheckCommand, WarningsAreLinesOnStandardOutput) {
  const auto plan = file("plan.json", planText(R"({"fanID":3,"mode":{"fixedPercent":{"_0":140}}})"));
  EXPECT_EQ(run({"check", plan}), ExitStatus::warnings);
  EXPECT_EQ(out.text, "fans[0].mode.fixedPercent._0: 140 % lies outside 0 to 100 %\n");
}

TEST_F(CheckCommand, InvalidPlanIsReportedWithItsPath) {
  const auto plan = file("plan.json", planText(R"({"fanID":3,"mode":{"fixedRPM":{"_0":"fast"}}})"));
  EXPECT_EQ(run({"check", plan}), ExitStatus::invalid);
  EXPECT_EQ(err.text,
            "ventolithctl: " + plan + ": fans[0].mode.fixedRPM._0: expected a number, found a string\n");
  EXPECT_EQ(out.text, "");
}

TEST_F(CheckCommand, MissingFileIsInvalid) {
  EXPECT_EQ(run({"check", path("nothing.json")}), ExitStatus::invalid);
  EXPECT_EQ(err.text, "ventolithctl: " + path("nothing.json") + ": No such file or directory\n");
}

TEST_F(CheckCommand, PlanOverTheSizeBoundIsInvalid) {
  EXPECT_EQ(run({"check", file("plan.json", std::string((1 << 20) + 1, ' '))}), ExitStatus::invalid);
  EXPECT_NE(err.text.find("more than the 1048576 that are read"), std::string::npos) << err.text;
}

TEST_F(CheckCommand, TraceTellsWhichSensorsThereAre) {
  const auto plan = file(
      "plan.json",
      planText(
          R"({"fanID":0,"mode":{"curve":{"_0":{"sourceSensorID":"SMC-TXXX","points":[{"id":)"
          R"("6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11","celsius":40,"percent":50}],"interpolation":"linear"}}}})"));
  const auto trace =
      file("trace.jsonl", R"({"t":0,"fans":[],"temps":[{"key":"TCHP","name":"CPU","celsius":50,)"
                          R"("category":"CPU","source":"SMC"}]})");
  EXPECT_EQ(run({"check", plan, "--trace", trace}), ExitStatus::warnings);
  EXPECT_EQ(out.text, "fans[0].mode.curve._0.sourceSensorID: the sensor \"SMC-TXXX\" is not in the trace\n");
}

TEST(ExamplePlans, DecodeAndHaveNoWarnings) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(VENTOLITH_DATA "/plans")) {
    if (entry.path().extension() != ".json") continue;
    std::ifstream stream(entry.path());
    const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    const FanControlPlan plan = core::decodeFanControlPlan(text);
    for (const PlanWarning& warning : planWarnings(plan)) {
      ADD_FAILURE() << entry.path() << ": " << warning.path << ": " << warning.text;
    }
    EXPECT_FALSE(plan.fans.empty()) << entry.path();
    ++count;
  }
  EXPECT_GE(count, 5U);
}

} // namespace
} // namespace ventolith::ctl
