#include "ui/state/MenuBarContent.h"

#include "support/Plans.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::ui {
namespace {

using core::ColorScheme;
using core::ControlMode;
using support::utf8;

constexpr ControlMode allModes[] = {ControlMode::automatic, ControlMode::fullBlast, ControlMode::manual,
                                    ControlMode::curve};

core::TempSensor sensor(std::string name, double celsius) {
  return {.key = name, .name = name, .celsius = celsius};
}

core::SensorSnapshot sensors(std::size_t count) {
  core::SensorSnapshot snapshot;
  for (std::size_t place = 0; place < count; ++place)
    snapshot.temps.push_back(sensor("Sensor " + std::to_string(place), 40 + 5 * static_cast<double>(place)));
  return snapshot;
}

FanControlBlockState block(ControlMode mode, bool isHelperActive) {
  return {.fan = {.id = 1, .name = "Fan 1", .currentRPM = 5921, .minRPM = 2000, .maxRPM = 8000},
          .mode = mode,
          .sliderValue = 4430,
          .canControlFans = isHelperActive,
          .isHelperActive = isHelperActive};
}

TEST(MenuBarLabel, ShowsTheHottestTemperatureAndTheFastestFan) {
  const core::SensorSnapshot snapshot = support::snapshot({}, {sensor("A", 50), sensor("B", 61.7)});
  const MenuBarLabelContent label = menuBarLabelContent(snapshot, block(ControlMode::manual, true).fan);
  EXPECT_EQ(utf8(label.temperature), "62°");
  EXPECT_EQ(utf8(label.speed), "5921rpm");
  EXPECT_EQ(utf8(label.figure), "5921");
}

TEST(MenuBarLabel, LeavesOutWhatIsNotThere) {
  const core::Fan fan = block(ControlMode::manual, true).fan;
  EXPECT_EQ(menuBarLabelContent({}, std::nullopt), MenuBarLabelContent{});
  EXPECT_TRUE(menuBarLabelContent(sensors(1), std::nullopt).speed.isEmpty());
  EXPECT_TRUE(menuBarLabelContent({}, fan).temperature.isEmpty());
}

TEST(PanelHeader, ShowsTheHottestSensorAndTheStatusWord) {
  const core::SensorSnapshot snapshot =
      support::snapshot({}, {sensor("GPU", 50), sensor("CPU (cluster)", 61.7)});
  const PanelHeaderContent header =
      panelHeaderContent(snapshot, QStringLiteral("Balanced"), ColorScheme::dark);
  EXPECT_EQ(utf8(header.title), "CPU (cluster)");
  EXPECT_EQ(utf8(header.statusWord), "Balanced");
  EXPECT_EQ(utf8(header.temperature), "62°C");
  EXPECT_EQ(header.dot, core::TemperatureScale::color(61.7, ColorScheme::dark));
  EXPECT_TRUE(header.symbol.isEmpty());
}

TEST(PanelHeader, SaysThatThereIsNoSensorData) {
  const PanelHeaderContent header = panelHeaderContent({}, QStringLiteral("Automatic"), ColorScheme::light);
  EXPECT_EQ(utf8(header.title), "No sensor data");
  EXPECT_EQ(utf8(header.symbol), "thermometer");
  EXPECT_EQ(utf8(header.statusWord), "Automatic");
  EXPECT_TRUE(header.temperature.isEmpty());
  EXPECT_FALSE(header.dot);
}

TEST(SensorChips, AreTheFirstThreeOfTheSnapshotNotTheHottest) {
  struct Row {
    std::size_t sensors;
    std::size_t chips;
  };
  const Row rows[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {10, 3}};
  for (const Row& row : rows) {
    const auto chips = sensorChips(sensors(row.sensors), ColorScheme::light);
    ASSERT_EQ(chips.size(), row.chips);
    for (std::size_t place = 0; place < chips.size(); ++place)
      EXPECT_EQ(utf8(chips[place].name), "Sensor " + std::to_string(place));
  }
}

TEST(SensorChips, ShowWholeDegreesInTheColourOfTheTemperature) {
  const auto chips = sensorChips(support::snapshot({}, {sensor("CPU", 77.3)}), ColorScheme::light);
  ASSERT_EQ(chips.size(), 1U);
  EXPECT_EQ(utf8(chips[0].temperature), "77°");
  EXPECT_EQ(chips[0].dot, core::TemperatureScale::color(77.3, ColorScheme::light));
}

TEST(FanControlBlock, ShowsTheFanAndItsSpeed) {
  const FanControlBlockContent content = fanControlBlockContent(block(ControlMode::curve, true));
  EXPECT_EQ(utf8(content.name), "Fan 1");
  EXPECT_EQ(utf8(content.speed), "5921 rpm");
  EXPECT_EQ(content.badge, modeBadge(ControlMode::curve));
  EXPECT_EQ(content.sliderRange, (SpeedRange{.lower = 2000, .upper = 8000}));
  EXPECT_EQ(content.sliderValue, 4430);
}

TEST(FanControlBlock, PercentageIsOfTheSlidersTravel) {
  struct Row {
    double sliderValue;
    const char* text;
  };
  const Row rows[] = {{2000, "0%"}, {4430, "41%"},  {8000, "100%"},
                      {0, "0%"},    {9999, "100%"}, {std::numeric_limits<double>::quiet_NaN(), "0%"}};
  for (const Row& row : rows) {
    FanControlBlockState state = block(ControlMode::manual, true);
    state.sliderValue = row.sliderValue;
    EXPECT_EQ(utf8(fanControlBlockContent(state).percentage), row.text) << row.sliderValue;
  }
}

TEST(FanControlBlock, IsEnabledInEveryModeWithAHelperAndInNoneWithout) {
  for (const ControlMode mode : allModes) {
    for (const bool isHelperActive : {false, true}) {
      const FanControlBlockContent content = fanControlBlockContent(block(mode, isHelperActive));
      EXPECT_EQ(content.isSliderEnabled, isHelperActive);
      EXPECT_EQ(content.isFullBlastEnabled, isHelperActive);
      EXPECT_EQ(content.isAutoEnabled, isHelperActive);
    }
  }
}

TEST(FanControlBlock, ToolTipsSayWhatTheButtonsDo) {
  const FanControlBlockContent with = fanControlBlockContent(block(ControlMode::manual, true));
  EXPECT_EQ(utf8(with.fullBlastToolTip), "Full Blast");
  EXPECT_EQ(utf8(with.autoToolTip), "Restore automatic fan control");
  const FanControlBlockContent without = fanControlBlockContent(block(ControlMode::manual, false));
  EXPECT_EQ(utf8(without.fullBlastToolTip), "Full Blast");
  EXPECT_EQ(utf8(without.autoToolTip), "Fan control isn't active yet");
}

TEST(FanControlBlock, IsSpokenWithTheNameOfItsFan) {
  const FanControlBlockContent content = fanControlBlockContent(block(ControlMode::manual, true));
  EXPECT_EQ(utf8(content.spokenSliderName), "Fan 1 speed");
  EXPECT_EQ(utf8(content.spokenSliderValue), "41 percent");
  EXPECT_EQ(utf8(content.spokenSliderHint), "Sets a manual fan speed when released");
  EXPECT_EQ(utf8(content.spokenFullBlast), "Set Fan 1 to Full Blast");
  EXPECT_EQ(utf8(content.spokenAuto), "Restore automatic control for Fan 1");
}

TEST(MenuBar, PanelKeepsItsWords) {
  const MenuBarTexts texts = menuBarTexts();
  EXPECT_EQ(utf8(texts.noFans), "No fans detected");
  EXPECT_EQ(utf8(texts.preset), "Preset");
  EXPECT_EQ(utf8(texts.restoreAuto), "Restore Auto");
  EXPECT_EQ(utf8(texts.restoreAutoToolTip), "Restores every fan to automatic control");
  EXPECT_EQ(utf8(texts.openWindow), "Open Ventolith");
  EXPECT_EQ(utf8(texts.openWindowToolTip), "Opens the Ventolith dashboard window");
  EXPECT_EQ(utf8(texts.support), "Support");
  EXPECT_EQ(utf8(texts.quit), "Quit");
}

} // namespace
} // namespace ventolith::ui
