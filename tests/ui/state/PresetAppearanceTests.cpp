#include "ui/state/PresetAppearance.h"

#include "app/PresetLibrary.h"
#include "support/Plans.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ventolith::ui {
namespace {

using core::Color;
using core::ColorScheme;
using core::FanControlModePlan;
using support::utf8;
namespace Library = app::PresetLibrary;

/// An identifier whose bytes add up to `sum`.
core::UUID idOfSum(int sum) {
  core::UUID id{};
  for (auto& byte : id) {
    byte = static_cast<std::uint8_t>(std::min(sum, 255));
    sum -= byte;
  }
  return id;
}

void expectNear(const Color& shown, const Color& expected) {
  EXPECT_NEAR(shown.r, expected.r, 1e-12);
  EXPECT_NEAR(shown.g, expected.g, 1e-12);
  EXPECT_NEAR(shown.b, expected.b, 1e-12);
}

core::FanPreset presetOf(std::vector<core::FanPlan> fans) {
  return {.name = "Mine", .plan = {.fans = std::move(fans)}};
}

TEST(PresetDot, HuesGoRoundTheWheel) {
  struct Row {
    double degrees;
    Color color;
  };
  // Saturation 0.55 and brightness 0.8 leave 0.36 of what a hue lacks.
  const Row rows[] = {
      {0, {0.8, 0.36, 0.36}},   {60, {0.8, 0.8, 0.36}},   {120, {0.36, 0.8, 0.36}}, {180, {0.36, 0.8, 0.8}},
      {240, {0.36, 0.36, 0.8}}, {300, {0.8, 0.36, 0.8}},  {30, {0.8, 0.58, 0.36}},  {210, {0.36, 0.58, 0.8}},
      {330, {0.8, 0.36, 0.58}}, {360, {0.8, 0.36, 0.36}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.degrees);
    expectNear(colorOfHue(row.degrees / 360, 0.55, 0.8), row.color);
  }
}

TEST(PresetDot, OwnPresetsTakeTheirHueFromTheBytesOfTheirIdentifier) {
  struct Row {
    int sum;
    Color color;
  };
  const Row rows[] = {{0, {0.8, 0.36, 0.36}},
                      {120, {0.36, 0.8, 0.36}},
                      {240, {0.36, 0.36, 0.8}},
                      {360, {0.8, 0.36, 0.36}},
                      {360 * 11 + 120, {0.36, 0.8, 0.36}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.sum);
    expectNear(presetDotColor(idOfSum(row.sum), ColorScheme::light), row.color);
    expectNear(presetDotColor(idOfSum(row.sum), ColorScheme::dark), row.color);
  }
}

TEST(PresetDot, BuiltInPresetsHaveTheColoursOfTheirMeaning) {
  const auto isMostly = [](double one, double other, double third) { return one > other && one > third; };
  for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
    const Color quiet = presetDotColor(Library::quietID, scheme);
    const Color balanced = presetDotColor(Library::balancedID, scheme);
    const Color max = presetDotColor(Library::maxID, scheme);
    EXPECT_TRUE(isMostly(quiet.b, quiet.r, quiet.g));
    EXPECT_TRUE(isMostly(balanced.g, balanced.r, balanced.b));
    EXPECT_TRUE(isMostly(max.r, max.g, max.b));
  }
}

TEST(PresetDot, BuiltInPresetsFollowTheAppearance) {
  expectNear(presetDotColor(Library::quietID, ColorScheme::light), {10 / 255.0, 132 / 255.0, 1});
  expectNear(presetDotColor(Library::quietID, ColorScheme::dark), {64 / 255.0, 156 / 255.0, 1});
}

TEST(PresetCaption, FollowsTheIdentifier) {
  EXPECT_EQ(utf8(presetCaption(Library::quietID)), "Whisper-quiet");
  EXPECT_EQ(utf8(presetCaption(Library::balancedID)), "Everyday balance");
  EXPECT_EQ(utf8(presetCaption(Library::maxID)), "Maximum cooling");
  EXPECT_EQ(utf8(presetCaption(core::makeUUID())), "Custom");
}

TEST(PresetThumbnail, SaysThatThereAreNoFans) {
  const PresetThumbnail thumbnail = presetThumbnail(presetOf({}));
  EXPECT_EQ(thumbnail.kind, PresetThumbnail::Kind::noFans);
  EXPECT_EQ(utf8(thumbnail.text), "No fans configured");
}

TEST(PresetThumbnail, DrawsTheCurveOfTheFirstFan) {
  const PresetThumbnail thumbnail =
      presetThumbnail(presetOf({{4, FanControlModePlan::curve(support::curve({{30, 10}, {100, 80}}))},
                                {0, FanControlModePlan::automatic()}}));
  EXPECT_EQ(thumbnail.kind, PresetThumbnail::Kind::curve);
  ASSERT_EQ(thumbnail.samples.size(), 15U);
  EXPECT_EQ(thumbnail.samples.front(), (ChartValue{30, 10}));
  EXPECT_EQ(thumbnail.samples[1], (ChartValue{35, 15}));
  EXPECT_EQ(thumbnail.samples.back(), (ChartValue{100, 80}));
}

TEST(PresetThumbnail, WhateverIsNoCurveIsManual) {
  const FanControlModePlan curve = FanControlModePlan::curve(support::curve({{30, 10}}));
  for (const FanControlModePlan& mode :
       {FanControlModePlan::automatic(), FanControlModePlan::fixedPercent(100),
        FanControlModePlan::fixedRPM(3000)}) {
    const PresetThumbnail thumbnail = presetThumbnail(presetOf({{0, mode}, {1, curve}}));
    EXPECT_EQ(thumbnail.kind, PresetThumbnail::Kind::manual);
    EXPECT_EQ(utf8(thumbnail.text), "Manual");
    EXPECT_EQ(utf8(thumbnail.symbol), "hand.point.up.left.fill");
  }
}

} // namespace
} // namespace ventolith::ui
