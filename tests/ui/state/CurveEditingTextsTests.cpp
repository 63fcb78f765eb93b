#include "ui/state/CurveEditingTexts.h"

#include "support/Plans.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::ui {
namespace {

using support::utf8;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(CurveTexts, LiveNumbersAreCutTowardZero) {
  struct Row {
    ChartValue live;
    const char* line;
    const char* label;
  };
  const Row rows[] = {
      {{61.9, 42.99}, "Live: 61°C → 42%", "61°C · 42%"},
      {{-0.9, 0}, "Live: 0°C → 0%", "0°C · 0%"},
      {{100, 100}, "Live: 100°C → 100%", "100°C · 100%"},
      {{notANumber, 100}, "Live: 0°C → 100%", "0°C · 100%"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(utf8(liveLine(row.live)), row.line);
    EXPECT_EQ(utf8(liveLabelText(row.live)), row.label);
  }
}

TEST(CurveTexts, NoReadingIsSaid) {
  EXPECT_EQ(utf8(liveLine(std::nullopt)), "No live sensor reading yet.");
}

TEST(CurveTexts, ReadingBeyondAllNumbersIsStillShown) {
  EXPECT_EQ(utf8(liveLine(ChartValue{infinity, 100})), "Live: 9223372036854775807°C → 100%");
}

TEST(CurveTexts, HysteresisHasOneDecimal) {
  EXPECT_EQ(utf8(hysteresisText(2)), "2.0 °C");
  EXPECT_EQ(utf8(hysteresisText(4.5)), "4.5 °C");
}

TEST(CurveTexts, ResponseWordChangesAtItsLimitsExactly) {
  struct Row {
    double alpha;
    const char* word;
  };
  const Row rows[] = {{0, "Slow"},          {0.339999, "Slow"}, {0.34, "Medium"},
                      {0.669999, "Medium"}, {0.67, "Fast"},     {1, "Fast"}};
  for (const Row& row : rows)
    EXPECT_EQ(utf8(responseWord(row.alpha)), row.word) << row.alpha;
}

TEST(CurveTexts, PointIsSpokenWithItsPlaceAndItsValue) {
  EXPECT_EQ(utf8(spokenPointName(1, 4)), "Point 2 of 4");
  EXPECT_EQ(utf8(spokenPointValue({.celsius = 60, .percent = 40})), "60°C, 40%");
}

TEST(CurveTexts, FanPickerListsTheFansAndMarksTheChosenOne) {
  core::SensorSnapshot snapshot = support::snapshot({support::fan(0), support::fan(1)});
  snapshot.fans[1].name = "Fan 1";
  const auto picker = fanPicker(snapshot, 1);
  ASSERT_EQ(picker.entries.size(), 2U);
  EXPECT_EQ(picker.entries[1].value, 1);
  EXPECT_EQ(utf8(picker.entries[1].title), "Fan 1");
  EXPECT_EQ(picker.selected, 1U);
  EXPECT_FALSE(fanPicker(snapshot, 9).selected);
  EXPECT_FALSE(fanPicker(snapshot, std::nullopt).selected);
}

TEST(CurveTexts, SensorPickerBeginsWithTheHottest) {
  core::SensorSnapshot snapshot = support::snapshot({}, {support::sensor("B", 50), support::sensor("A", 60)});
  snapshot.temps[0].name = "GPU";
  const auto picker = sourceSensorPicker(snapshot, std::nullopt);
  ASSERT_EQ(picker.entries.size(), 3U);
  EXPECT_FALSE(picker.entries[0].value);
  EXPECT_EQ(utf8(picker.entries[0].title), "Hottest");
  EXPECT_EQ(picker.entries[1].value, "SMC-B");
  EXPECT_EQ(utf8(picker.entries[1].title), "GPU");
  EXPECT_EQ(picker.selected, 0U);
}

TEST(CurveTexts, SensorPickerMarksTheChosenSensorUnlessItIsGone) {
  const core::SensorSnapshot snapshot =
      support::snapshot({}, {support::sensor("B", 50), support::sensor("A", 60)});
  EXPECT_EQ(sourceSensorPicker(snapshot, "SMC-A").selected, 2U);
  EXPECT_FALSE(sourceSensorPicker(snapshot, "SMC-GONE").selected);
}

TEST(CurveTexts, ScreenKeepsItsWords) {
  const CurveEditingTexts texts = curveEditingTexts();
  const std::pair<QString, const char*> rows[] = {
      {texts.title, "Fan Curves"},
      {texts.subtitle, "Drag points on the temperature→speed curve to shape exactly how this fan responds."},
      {texts.noFans, "No fans detected"},
      {texts.fan, "Fan"},
      {texts.linkFans, "Link fans"},
      {texts.sourceSensor, "Source sensor"},
      {texts.sourceSensorCaption, "This fan follows this sensor."},
      {texts.temperatureAxis, "Temperature (°C)"},
      {texts.speedAxis, "Fan speed (%)"},
      {texts.safetyOverride, "Safety override"},
      {texts.addPoint, "Add Point"},
      {texts.deletePoint, "Delete Point"},
      {texts.reset, "Reset"},
      {texts.saveAsPreset, "Save as Preset…"},
      {texts.caption, "Curves take effect once fan control is enabled (Dashboard → Enable…)."},
      {texts.popoverHeading, "Save as Preset"},
      {texts.namePlaceholder, "Name"},
      {texts.presetNameDraft, "Custom"},
      {texts.cancel, "Cancel"},
      {texts.save, "Save"},
      {texts.tuning, "Response tuning"},
      {texts.tuningCaption, "Applies to every curve- and rule-driven fan, not just this one."},
      {texts.hysteresis, "Hysteresis"},
      {texts.response, "Response"},
      {texts.slow, "Slow"},
      {texts.fast, "Fast"},
  };
  for (const auto& [shown, expected] : rows)
    EXPECT_EQ(utf8(shown), expected);
}

} // namespace
} // namespace ventolith::ui
