#include "ui/state/DashboardContent.h"

#include "support/Plans.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::ui {
namespace {

using core::ColorScheme;
using core::SensorCategory;
using support::utf8;

core::TempSensor sensor(SensorCategory category, double celsius) {
  return {.key = "TC0P", .name = "CPU (cluster)", .celsius = celsius, .category = category};
}

TEST(SensorRow, NamesCategoryAndBand) {
  struct Row {
    SensorCategory category;
    double celsius;
    const char* detail;
    const char* reading;
  };
  const Row rows[] = {
      {SensorCategory::cpu, 61.74, "CPU · Working", "61.7°C"},
      {SensorCategory::gpu, 44.99, "GPU · Idle", "45.0°C"},
      {SensorCategory::battery, 45, "Battery · Normal", "45.0°C"},
      {SensorCategory::ssd, 75, "SSD · Heavy", "75.0°C"},
      {SensorCategory::sensor, 90, "Sensor · Throttle risk", "90.0°C"},
      {SensorCategory::cpu, std::numeric_limits<double>::quiet_NaN(), "CPU · Throttle risk", "nan°C"},
  };
  for (const Row& row : rows) {
    const SensorRowContent content = sensorRowContent(sensor(row.category, row.celsius), ColorScheme::light);
    EXPECT_EQ(utf8(content.name), "CPU (cluster)");
    EXPECT_EQ(utf8(content.detail), row.detail);
    EXPECT_EQ(utf8(content.reading), row.reading);
  }
}

TEST(SensorRow, DotAndReadingHaveTheColourOfTheTemperature) {
  for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
    const SensorRowContent content = sensorRowContent(sensor(SensorCategory::cpu, 59.5), scheme);
    EXPECT_EQ(content.color, core::TemperatureScale::color(59.5, scheme));
  }
}

TEST(Dashboard, CardsKeepTheirWords) {
  const DashboardTexts texts = dashboardTexts();
  EXPECT_EQ(utf8(texts.fans), "Fans");
  EXPECT_EQ(utf8(texts.noFans), "No fans detected");
  EXPECT_EQ(utf8(texts.sensors), "Sensors");
  EXPECT_EQ(utf8(texts.noSensors), "No sensors detected");
}

} // namespace
} // namespace ventolith::ui
