// How the reading of a plan fails, and where it says that it did.
#include "core/FanControlPlan.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <string>

namespace ventolith::core {
namespace {

using Kind = DecodeError::Kind;

/// A plan in which every record stands, and every optional field.
JSON fullPlan() {
  FanRule rule = support::rule();
  rule.sensorID = "HID-GPU";
  rule.fanTarget = RuleFanTarget::fan(0);
  return toJSON(
      support::plan({{1, FanControlModePlan::automatic()},
                     {0, FanControlModePlan::curve(support::curve({{30, 0}, {80, 100}}, "SMC-TCHP"))}},
                    {rule}));
}

struct Failure {
  Kind kind = Kind::dataCorrupted;
  std::string path = "none";
  std::string description;
};

Failure failureOf(const std::string& text) {
  try {
    (void)decodeFanControlPlan(text);
    return {};
  } catch (const DecodeError& error) {
    return {error.kind(), error.path(), error.description()};
  }
}

Failure failureWith(const std::string& pointer, const JSON& value) {
  JSON plan = fullPlan();
  plan[JSON::json_pointer(pointer)] = value;
  return failureOf(writeJSON(plan));
}

struct Place {
  std::string record; // As a JSON pointer,
  std::string path;   // and as a failure shows it.
  std::vector<std::string> requiredKeys;
};

const std::string curvePointer = "/fans/1/mode/curve/_0";
const std::string curvePath = "fans[1].mode.curve._0";

const std::vector<Place>& places() {
  static const std::vector<Place> places = {
      {"", "", {"fans", "rules", "tuning"}},
      {"/fans/1", "fans[1].", {"fanID", "mode"}},
      {"/fans/1/mode/curve", "fans[1].mode.curve.", {"_0"}},
      {curvePointer, curvePath + ".", {"points", "interpolation"}},
      {curvePointer + "/points/1", curvePath + ".points[1].", {"id", "celsius", "percent"}},
      {"/rules/0",
       "rules[0].",
       {"id", "name", "thresholdCelsius", "releaseBelowCelsius", "targetPercent", "fanTarget", "dwellSeconds",
        "enabled"}},
      {"/rules/0/fanTarget/fan", "rules[0].fanTarget.fan.", {"_0"}},
      {"/tuning", "tuning.", {"emaAlpha", "hysteresisCelsius", "maxDeltaRPMPerTick", "minDwellSeconds"}},
  };
  return places;
}

TEST(FanControlPlanDecode, FullPlanOfTheseTestsIsValid) {
  EXPECT_EQ(failureOf(writeJSON(fullPlan())).path, "none");
}

TEST(FanControlPlanDecode, EachRequiredKeyThatIsMissingFailsAtItsPath) {
  for (const Place& place : places()) {
    for (const std::string& key : place.requiredKeys) {
      SCOPED_TRACE(place.path + key);
      JSON plan = fullPlan();
      ASSERT_EQ(plan.at(JSON::json_pointer(place.record)).erase(key), 1U);
      const Failure failure = failureOf(writeJSON(plan));
      EXPECT_EQ(failure.kind, Kind::keyNotFound);
      EXPECT_EQ(failure.path, place.path + key);
      EXPECT_EQ(failure.description, "required key not found");
    }
  }
}

TEST(FanControlPlanDecode, EachRequiredKeyThatIsNullFailsAtItsPath) {
  for (const Place& place : places()) {
    for (const std::string& key : place.requiredKeys) {
      SCOPED_TRACE(place.path + key);
      const Failure failure = failureWith(place.record + "/" + key, nullptr);
      EXPECT_EQ(failure.kind, Kind::typeMismatch);
      EXPECT_EQ(failure.path, place.path + key);
    }
  }
}

TEST(FanControlPlanDecode, EachKeyOfAWrongTypeFailsAtItsPath) {
  // A type that each field is not: a boolean, or a number for the one that is a boolean.
  for (const Place& place : places()) {
    for (const std::string& key : place.requiredKeys) {
      SCOPED_TRACE(place.path + key);
      const JSON wrong = key == "enabled" ? JSON(1) : JSON(true);
      const Failure failure = failureWith(place.record + "/" + key, wrong);
      EXPECT_EQ(failure.kind, Kind::typeMismatch);
      EXPECT_EQ(failure.path, place.path + key);
    }
  }
}

TEST(FanControlPlanDecode, OptionalKeyOfAWrongTypeFailsAtItsPath) {
  for (const auto& [pointer, path] :
       {std::pair(curvePointer + "/sourceSensorID", curvePath + ".sourceSensorID"),
        std::pair(std::string("/rules/0/sensorID"), std::string("rules[0].sensorID"))}) {
    SCOPED_TRACE(path);
    const Failure failure = failureWith(pointer, 7);
    EXPECT_EQ(failure.kind, Kind::typeMismatch);
    EXPECT_EQ(failure.path, path);
  }
}

TEST(FanControlPlanDecode, NumberInAStringIsNoNumber) {
  const Failure failure = failureWith("/tuning/emaAlpha", "0.3");
  EXPECT_EQ(failure.kind, Kind::typeMismatch);
  EXPECT_EQ(failure.path, "tuning.emaAlpha");
}

TEST(FanControlPlanDecode, UnwrappedPayloadFails) {
  for (const JSON& mode : {JSON({{"fixedRPM", 2400}}), JSON({{"fixedPercent", 75}}), JSON({{"automatic", 1}}),
                           JSON({{"curve", JSON::array()}})}) {
    SCOPED_TRACE(mode.dump());
    EXPECT_EQ(failureWith("/fans/1/mode", mode).kind, Kind::typeMismatch);
  }
}

TEST(FanControlPlanDecode, PayloadCaseWithoutPayloadFails) {
  for (const std::string name : {"fixedRPM", "fixedPercent", "curve"}) {
    SCOPED_TRACE(name);
    JSON mode = JSON::object();
    mode[name] = JSON::object();
    const Failure failure = failureWith("/fans/1/mode", mode);
    EXPECT_EQ(failure.kind, Kind::keyNotFound);
    EXPECT_EQ(failure.path, "fans[1].mode." + name + "._0");
  }
}

TEST(FanControlPlanDecode, ModeOfOtherThanOneKnownCaseFails) {
  for (const std::string_view mode : {R"({})", R"({"automatic":{},"fixedRPM":{"_0":1}})", R"({"turbo":{}})",
                                      R"({"Automatic":{}})", R"({"manual":{}})"}) {
    SCOPED_TRACE(mode);
    const Failure failure = failureWith("/fans/1/mode", parseJSON(mode));
    EXPECT_EQ(failure.kind, Kind::typeMismatch);
    EXPECT_EQ(failure.path, "fans[1].mode");
    EXPECT_EQ(failure.description, "Invalid number of keys found, expected one.");
  }
}

TEST(FanControlPlanDecode, RuleTargetOfOtherThanOneKnownCaseFails) {
  for (const std::string_view target : {R"({})", R"({"all":{},"fan":{"_0":1}})", R"({"none":{}})"}) {
    SCOPED_TRACE(target);
    const Failure failure = failureWith("/rules/0/fanTarget", parseJSON(target));
    EXPECT_EQ(failure.kind, Kind::typeMismatch);
    EXPECT_EQ(failure.path, "rules[0].fanTarget");
    EXPECT_EQ(failure.description, "Invalid number of keys found, expected one.");
  }
}

TEST(FanControlPlanDecode, CaseNameAloneIsNoMode) {
  EXPECT_EQ(failureWith("/fans/1/mode", "automatic").kind, Kind::typeMismatch);
  EXPECT_EQ(failureWith("/rules/0/fanTarget", "all").kind, Kind::typeMismatch);
}

TEST(FanControlPlanDecode, UnknownInterpolationFails) {
  for (const std::string word : {"cubic", "", "Linear", "linear "}) {
    SCOPED_TRACE(word);
    const Failure failure = failureWith(curvePointer + "/interpolation", word);
    EXPECT_EQ(failure.kind, Kind::dataCorrupted);
    EXPECT_EQ(failure.path, curvePath + ".interpolation");
  }
}

TEST(FanControlPlanDecode, UnreadableUUIDFails) {
  for (const std::string word : {"", "6F1C0E52", "{6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11}"}) {
    SCOPED_TRACE(word);
    const Failure failure = failureWith("/rules/0/id", word);
    EXPECT_EQ(failure.kind, Kind::dataCorrupted);
    EXPECT_EQ(failure.path, "rules[0].id");
  }
}

TEST(FanControlPlanDecode, FanIDThatIsNoIntegerOf64BitsFails) {
  for (const std::string_view number :
       {"0.5", "-1.5", "9223372036854775808", "-9223372036854775809", "1e30"}) {
    SCOPED_TRACE(number);
    EXPECT_EQ(failureWith("/fans/1/fanID", parseJSON(number)).path, "fans[1].fanID");
    EXPECT_EQ(failureWith("/rules/0/fanTarget/fan/_0", parseJSON(number)).path, "rules[0].fanTarget.fan._0");
  }
}

TEST(FanControlPlanDecode, FanIDsReachBothEndsOf64Bits) {
  for (const FanID fan : {INT64_MIN, INT64_MAX}) {
    const FanControlPlan plan = support::plan({{fan, FanControlModePlan::automatic()}});
    EXPECT_EQ(decodeFanControlPlan(encode(plan)), plan);
  }
}

TEST(FanControlPlanDecode, RootThatIsNoObjectFails) {
  for (const std::string text : {"[]", "1", "\"plan\"", "null", "true"}) {
    SCOPED_TRACE(text);
    const Failure failure = failureOf(text);
    EXPECT_EQ(failure.kind, Kind::typeMismatch);
    EXPECT_EQ(failure.path, "");
  }
}

TEST(FanControlPlanDecode, EmptyObjectLacksItsFirstKey) {
  const Failure failure = failureOf("{}");
  EXPECT_EQ(failure.kind, Kind::keyNotFound);
  EXPECT_EQ(failure.path, "fans");
}

TEST(FanControlPlanDecode, HostileTextFails) {
  const std::string tuning =
      R"("tuning":{"emaAlpha":1,"hysteresisCelsius":1,"maxDeltaRPMPerTick":1,"minDwellSeconds":)";
  const std::string start = R"({"fans":[],"rules":[],)" + tuning;
  EXPECT_EQ(failureOf(start + "1}}").path, "none");
  EXPECT_EQ(failureOf(start + "1e999}}").kind, Kind::dataCorrupted);
  EXPECT_EQ(failureOf(start + "1}").kind, Kind::dataCorrupted);
  EXPECT_NE(failureOf(start + "1}},").path, "none");
  EXPECT_EQ(failureOf(start + "1},\"fans\":[]}").kind, Kind::dataCorrupted);
  EXPECT_EQ(failureOf(start + "1},\"x\":\"\xFF\"}").kind, Kind::dataCorrupted);
  EXPECT_EQ(failureOf(start + "1},\"x\":" + std::string(100000, '[')).kind, Kind::dataCorrupted);
  EXPECT_EQ(failureOf(start + "1},\"x\":\"" + std::string(2 << 20, 'x') + "\"}").kind, Kind::dataCorrupted);
}

} // namespace
} // namespace ventolith::core
