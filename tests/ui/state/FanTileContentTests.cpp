#include "ui/state/FanTileContent.h"

#include "support/Plans.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::ui {
namespace {

using core::ControlMode;
using support::utf8;

constexpr ControlMode allModes[] = {ControlMode::automatic, ControlMode::fullBlast, ControlMode::manual,
                                    ControlMode::curve};

FanTileState tile(ControlMode mode, bool canControlFans = true) {
  return {.fan = {.id = 1, .name = "Fan 1", .currentRPM = 2310, .minRPM = 1250, .maxRPM = 6336},
          .mode = mode,
          .sliderValue = 1234.5,
          .canControlFans = canControlFans};
}

TEST(FanTile, ShowsTheFanItsSpeedAndItsRange) {
  const FanTileContent content = fanTileContent(tile(ControlMode::automatic));
  EXPECT_EQ(utf8(content.name), "Fan 1");
  EXPECT_EQ(utf8(content.speed), "2310");
  EXPECT_EQ(utf8(content.rangeText), "1250–6336 rpm range");
  EXPECT_DOUBLE_EQ(content.gauge, (2310.0 - 1250.0) / (6336.0 - 1250.0));
  EXPECT_EQ(content.sliderRange, (SpeedRange{.lower = 1250, .upper = 6336}));
  EXPECT_EQ(content.sliderValue, 1234.5);
}

TEST(FanTile, GaugeStaysFullAndEmptyBeyondTheRange) {
  FanTileState state = tile(ControlMode::automatic);
  state.fan.currentRPM = 9000;
  EXPECT_EQ(fanTileContent(state).gauge, 1);
  state.fan.currentRPM = 0;
  EXPECT_EQ(fanTileContent(state).gauge, 0);
}

TEST(FanTile, AFanWithoutARangeHasAGaugeThatEndsOneAboveItsMinimum) {
  FanTileState state = tile(ControlMode::automatic);
  state.fan.maxRPM = state.fan.minRPM;
  state.fan.currentRPM = state.fan.minRPM;
  EXPECT_EQ(fanTileContent(state).gauge, 0);
  state.fan.currentRPM = state.fan.minRPM + 1;
  EXPECT_EQ(fanTileContent(state).gauge, 1);
}

TEST(FanTile, RangeTextKeepsWhatTheFirmwareReports) {
  FanTileState state = tile(ControlMode::automatic);
  state.fan.maxRPM = 100;
  EXPECT_EQ(utf8(fanTileContent(state).rangeText), "1250–100 rpm range");
  EXPECT_EQ(fanTileContent(state).sliderRange, (SpeedRange{.lower = 1250, .upper = 1251}));
}

TEST(FanTile, StatusLineFollowsTheMode) {
  struct Row {
    ControlMode mode;
    bool isStopped;
    std::optional<std::string> preset;
    const char* text;
  };
  const Row rows[] = {
      {ControlMode::automatic, false, std::nullopt, "Automatic — firmware controlled"},
      {ControlMode::automatic, true, "Quiet", "Automatic — firmware controlled"},
      {ControlMode::fullBlast, false, "Quiet", "Target: 1235 rpm"},
      {ControlMode::manual, true, std::nullopt, "Target: 1235 rpm"},
      {ControlMode::curve, true, std::nullopt, "Curve · fan stopped (0%)"},
      {ControlMode::curve, true, "Quiet", "Curve · fan stopped (0%)"},
      {ControlMode::curve, false, "Quiet", "Curve · Quiet"},
      {ControlMode::curve, false, "100 %1", "Curve · 100 %1"},
      {ControlMode::curve, false, "", "Curve · "},
      {ControlMode::curve, false, std::nullopt, "Curve"},
  };
  for (const Row& row : rows) {
    FanTileState state = tile(row.mode);
    state.isStopped = row.isStopped;
    state.activePresetName = row.preset;
    EXPECT_EQ(utf8(fanTileContent(state).statusLine), row.text);
  }
}

TEST(FanTile, PercentageIsThatOfTheSlidersTravel) {
  struct Row {
    double sliderValue;
    const char* text;
  };
  const Row rows[] = {
      {1250, "0%"},
      {6336, "100%"},
      {1249, "0%"},
      {7000, "100%"},
      {3793, "50%"},
      {1300.86, "1%"},
      {std::numeric_limits<double>::quiet_NaN(), "0%"},
  };
  for (const Row& row : rows) {
    FanTileState state = tile(ControlMode::manual);
    state.sliderValue = row.sliderValue;
    EXPECT_EQ(utf8(fanTileContent(state).percentage), row.text) << row.sliderValue;
  }
}

TEST(FanTile, ControlsAreEnabledByHelperAndMode) {
  struct Row {
    ControlMode mode;
    bool canControlFans;
    bool slider;
    bool fullBlast;
  };
  const Row rows[] = {
      {ControlMode::automatic, true, true, true}, {ControlMode::automatic, false, false, false},
      {ControlMode::fullBlast, true, true, true}, {ControlMode::fullBlast, false, false, false},
      {ControlMode::manual, true, true, true},    {ControlMode::manual, false, false, false},
      {ControlMode::curve, true, false, true},    {ControlMode::curve, false, false, false},
  };
  for (const Row& row : rows) {
    const FanTileContent content = fanTileContent(tile(row.mode, row.canControlFans));
    EXPECT_EQ(content.isSliderEnabled, row.slider);
    EXPECT_EQ(content.isFullBlastEnabled, row.fullBlast);
  }
}

TEST(FanTile, WayBackToTheFirmwareIsNeverBlocked) {
  for (const ControlMode mode : allModes) {
    for (const bool canControlFans : {false, true})
      EXPECT_TRUE(fanTileContent(tile(mode, canControlFans)).isAutoEnabled);
  }
}

TEST(FanTile, TitleSaysWhenTheHelperIsMissing) {
  EXPECT_EQ(utf8(fanTileContent(tile(ControlMode::manual, true)).controlTitle), "Manual control");
  EXPECT_EQ(utf8(fanTileContent(tile(ControlMode::manual, false)).controlTitle),
            "Manual control (helper required)");
}

TEST(FanTile, BadgeIsAccentedForEveryModeButAutomatic) {
  struct Row {
    ControlMode mode;
    bool isAccented;
  };
  const Row rows[] = {{ControlMode::automatic, false},
                      {ControlMode::fullBlast, true},
                      {ControlMode::manual, true},
                      {ControlMode::curve, true}};
  for (const Row& row : rows) {
    const ModeBadge badge = fanTileContent(tile(row.mode)).badge;
    EXPECT_EQ(utf8(badge.label), core::label(row.mode));
    EXPECT_EQ(utf8(badge.symbol), core::symbolName(row.mode));
    EXPECT_EQ(badge.isAccented, row.isAccented);
  }
}

TEST(FanTile, ButtonsAndUnitKeepTheirWords) {
  const FanTileTexts texts = fanTileTexts();
  EXPECT_EQ(utf8(texts.speedUnit), "rpm");
  EXPECT_EQ(utf8(texts.fullBlast), "Full Blast");
  EXPECT_EQ(utf8(texts.automatic), "Auto");
}

} // namespace
} // namespace ventolith::ui
