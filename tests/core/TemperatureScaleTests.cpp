#include "core/TemperatureScale.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::core {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(TemperatureScale, ALimitBelongsToTheWarmerBand) {
  struct Row {
    double celsius;
    std::string_view word;
  };
  const Row rows[] = {
      {-40, "Idle"},      {44.99, "Idle"}, {45, "Normal"},   {59.99, "Normal"},     {60, "Working"},
      {74.99, "Working"}, {75, "Heavy"},   {89.99, "Heavy"}, {90, "Throttle risk"}, {150, "Throttle risk"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(rawValue(TemperatureScale::band(row.celsius)), row.word) << row.celsius;
}

TEST(TemperatureScale, WhatIsNotANumberIsCriticalAndRed) {
  EXPECT_EQ(TemperatureScale::band(notANumber), TemperatureBand::critical);
  EXPECT_EQ(TemperatureScale::color(notANumber, ColorScheme::dark), TemperatureScale::stops.back().dark);
}

TEST(TemperatureScale, IsFlatOutsideItsStops) {
  for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
    EXPECT_EQ(TemperatureScale::color(-10, scheme), TemperatureScale::color(35, scheme));
    EXPECT_EQ(TemperatureScale::color(120, scheme), TemperatureScale::color(97, scheme));
  }
}

TEST(TemperatureScale, AStopHasItsOwnColorInBothSchemes) {
  for (const auto& stop : TemperatureScale::stops) {
    const Color light = TemperatureScale::color(stop.celsius, ColorScheme::light);
    EXPECT_DOUBLE_EQ(light.r, stop.light.r) << stop.celsius;
    EXPECT_DOUBLE_EQ(light.g, stop.light.g) << stop.celsius;
    EXPECT_DOUBLE_EQ(light.b, stop.light.b) << stop.celsius;
    const Color dark = TemperatureScale::color(stop.celsius, ColorScheme::dark);
    EXPECT_DOUBLE_EQ(dark.r, stop.dark.r) << stop.celsius;
    EXPECT_DOUBLE_EQ(dark.g, stop.dark.g) << stop.celsius;
    EXPECT_DOUBLE_EQ(dark.b, stop.dark.b) << stop.celsius;
  }
}

TEST(TemperatureScale, MidwayBetweenTwoStopsEveryComponentIsMidway) {
  const Color color = TemperatureScale::color(59.5, ColorScheme::light);
  EXPECT_DOUBLE_EQ(color.r * 255, (52 + 255) / 2.0);
  EXPECT_DOUBLE_EQ(color.g * 255, (199 + 179) / 2.0);
  EXPECT_DOUBLE_EQ(color.b * 255, (89 + 64) / 2.0);
}

TEST(TemperatureScale, ColdestIsBlueAndHottestIsRed) {
  EXPECT_EQ(TemperatureScale::stops.front().light, (Color{62 / 255.0, 155 / 255.0, 1}));
  EXPECT_EQ(TemperatureScale::stops.back().dark, (Color{1, 69 / 255.0, 58 / 255.0}));
}

} // namespace
} // namespace ventolith::core
