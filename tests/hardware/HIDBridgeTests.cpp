#include "hardware/HIDBridge.h"

#include "hardware/doubles/LoggingClock.h"
#include "hardware/doubles/ScriptedHIDBridge.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::hardware {
namespace {

using doubles::Log;
using RawReading = HIDBridge::RawReading;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(RawReading, ItsTemperatureIsTheMeanOfItsSamples) {
  EXPECT_DOUBLE_EQ((RawReading{"A", {40}}.celsius()), 40);
  EXPECT_DOUBLE_EQ((RawReading{"A", {40, 41, 45}}.celsius()), 42);
  EXPECT_DOUBLE_EQ((RawReading{"A", {-1, 1}}.celsius()), 0);
}

TEST(RawReading, WithoutSamplesItIsZeroAndConstant) {
  EXPECT_EQ((RawReading{"A", {}}.celsius()), 0.0);
  EXPECT_TRUE((RawReading{"A", {}}.isConstant()));
}

TEST(RawReading, IsConstantWhenEverySampleEqualsTheFirst) {
  EXPECT_TRUE((RawReading{"A", {40, 40, 40}}.isConstant()));
  EXPECT_FALSE((RawReading{"A", {40, 40, 40.001}}.isConstant()));
  EXPECT_FALSE((RawReading{"A", {41, 40, 40}}.isConstant()));
  EXPECT_FALSE((RawReading{"A", {40, notANumber}}.isConstant()));
}

TEST(RawReading, OneSampleIsConstantWhateverItIs) {
  EXPECT_TRUE((RawReading{"A", {40}}.isConstant()));
  EXPECT_TRUE((RawReading{"A", {notANumber}}.isConstant()));
}

class SampleTemperaturesTest : public testing::Test {
protected:
  std::vector<RawReading> sample(int rounds) {
    return time_.clock.run(sampleTemperatures(bridge_, clock_, services(), rounds));
  }

  [[nodiscard]] std::vector<HIDBridge::Service> services() const {
    std::vector<HIDBridge::Service> services;
    for (const std::string& label : bridge_.labels)
      services.push_back({label, std::make_shared<int>()});
    return services;
  }

  support::VirtualTime time_;
  Log log_;
  doubles::LoggingClock clock_{time_.clock, log_};
  doubles::ScriptedHIDBridge bridge_{log_};
};

TEST_F(SampleTemperaturesTest, SamplesEveryServiceInEachRoundAndWaitsBetweenRounds) {
  bridge_.add("B", {1.0, 2.0, 3.0});
  bridge_.add("A", {7.0, 8.0, 9.0});
  const auto readings = sample(3);
  EXPECT_EQ(log_, (Log{"sample B", "sample A", "wait 40", "sample B", "sample A", "wait 40", "sample B",
                       "sample A"}));
  ASSERT_EQ(readings.size(), 2U);
  EXPECT_EQ(readings[0].label, "B");
  EXPECT_EQ(readings[0].samples, (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(readings[1].label, "A");
  EXPECT_EQ(readings[1].samples, (std::vector<double>{7, 8, 9}));
}

TEST_F(SampleTemperaturesTest, FewerRoundsThanOneStillSampleOnce) {
  bridge_.add("A", {40.0});
  for (const int rounds : {0, -5, 1}) {
    log_.clear();
    EXPECT_EQ(sample(rounds).at(0).samples, std::vector<double>{40}) << rounds;
    EXPECT_EQ(log_, Log{"sample A"}) << rounds;
  }
}

TEST_F(SampleTemperaturesTest, AServiceThatDoesNotAnswerInARoundMissesThatSampleOnly) {
  bridge_.add("A", {40.0, std::nullopt, 42.0});
  bridge_.add("B", {1.0, 2.0, 3.0});
  const auto readings = sample(3);
  EXPECT_EQ(readings.at(0).samples, (std::vector<double>{40, 42}));
  EXPECT_EQ(readings.at(1).samples, (std::vector<double>{1, 2, 3}));
}

TEST_F(SampleTemperaturesTest, AServiceThatNeverAnswersHasAReadingWithoutSamples) {
  bridge_.add("silent", {std::nullopt});
  const auto readings = sample(3);
  ASSERT_EQ(readings.size(), 1U);
  EXPECT_EQ(readings[0].label, "silent");
  EXPECT_TRUE(readings[0].samples.empty());
}

TEST_F(SampleTemperaturesTest, TheIntervalIsTheCallersToChoose) {
  bridge_.add("A", {40.0});
  time_.clock.run(sampleTemperatures(bridge_, clock_, services(), 2, std::chrono::milliseconds(7)));
  EXPECT_EQ(log_, (Log{"sample A", "wait 7", "sample A"}));
}

TEST_F(SampleTemperaturesTest, AnUnresolvedInterfaceGivesNoReadings) {
  bridge_.add("A", {40.0});
  bridge_.isResolved = false;
  EXPECT_TRUE(sample(3).empty());
  EXPECT_EQ(log_, Log());
}

} // namespace
} // namespace ventolith::hardware
