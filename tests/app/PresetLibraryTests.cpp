#include "app/PresetLibrary.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::app {
namespace {

using core::ControlTuning;
using core::CurveInterpolation;
using core::FanControlModePlan;
using core::FanCurve;
using core::FanID;
using core::FanPreset;
using Corners = std::vector<std::pair<double, double>>;

struct Expected {
  const char* name;
  const char* id;
  Corners corners;
  ControlTuning tuning;
};

const std::vector<Expected> expectedBuiltIns = {
    {"Quiet",
     "C0010001-0000-4000-A000-000000000001",
     {{45, 0}, {65, 20}, {80, 55}, {92, 100}},
     {0.2, 3.0, 250.0, 4.0}},
    {"Balanced",
     "C0010002-0000-4000-A000-000000000002",
     {{40, 10}, {58, 35}, {75, 70}, {90, 100}},
     {0.3, 2.0, 400.0, 3.0}},
    {"Max", "C0010003-0000-4000-A000-000000000003", {{35, 45}, {55, 80}, {72, 100}}, {0.4, 1.5, 700.0, 2.0}},
};

const FanCurve& curveOf(const core::FanPlan& fan) {
  return std::get<FanControlModePlan::Curve>(fan.mode.value).curve;
}

Corners cornersOf(const FanCurve& curve) {
  Corners corners;
  for (const auto& point : curve.points)
    corners.emplace_back(point.celsius, point.percent);
  return corners;
}

std::vector<FanID> fansOf(const FanPreset& preset) {
  std::vector<FanID> fans;
  for (const auto& fan : preset.plan.fans)
    fans.push_back(fan.fanID);
  return fans;
}

std::vector<std::string> namesOf(const FanPresets& presets) {
  std::vector<std::string> names;
  for (const FanPreset& preset : presets)
    names.push_back(preset.name);
  return names;
}

FanPreset custom(const std::string& name) {
  return {.name = name};
}

TEST(PresetLibrary, BuiltInsAreThreeInOrder) {
  const auto presets = PresetLibrary::builtIns({0, 1});
  ASSERT_EQ(presets.size(), expectedBuiltIns.size());
  for (std::size_t place = 0; place < presets.size(); ++place) {
    const Expected& expected = expectedBuiltIns[place];
    SCOPED_TRACE(expected.name);
    EXPECT_EQ(presets[place].name, expected.name);
    EXPECT_EQ(core::uuidText(presets[place].id), expected.id);
    EXPECT_TRUE(presets[place].isBuiltIn);
    EXPECT_EQ(presets[place].plan.tuning, expected.tuning);
    EXPECT_TRUE(presets[place].plan.rules.empty());
  }
}

TEST(PresetLibrary, CurvesFollowTheHottestSensorThroughTheirPoints) {
  const auto presets = PresetLibrary::builtIns({7});
  for (std::size_t place = 0; place < presets.size(); ++place) {
    SCOPED_TRACE(presets[place].name);
    const FanCurve& curve = curveOf(presets[place].plan.fans.at(0));
    EXPECT_EQ(cornersOf(curve), expectedBuiltIns.at(place).corners);
    EXPECT_EQ(curve.sourceSensorID, std::nullopt);
    EXPECT_EQ(curve.interpolation, CurveInterpolation::monotone);
  }
}

TEST(PresetLibrary, EachPresetNamesPreciselyTheFansInTheirOrder) {
  for (const auto& fans : {std::vector<FanID>{0, 1}, {3, 0, 2}, {}}) {
    for (const FanPreset& preset : PresetLibrary::builtIns(fans))
      EXPECT_EQ(fansOf(preset), fans);
  }
}

TEST(PresetLibrary, FansOfAPresetShareOneCurveWithItsPoints) {
  for (const FanPreset& preset : PresetLibrary::builtIns({0, 1, 2})) {
    EXPECT_EQ(preset.plan.fans[1].mode, preset.plan.fans[0].mode); // Identifiers of points included.
    EXPECT_EQ(preset.plan.fans[2].mode, preset.plan.fans[0].mode);
  }
}

TEST(PresetLibrary, PointsHaveNewIdentifiersEachTime) {
  std::set<core::UUID> ids;
  std::size_t points = 0;
  for (int time = 0; time < 2; ++time) {
    for (const FanPreset& preset : PresetLibrary::builtIns({0})) {
      for (const auto& point : curveOf(preset.plan.fans[0]).points) {
        ids.insert(point.id);
        ++points;
      }
    }
  }
  EXPECT_EQ(points, 22U);
  EXPECT_EQ(ids.size(), points);
}

TEST(PresetLibrary, FactoriesMakeTheBuiltIns) {
  EXPECT_EQ(PresetLibrary::quiet({0}).id, PresetLibrary::quietID);
  EXPECT_EQ(PresetLibrary::balanced({0}).id, PresetLibrary::balancedID);
  EXPECT_EQ(PresetLibrary::maxx({0}).id, PresetLibrary::maxID);
}

TEST(PresetLibrary, BalancedHasTheTuningThatPlansHaveByThemselves) {
  EXPECT_EQ(PresetLibrary::balanced({0}).plan.tuning, core::FanControlPlan::allAutomatic.tuning);
}

TEST(PresetUpsert, KnownPresetKeepsItsPlace) {
  const FanPresets presets = {custom("a"), custom("b"), custom("c")};
  FanPreset renamed = presets[1];
  renamed.name = "renamed";
  renamed.plan.tuning.emaAlpha = 1;
  EXPECT_EQ(presetsAfterUpserting(renamed, presets), (FanPresets{presets[0], renamed, presets[2]}));
}

TEST(PresetUpsert, UnknownPresetGoesLast) {
  const FanPresets presets = {custom("a"), custom("b")};
  const FanPreset added = custom("a"); // Names are not compared.
  EXPECT_EQ(presetsAfterUpserting(added, presets), (FanPresets{presets[0], presets[1], added}));
  EXPECT_EQ(presetsAfterUpserting(added, {}), FanPresets{added});
}

TEST(PresetUpsert, OnlyTheFirstOfAnIdentifierIsReplaced) {
  const FanPreset twice = custom("twice");
  FanPreset renamed = twice;
  renamed.name = "renamed";
  EXPECT_EQ(namesOf(presetsAfterUpserting(renamed, {custom("a"), twice, twice})),
            (std::vector<std::string>{"a", "renamed", "twice"}));
}

TEST(PresetUpsert, BuiltInMayBeOverwritten) {
  const auto builtIns = PresetLibrary::builtIns({0});
  FanPreset renamed = builtIns[0];
  renamed.name = "Silent";
  EXPECT_EQ(namesOf(presetsAfterUpserting(renamed, builtIns)),
            (std::vector<std::string>{"Silent", "Balanced", "Max"}));
}

TEST(PresetDelete, EveryOneOfTheIdentifierGoesAndTheOthersKeepTheirOrder) {
  const FanPreset twice = custom("twice");
  const FanPresets presets = {custom("a"), twice, custom("b"), twice, custom("c")};
  const auto rest = presetsAfterDeleting(twice, presets);
  ASSERT_TRUE(rest);
  EXPECT_EQ(namesOf(*rest), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(PresetDelete, BuiltInStays) {
  const auto builtIns = PresetLibrary::builtIns({0});
  EXPECT_EQ(presetsAfterDeleting(builtIns[1], builtIns), std::nullopt);
}

TEST(PresetDelete, ThePresetThatIsGivenSaysWhetherItIsBuiltIn) {
  FanPreset listed = custom("a");
  FanPreset given = listed;
  given.isBuiltIn = true;
  EXPECT_EQ(presetsAfterDeleting(given, {listed}), std::nullopt);
  listed.isBuiltIn = true;
  given.isBuiltIn = false;
  EXPECT_EQ(presetsAfterDeleting(given, {listed}), FanPresets());
}

TEST(PresetDelete, UnknownPresetChangesNothing) {
  const FanPresets presets = {custom("a")};
  EXPECT_EQ(presetsAfterDeleting(custom("a"), presets), presets);
  EXPECT_EQ(presetsAfterDeleting(custom("a"), {}), FanPresets());
}

TEST(PresetDelete, LastCustomPresetLeavesTheBuiltIns) {
  const auto builtIns = PresetLibrary::builtIns({0});
  const FanPreset last = custom("last");
  EXPECT_EQ(presetsAfterDeleting(last, presetsAfterUpserting(last, builtIns)), builtIns);
}

} // namespace
} // namespace ventolith::app
