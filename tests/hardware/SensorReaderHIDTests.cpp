#include "hardware/SensorReaderFixture.h"

#include <algorithm>

namespace ventolith::hardware {
namespace {

using core::SensorCategory;
using core::SensorSource;
using doubles::flt;
using doubles::Log;
using doubles::ui8;

constexpr const char* unresolvedLine = "[FanKitCore] HID sensor hub unavailable (private HID symbols did not "
                                       "resolve on this OS build) — falling back "
                                       "to curated SMC temp keys.";
constexpr const char* implausibleLine = "[FanKitCore] HID sensor hub unavailable (private API resolved but "
                                        "returned no plausible sensors) — falling "
                                        "back to curated SMC temp keys.";

class SensorReaderHIDTest : public SensorReaderTest {
protected:
  [[nodiscard]] auto discoveries() const { return std::count(log_.begin(), log_.end(), "discover"); }
};

TEST_F(SensorReaderHIDTest, TheHubsTemperaturesCostNoSMCTrafficAndNoLine) {
  addHubSensor();
  smc_.keys["TCHP"] = flt(50);
  smc_.list({"TCHP"});
  const std::vector<core::TempSensor> expected = {
      {"GPU1", "GPU (GPU1)", 61, SensorCategory::gpu, SensorSource::hid}};
  EXPECT_EQ(temps(), expected);
  EXPECT_EQ(std::count(log_.begin(), log_.end(), "#KEY"), 0);
  EXPECT_EQ(printed_, Log());
}

TEST_F(SensorReaderHIDTest, SortsByCategoryAndThenByName) {
  for (const char* label : {"battery", "PMU tdie1", "ssd", "GPU b", "GPU a", "GPU B", "CPU 2", "CPU 10"})
    bridge_.add(label, {40.0, 41.0, 42.0});
  EXPECT_EQ(keysOf(temps()), (Log{"SoC", "CPU 10", "CPU 2", "GPU B", "GPU a", "GPU b", "ssd", "battery"}));
}

TEST_F(SensorReaderHIDTest, SSDsComeBeforeBatteriesFromTheHub) {
  bridge_.add("battery", {30.0});
  bridge_.add("NAND", {40.0});
  EXPECT_EQ(keysOf(temps()), (Log{"NAND", "battery"}));
}

TEST_F(SensorReaderHIDTest, SensorsOfOneCategoryAndNameKeepTheirOrder) {
  for (const char* label : {"ssd z", "ssd a", "ssd m", "battery 2", "battery 1"})
    bridge_.add(label, {30.0});
  EXPECT_EQ(keysOf(temps()), (Log{"ssd z", "ssd a", "ssd m", "battery 2", "battery 1"}));
}

TEST_F(SensorReaderHIDTest, ManySensorsOfOneNameKeepTheirOrder) {
  Log labels; // More than a sort that is not stable leaves in order by chance.
  for (int place = 0; place < 60; ++place) {
    labels.push_back("ssd " + std::to_string(place * 37 % 60));
    bridge_.add(labels.back(), {30.0});
  }
  EXPECT_EQ(keysOf(temps()), labels);
}

TEST_F(SensorReaderHIDTest, NamesAreOrderedByCodePoints) {
  for (const char* label : {"GPU \xC3\xA9", "GPU z", "GPU \xF0\x9F\x98\x80", "GPU \xE2\x82\xAC"})
    bridge_.add(label, {40.0, 41.0, 42.0});
  EXPECT_EQ(keysOf(temps()), (Log{"GPU z", "GPU \xC3\xA9", "GPU \xE2\x82\xAC", "GPU \xF0\x9F\x98\x80"}));
}

TEST_F(SensorReaderHIDTest, UnresolvedSymbolsAreTheReasonOfTheFallback) {
  bridge_.isResolved = false;
  snapshot();
  EXPECT_EQ(printed_, Log{unresolvedLine});
}

TEST_F(SensorReaderHIDTest, AHubWithoutPlausibleSensorsIsTheReasonOfTheFallback) {
  bridge_.add("GPU1", {60.0}); // Frozen.
  snapshot();
  EXPECT_EQ(printed_, Log{implausibleLine});
}

TEST_F(SensorReaderHIDTest, AHubThatDoesNotAnswerHasTheSameReasonAsOneWithoutPlausibleSensors) {
  bridge_.answersDiscovery = false;
  snapshot();
  EXPECT_EQ(printed_, Log{implausibleLine});
}

TEST_F(SensorReaderHIDTest, TheLineGoesOutOncePerReaderHoweverLongAndOftenTheFallback) {
  snapshot();
  snapshot();
  addHubSensor();
  EXPECT_EQ(temps().size(), 1U);
  bridge_.samples["GPU1"] = {std::nullopt};
  bridge_.isResolved = false;
  snapshot();
  EXPECT_EQ(printed_, Log{implausibleLine});

  SensorReader second(time_.executor(), connection_, bridge_, clock_,
                      [this](const std::string& line) { printed_.push_back(line); });
  time_.clock.run(second.snapshot());
  EXPECT_EQ(printed_, (Log{implausibleLine, unresolvedLine}));
}

TEST_F(SensorReaderHIDTest, OneEmptyAnswerDoesNotSwitchTheHubOff) {
  snapshot();
  snapshot();
  EXPECT_EQ(discoveries(), 2);
  addHubSensor();
  EXPECT_EQ(keysOf(temps()), Log{"GPU1"});
}

TEST_F(SensorReaderHIDTest, AHubThatFallsSilentMakesWayForTheSMC) {
  addHubSensor();
  smc_.keys["TCHP"] = flt(50);
  smc_.list({"TCHP"});
  EXPECT_EQ(keysOf(temps()), Log{"GPU1"});
  bridge_.samples["GPU1"] = {std::nullopt};
  EXPECT_EQ(keysOf(temps()), Log{"TCHP"});
}

TEST_F(SensorReaderHIDTest, WithNeitherHubNorSMCTheSnapshotIsEmptyAndFresh) {
  bridge_.isResolved = false;
  smc_.driverCode = static_cast<KernReturn>(0xE00002C2U);
  time_.clock.advance(std::chrono::hours(5));
  const auto taken = snapshot();
  EXPECT_TRUE(taken.fans.empty());
  EXPECT_TRUE(taken.temps.empty());
  EXPECT_EQ(taken.timestamp, time_.clock.wallTime());
  EXPECT_EQ(printed_, Log{unresolvedLine});
}

TEST_F(SensorReaderHIDTest, SnapshotsThatInterleaveAreEachComplete) {
  addHubSensor();
  smc_.keys["FNum"] = ui8(1);
  std::vector<core::SensorSnapshot> taken;
  const auto take = [](SensorReader& reader,
                       std::vector<core::SensorSnapshot>& results) -> runtime::Async<void> {
    results.push_back(co_await reader.snapshot());
  };
  time_.start(take(reader_, taken));
  time_.start(take(reader_, taken));
  time_.clock.advance(std::chrono::seconds(1));
  ASSERT_EQ(taken.size(), 2U);
  for (const auto& one : taken) {
    EXPECT_EQ(one.fans.size(), 1U);
    EXPECT_EQ(keysOf(one.temps), Log{"GPU1"});
  }
  EXPECT_EQ(discoveries(), 1);
}

TEST_F(SensorReaderHIDTest, ALineToStandardErrorEndsWithALineFeed) {
  testing::internal::CaptureStderr();
  printToStandardError(unresolvedLine);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string(unresolvedLine) + "\n");
}

} // namespace
} // namespace ventolith::hardware
