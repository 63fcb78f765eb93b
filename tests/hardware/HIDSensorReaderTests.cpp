#include "hardware/HIDSensorReader.h"

#include "hardware/doubles/LoggingClock.h"
#include "hardware/doubles/ScriptedHIDBridge.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ventolith::hardware {
namespace {

using doubles::Log;

class HIDSensorReaderTest : public testing::Test {
protected:
  std::vector<core::TempSensor> read() { return time_.clock.run(reader_.readTemperatures()); }
  [[nodiscard]] auto discoveries() const { return std::count(log_.begin(), log_.end(), "discover"); }

  support::VirtualTime time_;
  Log log_;
  doubles::LoggingClock clock_{time_.clock, log_};
  doubles::ScriptedHIDBridge bridge_{log_};
  HIDSensorReader reader_{time_.executor(), bridge_, clock_};
};

TEST_F(HIDSensorReaderTest, TakesThreeSamplesFortyMillisecondsApartAndCuratesTheirMean) {
  bridge_.add("GPU1", {60.0, 61.0, 65.0});
  const std::vector<core::TempSensor> expected = {
      {"GPU1", "GPU (GPU1)", 62, core::SensorCategory::gpu, core::SensorSource::hid}};
  EXPECT_EQ(read(), expected);
  EXPECT_EQ(log_, (Log{"discover", "sample GPU1", "wait 40", "sample GPU1", "wait 40", "sample GPU1"}));
}

TEST_F(HIDSensorReaderTest, ASecondReadAfterASuccessDoesNotDiscoverAgain) {
  bridge_.add("GPU1", {60.0, 61.0, 62.0, 63.0, 64.0, 65.0});
  read();
  EXPECT_EQ(read().at(0).celsius, 64);
  EXPECT_EQ(discoveries(), 1);
}

TEST_F(HIDSensorReaderTest, ADiscoveryIsKeptThoughNothingPlausibleCameOfIt) {
  bridge_.add("GPU1", {60.0});
  EXPECT_TRUE(read().empty());
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(discoveries(), 1);
}

TEST_F(HIDSensorReaderTest, TheClientLivesAsLongAsItsServicesAreUsed) {
  bridge_.add("GPU1", {60.0, 61.0});
  read();
  EXPECT_FALSE(bridge_.lastClient.expired());
}

TEST_F(HIDSensorReaderTest, ADiscoveryWithoutServicesIsDroppedAndTriedAnew) {
  EXPECT_TRUE(read().empty());
  EXPECT_TRUE(bridge_.lastClient.expired());
  bridge_.add("GPU1", {60.0, 61.0});
  EXPECT_EQ(read().size(), 1U);
  EXPECT_EQ(discoveries(), 2);
}

TEST_F(HIDSensorReaderTest, ADiscoveryThatFailsIsTriedAnew) {
  bridge_.add("GPU1", {60.0, 61.0});
  bridge_.answersDiscovery = false;
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(log_, Log{"discover"});
  bridge_.answersDiscovery = true;
  EXPECT_EQ(read().size(), 1U);
}

TEST_F(HIDSensorReaderTest, WithoutTheInterfaceItIsEmptyAndSamplesNothing) {
  bridge_.add("GPU1", {60.0, 61.0});
  bridge_.isResolved = false;
  EXPECT_FALSE(reader_.isAPIAvailable());
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(log_, Log());
}

TEST_F(HIDSensorReaderTest, SaysWhetherTheInterfaceResolved) {
  EXPECT_TRUE(reader_.isAPIAvailable());
}

} // namespace
} // namespace ventolith::hardware
