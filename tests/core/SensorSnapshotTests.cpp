#include "core/SensorSnapshot.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace ventolith::core {
namespace {

using support::sensor;
using support::snapshot;

TEST(SensorSnapshot, EmptyHasNothingAndIsInTheFarPast) {
  EXPECT_TRUE(SensorSnapshot::empty.fans.empty());
  EXPECT_TRUE(SensorSnapshot::empty.temps.empty());
  EXPECT_EQ(SensorSnapshot::empty.timestamp, runtime::distantPastDate);
  EXPECT_EQ(SensorSnapshot::empty.hottest(), nullptr);
}

TEST(SensorSnapshot, HottestIsTheHighestOfAllCategoriesAndSources) {
  SensorSnapshot reading = snapshot({}, {sensor("a", 40), sensor("b", 70), sensor("c", 55)});
  reading.temps[1].category = SensorCategory::battery;
  reading.temps[1].source = SensorSource::hid;
  ASSERT_NE(reading.hottest(), nullptr);
  EXPECT_EQ(reading.hottest()->key, "b");
}

TEST(SensorSnapshot, FirstOfEqualReadingsIsTheHottest) {
  EXPECT_EQ(snapshot({}, {sensor("a", 40), sensor("b", 70), sensor("c", 70)}).hottest()->key, "b");
}

TEST(SensorSnapshot, HottestMayBeBelowZero) {
  EXPECT_EQ(snapshot({}, {sensor("a", -40), sensor("b", -7)}).hottest()->key, "b");
}

TEST(SensorCategory, HasItsRawValueAndRank) {
  struct Row {
    SensorCategory category;
    std::string_view raw;
    int rank;
  };
  const Row rows[] = {{SensorCategory::cpu, "CPU", 0},
                      {SensorCategory::gpu, "GPU", 1},
                      {SensorCategory::battery, "Battery", 3},
                      {SensorCategory::ssd, "SSD", 2},
                      {SensorCategory::sensor, "Sensor", 4}};
  ASSERT_EQ(allSensorCategories.size(), std::size(rows));
  for (std::size_t place = 0; place < std::size(rows); ++place) {
    SCOPED_TRACE(rows[place].raw);
    EXPECT_EQ(allSensorCategories.at(place), rows[place].category);
    EXPECT_EQ(rawValue(rows[place].category), rows[place].raw);
    EXPECT_EQ(sortOrder(rows[place].category), rows[place].rank);
    EXPECT_EQ(sensorCategory(rows[place].raw), rows[place].category);
  }
}

TEST(SensorCategory, SSDSortsAheadOfBattery) {
  std::array sorted = allSensorCategories;
  std::sort(sorted.begin(), sorted.end(), [](auto a, auto b) { return sortOrder(a) < sortOrder(b); });
  EXPECT_EQ(sorted, (std::array{SensorCategory::cpu, SensorCategory::gpu, SensorCategory::ssd,
                                SensorCategory::battery, SensorCategory::sensor}));
}

TEST(SensorCategory, OtherTextGivesNone) {
  for (const std::string_view text : {"", "cpu", "CPU ", "Fan"})
    EXPECT_EQ(sensorCategory(text), std::nullopt);
}

TEST(SensorSource, IsMadeOfItsRawValueAlone) {
  EXPECT_EQ(rawValue(SensorSource::hid), "HID");
  EXPECT_EQ(rawValue(SensorSource::smc), "SMC");
  EXPECT_EQ(sensorSource("HID"), SensorSource::hid);
  EXPECT_EQ(sensorSource("SMC"), SensorSource::smc);
  for (const std::string_view text : {"", "hid", "HWMON"})
    EXPECT_EQ(sensorSource(text), std::nullopt);
}

TEST(TempSensor, IdentifierLeadsWithItsSource) {
  TempSensor chip = sensor("TCHP", 50);
  EXPECT_EQ(chip.id(), "SMC-TCHP");
  chip.source = SensorSource::hid;
  EXPECT_EQ(chip.id(), "HID-TCHP");
  chip.key = "PMU tdie1";
  EXPECT_EQ(chip.id(), "HID-PMU tdie1");
}

TEST(Fan, ModeThatCannotBeReadIsNotModeZero) {
  Fan automatic = support::fan(0);
  Fan unreadable = automatic;
  unreadable.mode = std::nullopt;
  EXPECT_NE(automatic, unreadable);
  EXPECT_EQ(automatic, support::fan(0));
}

} // namespace
} // namespace ventolith::core
