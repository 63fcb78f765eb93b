#include "hardware/HIDSensorCatalog.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::hardware {
namespace {

using core::SensorCategory;
using core::SensorSource;
using core::TempSensor;
using RawReading = HIDBridge::RawReading;
using Sensors = std::vector<TempSensor>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// A reading that moves around `celsius`.
RawReading moving(std::string label, double celsius) {
  return {std::move(label), {celsius - 0.5, celsius, celsius + 0.5}};
}

RawReading frozen(std::string label, double celsius) {
  return {std::move(label), {celsius, celsius, celsius}};
}

TempSensor sensor(std::string label, std::string name, SensorCategory category, double celsius) {
  return {std::move(label), std::move(name), celsius, category, SensorSource::hid};
}

Sensors soc(double celsius) {
  return {sensor("SoC", "CPU", SensorCategory::cpu, celsius)};
}

TEST(HIDSensorCatalog, NothingGivesNothing) {
  EXPECT_EQ(HIDSensorCatalog::curate({}), Sensors());
}

TEST(HIDSensorCatalog, NamesAndClassifiesByTheFirstRuleThatFits) {
  struct Row {
    const char* label;
    const char* name;
    SensorCategory category;
  };
  const Row rows[] = {
      {"gas gauge battery", "Battery", SensorCategory::battery},
      {"BATTERY 2", "Battery", SensorCategory::battery},
      {"NAND CH0 temp", "SSD", SensorCategory::ssd},
      {"ssd1", "SSD", SensorCategory::ssd},
      {"GPU", "GPU (GPU)", SensorCategory::gpu},
      {"GPU MTR Temp Sensor1", "GPU (GPU MTR  Sensor1)", SensorCategory::gpu},
      {"PMU gpu3", "GPU (gpu3)", SensorCategory::gpu},
      {"pmugpu3TEMP", "GPU (gpu3)", SensorCategory::gpu},
      {"  temp Gpu pmu temp ", "GPU (Gpu)", SensorCategory::gpu},
      {"CPU", "CPU (CPU)", SensorCategory::cpu},
      {"pACC CPU MTR Temp", "CPU (pACC CPU MTR)", SensorCategory::cpu},
      {"cpu\tTemp", "CPU (cpu)", SensorCategory::cpu},
      // Each rule comes before those below it.
      {"gpu battery", "Battery", SensorCategory::battery},
      {"ssd battery", "Battery", SensorCategory::battery},
      {"cpu nand", "SSD", SensorCategory::ssd},
      {"gpu ssd", "SSD", SensorCategory::ssd},
      {"cpu gpu", "GPU (cpu gpu)", SensorCategory::gpu},
      {"cpu tdev1", "CPU (cpu tdev1)", SensorCategory::cpu},
  };
  for (const auto& [label, name, category] : rows) {
    const Sensors expected = {sensor(label, name, category, 50)};
    EXPECT_EQ(HIDSensorCatalog::curate({moving(label, 50)}), expected) << label;
  }
}

TEST(HIDSensorCatalog, ALabelOfNothingButNoiseWordsIsTheCategoryAlone) {
  EXPECT_EQ(HIDSensorCatalog::cleaned("temp", "GPU"), "GPU");
  EXPECT_EQ(HIDSensorCatalog::cleaned(" PMU Temp ", "CPU"), "CPU");
  EXPECT_EQ(HIDSensorCatalog::cleaned("PMU tdie1", "CPU"), "CPU (tdie1)");
  EXPECT_EQ(HIDSensorCatalog::cleaned("tetempmp", "GPU"), "GPU (temp)"); // What a removal forms stays.
}

TEST(HIDSensorCatalog, ALabelWithGPUAndBatteryIsABatterySensor) {
  const Sensors expected = {sensor("GPU Battery", "Battery", SensorCategory::battery, 30)};
  EXPECT_EQ(HIDSensorCatalog::curate({moving("GPU Battery", 30)}), expected);
}

TEST(HIDSensorCatalog, LabelsWithoutACategoryWordFoldIntoTheSoCReading) {
  for (const char* label :
       {"PMU tdie1", "PMU tdev3", "PMU TP2s", "eACC MTR Temp Sensor0", "temp", "ANE", "SOC"}) {
    EXPECT_EQ(HIDSensorCatalog::curate({moving(label, 50)}), soc(50)) << label;
  }
}

TEST(HIDSensorCatalog, TheSoCReadingIsTheHottestOfItsSensorsAndStandsLast) {
  const Sensors expected = {
      sensor("GPU1", "GPU (GPU1)", SensorCategory::gpu, 90),
      sensor("battery", "Battery", SensorCategory::battery, 30),
      sensor("SoC", "CPU", SensorCategory::cpu, 70),
  };
  EXPECT_EQ(HIDSensorCatalog::curate({moving("PMU tdie1", 60), moving("GPU1", 90), moving("PMU tdie2", 70),
                                      moving("battery", 30), moving("PMU tdev1", 65)}),
            expected);
}

TEST(HIDSensorCatalog, TheSoCReadingMayBeBelowZero) {
  EXPECT_EQ(HIDSensorCatalog::curate({moving("PMU tdie1", -20), moving("PMU tdie2", -10)}), soc(-10));
}

TEST(HIDSensorCatalog, WithoutSoCSensorsThereIsNoSoCReading) {
  const Sensors expected = {sensor("CPU", "CPU (CPU)", SensorCategory::cpu, 50)};
  EXPECT_EQ(HIDSensorCatalog::curate({moving("CPU", 50)}), expected);
}

TEST(HIDSensorCatalog, TheCategorySensorNeverLeaves) {
  const Sensors sensors =
      HIDSensorCatalog::curate({moving("PMU tdie1", 50), moving("x", 40), moving("GPU", 30)});
  for (const TempSensor& one : sensors)
    EXPECT_NE(one.category, SensorCategory::sensor) << one.key;
}

TEST(HIDSensorCatalog, CalibrationValuesAreDropped) {
  for (const char* label : {"PMU tcal", "PMU TCAL", "tcal gpu", "GPU Tcal", "tcal battery", "ssdtcal"})
    EXPECT_EQ(HIDSensorCatalog::curate({moving(label, 50)}), Sensors()) << label;
}

TEST(HIDSensorCatalog, AFrozenReadingIsKeptOnBatteriesAndSSDsAlone) {
  for (const char* label : {"Battery", "NAND CH0", "my SSD", "gpu battery"})
    EXPECT_EQ(HIDSensorCatalog::curate({frozen(label, 30)}).size(), 1U) << label;
  for (const char* label : {"GPU", "CPU", "PMU tdie1", "PMU tdev1", "anything"})
    EXPECT_EQ(HIDSensorCatalog::curate({frozen(label, 30)}), Sensors()) << label;
}

TEST(HIDSensorCatalog, AReadingWithoutSamplesCountsAsFrozenAtZero) {
  const Sensors expected = {sensor("battery", "Battery", SensorCategory::battery, 0)};
  EXPECT_EQ(HIDSensorCatalog::curate({{"battery", {}}, {"gpu", {}}}), expected);
}

TEST(HIDSensorCatalog, ATemperatureCountsWithinItsBoundsBothEndsIncluded) {
  for (const double celsius : {-40.0, 0.0, 150.0})
    EXPECT_EQ(HIDSensorCatalog::curate({frozen("battery", celsius)}).size(), 1U) << celsius;
  for (const double celsius :
       {-40.01, 150.01, 1e30, -1e30, notANumber, std::numeric_limits<double>::infinity()})
    EXPECT_EQ(HIDSensorCatalog::curate({frozen("battery", celsius)}), Sensors()) << celsius;
}

TEST(HIDSensorCatalog, OneSampleThatIsNotANumberSpoilsTheReading) {
  EXPECT_EQ(HIDSensorCatalog::curate({{"GPU", {50, notANumber, 51}}}), Sensors());
}

TEST(HIDSensorCatalog, TheBoundsApplyToTheMean) {
  EXPECT_EQ(HIDSensorCatalog::curate({{"GPU", {149, 150, 151}}}).size(), 1U);
  EXPECT_EQ(HIDSensorCatalog::curate({{"GPU", {149, 150, 152}}}), Sensors());
}

TEST(HIDSensorCatalog, TheFirstReadingOfALabelWinsEvenIfItIsCooler) {
  const Sensors expected = {sensor("GPU1", "GPU (GPU1)", SensorCategory::gpu, 40)};
  EXPECT_EQ(HIDSensorCatalog::curate({moving("GPU1", 40), moving("GPU1", 80)}), expected);
  EXPECT_EQ(HIDSensorCatalog::curate({moving("PMU tdie1", 40), moving("PMU tdie1", 80)}), soc(40));
}

TEST(HIDSensorCatalog, LabelsThatDifferInCaseAreDifferentLabels) {
  EXPECT_EQ(HIDSensorCatalog::curate({moving("GPU1", 40), moving("gpu1", 80)}).size(), 2U);
}

TEST(HIDSensorCatalog, ALabelThatWasDroppedAsFrozenOrImplausibleMayStillPassLater) {
  const Sensors expected = {sensor("GPU1", "GPU (GPU1)", SensorCategory::gpu, 80)};
  EXPECT_EQ(HIDSensorCatalog::curate({frozen("GPU1", 40), moving("GPU1", 200), moving("GPU1", 80)}),
            expected);
}

TEST(HIDSensorCatalog, TheOthersKeepTheirOrder) {
  std::vector<std::string> keys;
  for (const TempSensor& one :
       HIDSensorCatalog::curate({moving("ssd", 1), moving("gpu", 2), moving("battery", 3), moving("cpu", 4)}))
    keys.push_back(one.key);
  EXPECT_EQ(keys, (std::vector<std::string>{"ssd", "gpu", "battery", "cpu"}));
}

TEST(HIDSensorCatalog, PlausibilityIncludesBothEndsAndExcludesWhatIsNotANumber) {
  EXPECT_TRUE(isPlausibleCelsius(-40));
  EXPECT_TRUE(isPlausibleCelsius(150));
  EXPECT_FALSE(isPlausibleCelsius(-40.0001));
  EXPECT_FALSE(isPlausibleCelsius(150.0001));
  EXPECT_FALSE(isPlausibleCelsius(notANumber));
}

} // namespace
} // namespace ventolith::hardware
