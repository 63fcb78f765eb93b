#include "platform/macos/AppleSMC.h"

#include "MacTest.h"
#include "fake/Driver.h"
#include "hardware/SMCConnection.h"

#include <array>
#include <cstring>

namespace ventolith::platform {
namespace {

using hardware::SMCError;
using hardware::SMCParamStruct;
using hardware::SMCValue;

constexpr auto notPermitted = static_cast<hardware::KernReturn>(0xE00002E2U);

class AppleSMCTest : public MacTest {
protected:
  ~AppleSMCTest() override {
    EXPECT_EQ(driver_.heldServices(), 0U);
    EXPECT_EQ(driver_.openConnections(), 0U);
  }

  /// The connection, which the test closes.
  hardware::IOConnect open() { return smc_.open().value(); }

  template <class Result>
  Result run(runtime::Async<Result> work) {
    return time_.clock.run(std::move(work));
  }
  void openConnection() { ASSERT_EQ(run(connection_.open()), std::nullopt); }
  void closeConnection() { time_.start(connection_.close()); }

  fake::Driver driver_{mac_};
  AppleSMC smc_;
  hardware::SMCConnection connection_{time_.executor(), smc_};
};

SMCParamStruct infoRequest(std::string_view key) {
  SMCParamStruct block;
  block.key = hardware::packKey(key);
  block.data8 = 9;
  return block;
}

using Block = std::array<std::uint8_t, 80>;

Block bytesOf(const SMCParamStruct& block) {
  Block bytes{};
  std::memcpy(bytes.data(), &block, bytes.size());
  return bytes;
}

// Opening and closing

TEST_F(AppleSMCTest, OpensTheServiceAndGivesItsReferenceBack) {
  const auto connection = smc_.open();
  ASSERT_TRUE(connection);
  EXPECT_NE(*connection, 0U);
  EXPECT_EQ(driver_.log, (Log{"find AppleSMC", "open type 0", "release"}));
  EXPECT_EQ(driver_.openConnections(), 1U);
  smc_.close(*connection);
}

TEST_F(AppleSMCTest, ClosesWhatItIsToldToClose) {
  const auto first = open();
  const auto second = open();
  driver_.log.clear();
  smc_.close(first);
  EXPECT_EQ(driver_.log, Log{"close"});
  EXPECT_EQ(driver_.openConnections(), 1U);
  smc_.close(second);
}

TEST_F(AppleSMCTest, MacWithoutTheServiceHasNoDriver) {
  driver_.isLoaded = false;
  EXPECT_EQ(smc_.open().error(), SMCError::driverNotFound());
  EXPECT_EQ(driver_.log, Log{"find AppleSMC"});
}

TEST_F(AppleSMCTest, RefusedOpeningTellsTheCodeAndGivesTheServiceBack) {
  for (const hardware::KernReturn code : {hardware::ioReturnNotPrivileged, notPermitted, -1}) {
    driver_.log.clear();
    driver_.openResult = code;
    EXPECT_EQ(smc_.open().error(), SMCError::openFailed(code));
    EXPECT_EQ(driver_.log, (Log{"find AppleSMC", "open type 0", "release"}));
  }
}

// Calling

TEST_F(AppleSMCTest, CallGoesThroughTheSecondMethodWithEightyBytesEachWay) {
  const auto connection = open();
  SMCParamStruct output;
  EXPECT_EQ(smc_.call(connection, infoRequest("FNum"), output), hardware::kernSuccess);
  ASSERT_EQ(driver_.calls.size(), 1U);
  EXPECT_EQ(driver_.calls[0].selector, 2U);
  EXPECT_EQ(driver_.calls[0].inputSize, 80U);
  EXPECT_EQ(driver_.calls[0].outputSize, 80U);
  EXPECT_TRUE(driver_.calls[0].outputWasZero);
  EXPECT_EQ(bytesOf(driver_.calls[0].input), bytesOf(infoRequest("FNum")));
  smc_.close(connection);
}

TEST_F(AppleSMCTest, AnswerComesBackByteForByte) {
  const auto connection = open();
  SMCParamStruct output;
  SMCParamStruct expected;
  ASSERT_EQ(smc_.call(connection, infoRequest("F0Ac"), output), hardware::kernSuccess);
  ASSERT_EQ(mac_->call(connection, infoRequest("F0Ac"), expected), hardware::kernSuccess);
  EXPECT_EQ(bytesOf(output), bytesOf(expected));
  EXPECT_EQ(output.keyInfo.dataSize, 4U);
  smc_.close(connection);
}

TEST_F(AppleSMCTest, DriversOwnResultComesBackAsItIs) {
  const auto connection = open();
  for (const hardware::KernReturn code : {hardware::ioReturnNotPrivileged, notPermitted, -308}) {
    driver_.callResult = code;
    SMCParamStruct output;
    EXPECT_EQ(smc_.call(connection, infoRequest("FNum"), output), code);
  }
  smc_.close(connection);
}

// Below a connection

TEST_F(AppleSMCTest, KeyIsReadThroughTwoCalls) {
  openConnection();
  EXPECT_EQ(*run(connection_.readValue("FNum")), (SMCValue{SMCValue::UInt{2}}));
  ASSERT_EQ(driver_.calls.size(), 2U);
  const Block info = bytesOf(driver_.calls[0].input);
  const Block read = bytesOf(driver_.calls[1].input);
  EXPECT_EQ(std::string(info.begin(), info.begin() + 4), "muNF");
  EXPECT_EQ(info[42], 9);
  EXPECT_EQ(std::string(read.begin(), read.begin() + 4), "muNF");
  EXPECT_EQ(read[42], 5);
  EXPECT_EQ(read[28], 1); // The size that the first call told.
  closeConnection();
}

TEST_F(AppleSMCTest, WriteCarriesKeySizeTypeAndValue) {
  openConnection();
  mac_->refuseWrites("F0Tg", std::nullopt);
  ASSERT_EQ(*run(connection_.writeFloat("F0Tg", 1600)), 0);
  const Block write = bytesOf(driver_.calls.back().input);
  EXPECT_EQ(std::string(write.begin(), write.begin() + 4), "gT0F");
  EXPECT_EQ(write[28], 4);
  EXPECT_EQ(std::string(write.begin() + 32, write.begin() + 36), " tlf");
  EXPECT_EQ(write[42], 6);
  EXPECT_EQ((std::array{write[48], write[49], write[50], write[51]}),
            (std::array<std::uint8_t, 4>{0x00, 0x00, 0xC8, 0x44}));
  closeConnection();
}

TEST_F(AppleSMCTest, ResultOfTheSMCIsNoFailureOfTheDriver) {
  openConnection();
  mac_->refuseWrites("F0Tg", 0x82);
  EXPECT_EQ(*run(connection_.writeFloat("F0Tg", 3000)), 130);
  EXPECT_EQ(run(connection_.readValue("Zzzz")).error(), SMCError::keyNotFound("Zzzz"));
  closeConnection();
}

TEST_F(AppleSMCTest, LackOfPrivilegeIsToldApartFromOtherFailures) {
  openConnection();
  driver_.callResult = hardware::ioReturnNotPrivileged;
  EXPECT_EQ(run(connection_.writeUInt8("Ftst", 1)).error(), SMCError::notPrivileged());
  driver_.callResult = notPermitted;
  EXPECT_EQ(run(connection_.writeUInt8("Ftst", 1)).error(),
            SMCError::ioReturn("IOConnectCallStructMethod", 0xE00002E2U));
  closeConnection();
}

TEST_F(AppleSMCTest, ConnectionThatWasNeverOpenedIsTheDriversToRefuse) {
  EXPECT_EQ(run(connection_.readValue("FNum")).error(),
            SMCError::ioReturn("IOConnectCallStructMethod",
                               static_cast<std::uint32_t>(simulated::ioReturnNotOpen)));
  EXPECT_EQ(driver_.calls.size(), 1U);
}

} // namespace
} // namespace ventolith::platform
