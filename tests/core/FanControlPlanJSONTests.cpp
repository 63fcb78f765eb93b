// The one form of a plan, on disk and on the wire, letter for letter.
#include "core/FanControlPlan.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>

namespace ventolith::core {
namespace {

constexpr std::string_view completePlan =
    R"({"fans":[{"fanID":0,"mode":{"curve":{"_0":{"sourceSensorID":"HID-PMU tdie1","points":[)"
    R"({"id":"6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11","celsius":30,"percent":0},)"
    R"({"id":"0D4A7E10-5A2B-4E57-8B6E-2F1F6C9E3D02","celsius":80,"percent":100}],)"
    R"("interpolation":"linear"}}}},{"fanID":1,"mode":{"fixedPercent":{"_0":75}}}],)"
    R"("rules":[{"id":"9A3C4F77-1C2D-4E5F-8A90-7B6C5D4E3F21","name":"GPU hot","sensorID":"HID-GPU",)"
    R"("thresholdCelsius":85,"releaseBelowCelsius":75,"targetPercent":100,"fanTarget":{"all":{}},)"
    R"("dwellSeconds":5,"enabled":true}],)"
    R"("tuning":{"emaAlpha":0.3,"hysteresisCelsius":2,"maxDeltaRPMPerTick":400,"minDwellSeconds":3}})";

constexpr std::string_view emptyPlan =
    R"({"fans":[],"rules":[],"tuning":{"emaAlpha":0.3,"hysteresisCelsius":2,"maxDeltaRPMPerTick":400,)"
    R"("minDwellSeconds":3}})";

UUID id(std::string_view text) {
  return *uuidFromText(text);
}

FanControlPlan expectedPlan() {
  const FanCurve curve{.sourceSensorID = "HID-PMU tdie1",
                       .points = {{id("6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11"), 30, 0},
                                  {id("0D4A7E10-5A2B-4E57-8B6E-2F1F6C9E3D02"), 80, 100}}};
  const FanRule rule{.id = id("9A3C4F77-1C2D-4E5F-8A90-7B6C5D4E3F21"),
                     .name = "GPU hot",
                     .sensorID = "HID-GPU",
                     .thresholdCelsius = 85,
                     .releaseBelowCelsius = 75,
                     .targetPercent = 100,
                     .dwellSeconds = 5};
  return {.fans = {{0, FanControlModePlan::curve(curve)}, {1, FanControlModePlan::fixedPercent(75)}},
          .rules = {rule}};
}

/// A plan with each case of each enumeration, values that are not whole, and both optional fields absent.
FanControlPlan widePlan() {
  FanControlPlan plan = expectedPlan();
  FanCurve monotone = support::curve({{70.25, 33.3}, {40, -5}, {40, 140}});
  monotone.interpolation = CurveInterpolation::monotone;
  plan.fans.push_back({7, FanControlModePlan::curve(monotone)});
  plan.fans.push_back({-3, FanControlModePlan::automatic()});
  plan.fans.push_back({7, FanControlModePlan::fixedRPM(2400.5)});
  FanRule rule = support::rule();
  rule.fanTarget = RuleFanTarget::fan(7);
  rule.releaseBelowCelsius = 200; // Above its threshold: stored as it stands.
  rule.enabled = false;
  plan.rules.push_back(rule);
  plan.tuning = {
      .emaAlpha = 1.0 / 3, .hysteresisCelsius = -1, .maxDeltaRPMPerTick = 0.1, .minDwellSeconds = 1e9};
  return plan;
}

FanControlPlan planWithMode(const std::string& mode) {
  return decodeFanControlPlan(R"({"fans":[{"fanID":0,"mode":)" + mode +
                              R"(}],"rules":[],"tuning":{"emaAlpha":1,"hysteresisCelsius":1,)"
                              R"("maxDeltaRPMPerTick":1,"minDwellSeconds":1}})");
}

TEST(FanControlPlanJSON, CompletePlanDecodesToItsFields) {
  EXPECT_EQ(decodeFanControlPlan(completePlan), expectedPlan());
}

TEST(FanControlPlanJSON, CompletePlanIsWrittenLetterForLetter) {
  EXPECT_EQ(encode(expectedPlan()), completePlan);
  EXPECT_EQ(encode(decodeFanControlPlan(completePlan)), completePlan);
}

TEST(FanControlPlanJSON, RoundTripKeepsEveryField) {
  const FanControlPlan plan = widePlan();
  EXPECT_EQ(decodeFanControlPlan(encode(plan)), plan);
}

TEST(FanControlPlanJSON, EmptyPlanRoundTrips) {
  EXPECT_EQ(encode(FanControlPlan::allAutomatic), emptyPlan);
  EXPECT_EQ(decodeFanControlPlan(emptyPlan), FanControlPlan::allAutomatic);
}

TEST(FanControlPlanJSON, KeysMayStandInAnyOrder) {
  EXPECT_EQ(
      decodeFanControlPlan(R"({"tuning":{"minDwellSeconds":3,"maxDeltaRPMPerTick":400,"hysteresisCelsius":2,)"
                           R"("emaAlpha":0.3},"rules":[],"fans":[]})"),
      FanControlPlan::allAutomatic);
}

TEST(FanControlPlanJSON, EachModeHasItsForm) {
  struct Row {
    FanControlModePlan mode;
    std::string text;
  };
  const Row rows[] = {
      {FanControlModePlan::automatic(), R"({"automatic":{}})"},
      {FanControlModePlan::fixedRPM(2400), R"({"fixedRPM":{"_0":2400}})"},
      {FanControlModePlan::fixedPercent(75), R"({"fixedPercent":{"_0":75}})"},
      {FanControlModePlan::fixedPercent(99.9), R"({"fixedPercent":{"_0":99.9}})"},
      {FanControlModePlan::curve({}), R"({"curve":{"_0":{"points":[],"interpolation":"linear"}}})"},
      {FanControlModePlan::curve({.interpolation = CurveInterpolation::monotone}),
       R"({"curve":{"_0":{"points":[],"interpolation":"monotone"}}})"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(writeJSON(toJSON(support::planOf(row.mode)).at("fans").at(0).at("mode")), row.text);
    EXPECT_EQ(planWithMode(row.text).fans.at(0).mode, row.mode);
  }
}

TEST(FanControlPlanJSON, EachRuleTargetHasItsForm) {
  struct Row {
    RuleFanTarget target;
    std::string text;
  };
  const Row rows[] = {{RuleFanTarget::all(), R"({"all":{}})"},
                      {RuleFanTarget::fan(1), R"({"fan":{"_0":1}})"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    FanRule rule = support::rule();
    rule.fanTarget = row.target;
    const FanControlPlan plan = support::plan({}, {rule});
    EXPECT_EQ(writeJSON(toJSON(plan).at("rules").at(0).at("fanTarget")), row.text);
    EXPECT_EQ(decodeFanControlPlan(encode(plan)).rules.at(0).fanTarget, row.target);
  }
}

TEST(FanControlPlanJSON, AbsentSensorIsLeftOut) {
  const FanControlPlan plan = support::plan({{0, FanControlModePlan::curve({})}}, {support::rule()});
  const std::string text = encode(plan);
  EXPECT_EQ(text.find("ensorID"), std::string::npos);
  EXPECT_EQ(text.find("null"), std::string::npos);
}

TEST(FanControlPlanJSON, NullSensorCountsAsAbsent) {
  const auto plan =
      planWithMode(R"({"curve":{"_0":{"sourceSensorID":null,"points":[],"interpolation":"linear"}}})");
  EXPECT_EQ(plan.fans.at(0).mode, FanControlModePlan::curve({}));
  std::string rules(completePlan);
  rules.replace(rules.find("\"HID-GPU\""), 9, "null");
  EXPECT_EQ(decodeFanControlPlan(rules).rules.at(0).sensorID, std::nullopt);
}

TEST(FanControlPlanJSON, EmptySensorIsNotAbsent) {
  const auto plan =
      planWithMode(R"({"curve":{"_0":{"sourceSensorID":"","points":[],"interpolation":"linear"}}})");
  EXPECT_EQ(plan.fans.at(0).mode, FanControlModePlan::curve({.sourceSensorID = ""}));
}

TEST(FanControlPlanJSON, UUIDIsReadInEitherCaseAndWrittenInUpper) {
  std::string text(completePlan);
  const auto place = text.find("9A3C4F77-1C2D-4E5F-8A90-7B6C5D4E3F21");
  text.replace(place, 36, "9a3c4f77-1c2d-4e5f-8a90-7b6c5d4e3f21");
  EXPECT_EQ(encode(decodeFanControlPlan(text)), completePlan);
}

TEST(FanControlPlanJSON, UnknownKeysAreIgnoredInEveryRecord) {
  std::string text(completePlan);
  for (const std::string_view key :
       {"{\"fans\"", "{\"fanID\"", "{\"sourceSensorID\"", "{\"id\"", "{\"emaAlpha\"", "{\"_0\""}) {
    for (auto place = text.find(key); place != std::string::npos; place = text.find(key, place + 1)) {
      text.insert(place + 1, R"("futureKey":{"nested":[1,null,"x"]},)");
    }
  }
  EXPECT_EQ(decodeFanControlPlan(text), expectedPlan());
}

TEST(FanControlPlanJSON, PayloadFreeCaseMayCarryMembers) {
  EXPECT_TRUE(planWithMode(R"({"automatic":{"since":1}})").fans.at(0).mode.isAutomatic());
}

// The case is the one key that is known; what else stands beside it is passed over, as in every record.
TEST(FanControlPlanJSON, UnknownKeyBesideTheCaseIsIgnored) {
  EXPECT_EQ(planWithMode(R"({"fixedRPM":{"_0":2400},"note":"x"})").fans.at(0).mode,
            FanControlModePlan::fixedRPM(2400));
}

TEST(FanControlPlanJSON, NothingIsNormalisedOnReading) {
  const FanControlPlan plan = widePlan();
  const FanControlPlan read = decodeFanControlPlan(encode(plan));
  const auto& curve = std::get<FanControlModePlan::Curve>(read.fans.at(2).mode.value).curve;
  EXPECT_EQ(curve.points.at(0).celsius, 70.25); // Still ahead of the cooler ones.
  EXPECT_EQ(curve.points.at(1).percent, -5);
  EXPECT_EQ(curve.points.at(2).percent, 140);
  EXPECT_EQ(read.rules.at(1).releaseBelowCelsius, 200);
}

TEST(FanControlPlanJSON, FanListedTwiceIsLegal) {
  const FanControlPlan plan =
      support::plan({{0, FanControlModePlan::fixedRPM(3000)}, {0, FanControlModePlan::automatic()}});
  EXPECT_EQ(decodeFanControlPlan(encode(plan)), plan);
}

TEST(FanControlPlanJSON, WholeFloatMayBeWrittenWithAFraction) {
  EXPECT_EQ(planWithMode(R"({"fixedRPM":{"_0":2400.0}})").fans.at(0).mode,
            FanControlModePlan::fixedRPM(2400));
}

TEST(FanControlPlanJSON, NumberThatIsNotFiniteCannotBeWritten) {
  for (const double value :
       {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_THROW((void)encode(support::planOf(FanControlModePlan::fixedRPM(value))), std::invalid_argument);
  }
}

TEST(FanControlPlanJSON, NamesAreKeptInEveryScript) {
  FanRule rule = support::rule();
  rule.name = "Überhitzung \"GPU\" \\ 高温 \xF0\x9F\x94\xA5\n";
  const FanControlPlan plan = support::plan({}, {rule});
  EXPECT_EQ(decodeFanControlPlan(encode(plan)).rules.at(0).name, rule.name);
}

TEST(FanControlPlanJSON, LargePlanOfAnEditorStillFitsTheBounds) {
  std::vector<std::pair<double, double>> points;
  for (int celsius = 0; celsius < 200; ++celsius)
    points.emplace_back(celsius, celsius / 2.0);
  FanControlPlan plan;
  for (FanID fan = 0; fan < 8; ++fan)
    plan.fans.push_back({fan, FanControlModePlan::curve(support::curve(points))});
  plan.rules.assign(200, support::rule());
  EXPECT_EQ(decodeFanControlPlan(encode(plan)), plan);
}

} // namespace
} // namespace ventolith::core
