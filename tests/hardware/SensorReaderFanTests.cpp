#include "hardware/SensorReaderFixture.h"

#include <limits>

namespace ventolith::hardware {
namespace {

using doubles::flt;
using doubles::Log;
using doubles::raw;
using doubles::ui8;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

class SensorReaderFanTest : public SensorReaderTest {
protected:
  SensorReaderFanTest() { bridge_.isResolved = false; }

  /// The log of a snapshot as far as it is about fans.
  Log fanReads() {
    log_.clear();
    snapshot();
    std::erase_if(log_, [](const std::string& entry) { return entry.front() != 'F'; });
    return log_;
  }
};

TEST_F(SensorReaderFanTest, ReadsAFansSpeedsAndMode) {
  smc_.keys = {
      {"FNum", ui8(1)}, {"F0Ac", flt(2317.4)}, {"F0Mn", flt(2000)}, {"F0Mx", flt(8000)}, {"F0Md", ui8(3)}};
  const std::vector<core::Fan> expected = {
      {.id = 0, .name = "Fan 0", .currentRPM = 2317, .minRPM = 2000, .maxRPM = 8000, .mode = 3}};
  EXPECT_EQ(fans(), expected);
}

TEST_F(SensorReaderFanTest, AnUnreadableCountGivesNoFansAndReadsNone) {
  EXPECT_TRUE(fans().empty());
  smc_.keys["FNum"] = raw();
  EXPECT_TRUE(fans().empty());
  EXPECT_EQ(fanReads(), Log{"FNum"});
}

TEST_F(SensorReaderFanTest, TheCountIsTruncatedAndAtMostTheFansThatCanBeNamed) {
  struct Row {
    double count;
    std::size_t fans;
  };
  const Row rows[] = {{0, 0},     {0.9, 0},       {2.9, 2},       {9, 9},  {10, 10},       {11, 10},
                      {1e30, 10}, {infinity, 10}, {-infinity, 0}, {-1, 0}, {notANumber, 0}};
  for (const Row& row : rows) {
    smc_.keys["FNum"] = flt(row.count);
    EXPECT_EQ(fans().size(), row.fans) << row.count;
  }
}

TEST_F(SensorReaderFanTest, AllFansThatCanBeNamedAreReadUnderTheirOwnKeys) {
  smc_.keys["FNum"] = flt(1e9);
  smc_.keys["F9Ac"] = flt(900);
  const auto read = fans();
  ASSERT_EQ(read.size(), 10U);
  EXPECT_EQ(read.back().id, 9);
  EXPECT_EQ(read.back().name, "Fan 9");
  EXPECT_EQ(read.back().currentRPM, 900);
}

TEST_F(SensorReaderFanTest, ReadsTheKeysOfEachFanInTheirOrder) {
  smc_.keys = {{"FNum", ui8(2)}, {"F0Md", ui8(0)}};
  EXPECT_EQ(fanReads(),
            (Log{"FNum", "F0Ac", "F0Mn", "F0Mx", "F0Md", "F1Ac", "F1Mn", "F1Mx", "F1Md", "F1md"}));
}

TEST_F(SensorReaderFanTest, ASecondFanWhoseSpeedCannotBeReadIsListedAtZero) {
  smc_.keys = {{"FNum", ui8(2)},    {"F0Ac", flt(2300)},           {"F0Mn", flt(2000)},
               {"F0Mx", flt(8000)}, {"F1Ac", flt({std::nullopt})}, {"F1Mn", flt(2100)},
               {"F1Mx", flt(7900)}};
  const auto read = fans();
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[0].currentRPM, 2300);
  EXPECT_EQ(read[1].currentRPM, 0);
  EXPECT_EQ(read[1].minRPM, 2100);
  EXPECT_EQ(read[1].maxRPM, 7900);
}

TEST_F(SensorReaderFanTest, AFanIsListedEvenWhenNoneOfItsKeysCanBeRead) {
  smc_.keys["FNum"] = ui8(1);
  const std::vector<core::Fan> expected = {
      {.id = 0, .name = "Fan 0", .currentRPM = 0, .minRPM = 0, .maxRPM = 0, .mode = std::nullopt}};
  EXPECT_EQ(fans(), expected);
}

TEST_F(SensorReaderFanTest, SpeedsAreRoundedToTheNearestWholeNumberHalvesAwayFromZero) {
  smc_.keys["FNum"] = ui8(1);
  struct Row {
    double rpm;
    std::int64_t rounded;
  };
  const Row rows[] = {{1600.25, 1600}, {1600.5, 1601}, {1601.5, 1602},
                      {1600.75, 1601}, {-0.5, -1},     {-0.25, 0}};
  for (const auto& [rpm, rounded] : rows) {
    smc_.keys["F0Ac"] = flt(rpm);
    smc_.keys["F0Mn"] = flt(rpm);
    smc_.keys["F0Mx"] = flt(rpm);
    const core::Fan fan = fans().at(0);
    EXPECT_EQ(fan.currentRPM, rounded) << rpm;
    EXPECT_EQ(fan.minRPM, rounded) << rpm;
    EXPECT_EQ(fan.maxRPM, rounded) << rpm;
  }
}

TEST_F(SensorReaderFanTest, SpeedsComeInEveryNumericType) {
  smc_.keys = {{"FNum", ui8(1)},
               {"F0Ac", {"fpe2", {{{0x19, 0x00}}}}},
               {"F0Mn", {"ui16", {{{0x04, 0xB0}}}}},
               {"F0Mx", {"ui32", {{{0x00, 0x00, 0x1F, 0x40}}}}}};
  const core::Fan fan = fans().at(0);
  EXPECT_EQ(fan.currentRPM, 1600);
  EXPECT_EQ(fan.minRPM, 1200);
  EXPECT_EQ(fan.maxRPM, 8000);
}

TEST_F(SensorReaderFanTest, ASpeedWithoutANumberIsZero) {
  smc_.keys = {{"FNum", ui8(1)}, {"F0Ac", raw()}, {"F0Mn", flt(notANumber)}};
  EXPECT_EQ(fans().at(0).currentRPM, 0);
  EXPECT_EQ(fans().at(0).minRPM, 0);
}

TEST_F(SensorReaderFanTest, AnEndlessSpeedDoesNoHarm) {
  smc_.keys = {{"FNum", ui8(1)}, {"F0Ac", flt(infinity)}, {"F0Mn", flt(-infinity)}};
  EXPECT_GT(fans().at(0).currentRPM, 1'000'000'000);
  EXPECT_LT(fans().at(0).minRPM, -1'000'000'000);
}

TEST_F(SensorReaderFanTest, OnAMachineWithTheLowerCaseModeKeyTheModeComesFromTheSecondRead) {
  smc_.keys = {{"FNum", ui8(1)}, {"F0md", ui8(1)}};
  EXPECT_EQ(fans().at(0).mode, 1);
  EXPECT_EQ(fanReads(), (Log{"FNum", "F0Ac", "F0Mn", "F0Mx", "F0Md", "F0md"}));
}

TEST_F(SensorReaderFanTest, AModeKeyWithoutANumberMakesWayForTheSecondChoice) {
  smc_.keys = {{"FNum", ui8(1)}, {"F0Md", raw()}, {"F0md", ui8(3)}};
  EXPECT_EQ(fans().at(0).mode, 3);
}

TEST_F(SensorReaderFanTest, TheFirstChoiceOfModeKeyWinsAndTheSecondIsNotRead) {
  smc_.keys = {{"FNum", ui8(1)}, {"F0Md", ui8(0)}, {"F0md", ui8(1)}};
  EXPECT_EQ(fans().at(0).mode, 0);
  EXPECT_EQ(fanReads(), (Log{"FNum", "F0Ac", "F0Mn", "F0Mx", "F0Md"}));
}

TEST_F(SensorReaderFanTest, WithoutAReadableModeKeyTheModeIsAbsent) {
  smc_.keys = {{"FNum", ui8(1)}, {"F0Md", flt({std::nullopt})}};
  EXPECT_EQ(fans().at(0).mode, std::nullopt);
}

TEST_F(SensorReaderFanTest, TheModeIsTruncated) {
  smc_.keys = {{"FNum", ui8(1)}, {"F0Md", flt(1.9)}};
  EXPECT_EQ(fans().at(0).mode, 1);
}

TEST_F(SensorReaderFanTest, AModeThatIsNotANumberIsAbsent) {
  smc_.keys = {{"FNum", ui8(1)}, {"F0Md", flt(notANumber)}};
  EXPECT_EQ(fans().at(0).mode, std::nullopt);
}

TEST_F(SensorReaderFanTest, FansAreReadBeforeTemperaturesAndTheTimestampIsTheEndOfTheReading) {
  bridge_.isResolved = true;
  addHubSensor();
  smc_.keys = {{"FNum", ui8(1)}, {"F0Md", ui8(0)}};
  const auto start = time_.clock.wallTime();
  EXPECT_EQ(snapshot().timestamp, start + std::chrono::milliseconds(80));
  EXPECT_EQ(log_, (Log{"FNum", "F0Ac", "F0Mn", "F0Mx", "F0Md", "discover", "sample GPU1", "wait 40",
                       "sample GPU1", "wait 40", "sample GPU1"}));
}

TEST_F(SensorReaderFanTest, NeitherOpensNorClosesTheConnection) {
  smc_.keys["FNum"] = ui8(1);
  snapshot();
  for (const std::string& entry : log_)
    EXPECT_TRUE(entry != "open" && entry != "close");
}

TEST_F(SensorReaderFanTest, NothingIsRememberedAboutFansBetweenSnapshots) {
  smc_.keys = {{"FNum", ui8(2)}, {"F0Md", ui8(0)}, {"F1Md", ui8(0)}};
  EXPECT_EQ(fans().size(), 2U);
  smc_.keys["FNum"] = ui8(1);
  EXPECT_EQ(fans().size(), 1U);
}

} // namespace
} // namespace ventolith::hardware
