#include "app/selftest/HardwareReport.h"

#include "app/ReportText.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using core::SensorCategory;
using core::SensorSource;

Lines report(const HardwareReading& reading) {
  ReportText text;
  printHardwareReport(reading, text.output);
  EXPECT_EQ(text.errors.str(), "");
  return text.lines();
}

Lines sensorLines(std::vector<core::TempSensor> temps) {
  HardwareReading reading;
  reading.snapshot.temps = std::move(temps);
  const Lines lines = report(reading);
  return {lines.begin() + 2, lines.end()};
}

TEST(HardwareReport, AMachineWithoutFansAndSensorsHasThreeLines) {
  EXPECT_EQ(report({}), (Lines{"HID private API resolved: false", "Fans: 0", "Sensors: 0  (source: n/a)"}));
}

TEST(HardwareReport, SaysWhetherTheHubsInterfaceResolved) {
  HardwareReading reading;
  reading.isHIDAvailable = true;
  EXPECT_EQ(report(reading).front(), "HID private API resolved: true");
}

TEST(HardwareReport, FansStandInSnapshotOrderAndAnUnreadableModeIsNotAvailable) {
  HardwareReading reading;
  reading.snapshot.fans = {
      {.id = 0, .name = "Fan 0", .currentRPM = 2317, .minRPM = 2000, .maxRPM = 8000, .mode = 0},
      {.id = 1, .name = "Fan 1", .currentRPM = 0, .minRPM = 2100, .maxRPM = 7900, .mode = std::nullopt},
      {.id = 2, .name = "Fan 2", .currentRPM = -1, .minRPM = 0, .maxRPM = 0, .mode = 3},
  };
  EXPECT_EQ(report(reading), (Lines{
                                 "HID private API resolved: false",
                                 "Fans: 3",
                                 "  Fan 0: 2317 rpm  (min 2000, max 8000, mode 0)",
                                 "  Fan 1: 0 rpm  (min 2100, max 7900, mode n/a)",
                                 "  Fan 2: -1 rpm  (min 0, max 0, mode 3)",
                                 "Sensors: 0  (source: n/a)",
                             }));
}

TEST(HardwareReport, ASensorsCategoryIsPaddedToTenCharacters) {
  EXPECT_EQ(sensorLines({
                {"PMU tdie1", "PMU tdie1", 43.5, SensorCategory::cpu, SensorSource::hid},
                {"GPU1", "GPU (GPU1)", 61, SensorCategory::gpu, SensorSource::hid},
                {"NAND", "SSD", 38, SensorCategory::ssd, SensorSource::hid},
                {"battery", "Battery", 30, SensorCategory::battery, SensorSource::hid},
                {"x", "Other", 20, SensorCategory::sensor, SensorSource::hid},
            }),
            (Lines{
                "Sensors: 5  (source: HID)",
                "  [CPU]      PMU tdie1    43.5°C  (HID: PMU tdie1)",
                "  [GPU]      GPU (GPU1)    61.0°C  (HID: GPU1)",
                "  [SSD]      SSD    38.0°C  (HID: NAND)",
                "  [Battery]  Battery    30.0°C  (HID: battery)",
                "  [Sensor]   Other    20.0°C  (HID: x)",
            }));
}

TEST(HardwareReport, TheSourceIsThatOfTheFirstSensor) {
  EXPECT_EQ(sensorLines({
                {"TCHP", "CPU", 50, SensorCategory::cpu, SensorSource::smc},
                {"GPU1", "GPU", 60, SensorCategory::gpu, SensorSource::hid},
            }),
            (Lines{
                "Sensors: 2  (source: SMC)",
                "  [CPU]      CPU    50.0°C  (SMC: TCHP)",
                "  [GPU]      GPU    60.0°C  (HID: GPU1)",
            }));
}

TEST(HardwareReport, ATemperatureHasOneDecimalInSixCharacters) {
  struct Row {
    double celsius;
    const char* text;
  };
  const Row rows[] = {{0, "   0.0"},     {5.04, "   5.0"},  {5.06, "   5.1"},     {43.25, "  43.2"},
                      {43.75, "  43.8"}, {-7.5, "  -7.5"},  {-40, " -40.0"},      {150, " 150.0"},
                      {99.97, " 100.0"}, {-0.04, "  -0.0"}, {12345.67, "12345.7"}};
  for (const auto& [celsius, shown] : rows) {
    const Lines lines = sensorLines({{"TCHP", "CPU", celsius, SensorCategory::cpu, SensorSource::smc}});
    EXPECT_EQ(lines.back(), std::string("  [CPU]      CPU  ") + shown + "°C  (SMC: TCHP)");
  }
}

} // namespace
} // namespace ventolith::app
