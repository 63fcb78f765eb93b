#include "hardware/SensorReaderFixture.h"

#include <algorithm>
#include <limits>

namespace ventolith::hardware {
namespace {

using core::SensorCategory;
using core::SensorSource;
using doubles::flt;
using doubles::Log;
using doubles::raw;
using Numbers = std::vector<std::optional<double>>;

class SensorReaderSMCTest : public SensorReaderTest {
protected:
  SensorReaderSMCTest() { bridge_.isResolved = false; }

  /// Adds a key whose first read is the discovery's.
  void addKey(const std::string& name, Numbers numbers) {
    numbers.insert(numbers.begin(), 1.0);
    smc_.keys[name] = flt(numbers);
    auto names = smc_.order;
    names.push_back(name);
    smc_.list(names);
  }

  /// The temperatures of a machine that has just "TCHP", read as `first` and then as `second`.
  static std::vector<core::TempSensor> tempsOf(std::optional<double> first, std::optional<double> second);
};

std::vector<core::TempSensor> SensorReaderSMCTest::tempsOf(std::optional<double> first,
                                                           std::optional<double> second) {
  struct Machine final : SensorReaderSMCTest {
    void TestBody() override {}
    using SensorReaderSMCTest::addKey;
    using SensorReaderSMCTest::temps;
  };
  Machine machine;
  machine.addKey("TCHP", {first, second});
  return machine.temps();
}

TEST_F(SensorReaderSMCTest, ATemperatureIsTheMeanOfTwoReads) {
  addKey("TCHP", {50.0, 51.0});
  const std::vector<core::TempSensor> expected = {
      {"TCHP", "CPU", 50.5, SensorCategory::cpu, SensorSource::smc}};
  EXPECT_EQ(temps(), expected);
}

TEST_F(SensorReaderSMCTest, EachKeyIsReadTwiceFortyMillisecondsApart) {
  addKey("TG0P", {50.0});
  addKey("TCHP", {50.0});
  snapshot();
  log_.clear();
  snapshot();
  EXPECT_EQ(log_, (Log{"FNum", "TG0P", "wait 40", "TG0P", "TCHP", "wait 40", "TCHP"}));
}

TEST_F(SensorReaderSMCTest, TheTimestampFollowsTheWaits) {
  addKey("TG0P", {50.0});
  addKey("TCHP", {50.0});
  const auto start = time_.clock.wallTime();
  EXPECT_EQ(snapshot().timestamp, start + std::chrono::milliseconds(80));
}

TEST_F(SensorReaderSMCTest, OnlyCuratedKeysAreRead) {
  for (const char* key : {"TB0T", "TC0P", "TCHP", "TCMb", "TCMz", "TD0P", "TG0P", "TS0P", "Tp01"})
    addKey(key, {50.0});
  EXPECT_EQ(keysOf(temps()), (Log{"TCHP", "TCMb", "TCMz", "TG0P", "TD0P", "TB0T"}));
  log_.clear();
  snapshot();
  for (const char* hidden : {"TC0P", "TS0P", "Tp01"})
    EXPECT_EQ(std::count(log_.begin(), log_.end(), hidden), 0);
}

TEST_F(SensorReaderSMCTest, SensorsAreNamedByTheirKeys) {
  for (const char* key : {"TB0T", "TCMb", "TD0P", "TG0P"})
    addKey(key, {50.0});
  const std::vector<core::TempSensor> expected = {
      {"TCMb", "CPU (cluster)", 50, SensorCategory::cpu, SensorSource::smc},
      {"TG0P", "GPU", 50, SensorCategory::gpu, SensorSource::smc},
      {"TD0P", "SSD/Board", 50, SensorCategory::ssd, SensorSource::smc},
      {"TB0T", "Battery", 50, SensorCategory::battery, SensorSource::smc},
  };
  EXPECT_EQ(temps(), expected);
}

TEST_F(SensorReaderSMCTest, SSDsComeBeforeBatteriesFromTheSMC) {
  addKey("TB0T", {30.0});
  addKey("TD0P", {40.0});
  EXPECT_EQ(keysOf(temps()), (Log{"TD0P", "TB0T"}));
}

TEST_F(SensorReaderSMCTest, SensorsOfOneCategoryAndNameKeepTheSMCsOrder) {
  for (const char* key : {"TGzz", "TG0P", "TGaa", "TCMz", "TCMb"})
    addKey(key, {50.0});
  EXPECT_EQ(keysOf(temps()), (Log{"TCMz", "TCMb", "TGzz", "TG0P", "TGaa"}));
}

TEST_F(SensorReaderSMCTest, AKeyThatReadsZeroTwiceIsDroppedAndOneThatReadsZeroOnceIsKept) {
  EXPECT_TRUE(tempsOf(0.0, 0.0).empty());
  ASSERT_EQ(tempsOf(0.0, 1.0).size(), 1U);
  EXPECT_EQ(tempsOf(0.0, 1.0)[0].celsius, 0.5);
  EXPECT_EQ(tempsOf(1.0, 0.0).at(0).celsius, 0.5);
  EXPECT_EQ(tempsOf(-1.0, 1.0).at(0).celsius, 0.0);
}

TEST_F(SensorReaderSMCTest, ATemperatureCountsWithinItsBoundsBothEndsIncluded) {
  for (const double celsius : {-40.0, 150.0})
    EXPECT_EQ(tempsOf(celsius, celsius).size(), 1U) << celsius;
  for (const double celsius : {-40.25, 150.25, 1e30, -1e30})
    EXPECT_TRUE(tempsOf(celsius, celsius).empty()) << celsius;
  EXPECT_EQ(tempsOf(140, 160).at(0).celsius, 150);
  EXPECT_TRUE(tempsOf(140, 161).empty());
}

TEST_F(SensorReaderSMCTest, WhatIsNotANumberIsDropped) {
  constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(tempsOf(notANumber, 50).empty());
  EXPECT_TRUE(tempsOf(50, notANumber).empty());
}

TEST_F(SensorReaderSMCTest, AKeyWhoseFirstReadFailsIsNotWaitedFor) {
  addKey("TCHP", {std::nullopt});
  addKey("TG0P", {50.0});
  EXPECT_EQ(keysOf(temps()), Log{"TG0P"});
  EXPECT_EQ(std::count(log_.begin(), log_.end(), "wait 40"), 1);
}

TEST_F(SensorReaderSMCTest, AKeyWhoseSecondReadFailsIsDropped) {
  addKey("TCHP", {50.0, std::nullopt});
  addKey("TG0P", {50.0});
  EXPECT_EQ(keysOf(temps()), Log{"TG0P"});
}

TEST_F(SensorReaderSMCTest, AKeyThatTurnsRawIsDroppedAndComesBack) {
  addKey("TCHP", {50.0});
  EXPECT_EQ(keysOf(temps()), Log{"TCHP"});
  smc_.keys["TCHP"] = raw();
  EXPECT_TRUE(temps().empty());
  smc_.keys["TCHP"] = flt(50);
  EXPECT_EQ(keysOf(temps()), Log{"TCHP"});
}

TEST_F(SensorReaderSMCTest, KeysAreDiscoveredOnce) {
  addKey("TCHP", {50.0});
  snapshot();
  addKey("TG0P", {50.0});
  EXPECT_EQ(keysOf(temps()), Log{"TCHP"});
  EXPECT_EQ(std::count(log_.begin(), log_.end(), "#KEY"), 1);
}

TEST_F(SensorReaderSMCTest, AFallbackThatFindsNoKeysIsNotTriedAgain) {
  EXPECT_TRUE(temps().empty());
  addKey("TCHP", {50.0});
  log_.clear();
  EXPECT_TRUE(temps().empty());
  EXPECT_TRUE(temps().empty());
  EXPECT_EQ(log_, (Log{"FNum", "FNum"}));
}

TEST_F(SensorReaderSMCTest, AFallbackThatFindsHiddenKeysAloneCostsNothingLater) {
  addKey("TC0P", {50.0});
  EXPECT_TRUE(temps().empty());
  log_.clear();
  EXPECT_TRUE(temps().empty());
  EXPECT_EQ(log_, Log{"FNum"});
}

} // namespace
} // namespace ventolith::hardware
