#include "hardware/SMCConnectionFixture.h"

namespace ventolith::hardware {
namespace {

using doubles::blockOf;
using doubles::driverFailure;
using doubles::info;
using doubles::result;
using doubles::value;

using Connections = std::vector<IOConnect>;

const std::vector<std::uint8_t> fnum = {0x6D, 0x75, 0x4E, 0x46};

TEST_F(SMCConnectionTest, OpensTheDriver) {
  EXPECT_EQ(run(connection_.open()), std::nullopt);
  answer({info(1, "ui8 "), value({2})});
  ASSERT_TRUE(run(connection_.readValue("FNum")));
  EXPECT_EQ(client_.connections, (Connections{7, 7}));
}

TEST_F(SMCConnectionTest, AFailedOpenSaysWhyAndLeavesNothingToClose) {
  for (const SMCError& error : {SMCError::driverNotFound(), SMCError::openFailed(5)}) {
    client_.openings = {error};
    EXPECT_EQ(run(connection_.open()), error);
    run(connection_.close());
    EXPECT_EQ(client_.closed, Connections());
  }
}

TEST_F(SMCConnectionTest, OpeningTwiceLeaksTheFirst) {
  client_.openings = {7U, 8U};
  run(connection_.open());
  run(connection_.open());
  run(connection_.close());
  EXPECT_EQ(client_.closed, Connections{8});
}

TEST_F(SMCConnectionTest, ClosingTwiceIsHarmless) {
  run(connection_.open());
  run(connection_.close());
  run(connection_.close());
  EXPECT_EQ(client_.closed, Connections{7});
}

TEST_F(SMCConnectionTest, ClosingWhatWasNeverOpenedDoesNothing) {
  run(connection_.close());
  EXPECT_EQ(client_.closed, Connections());
}

TEST_F(SMCConnectionTest, DestructionDoesNotClose) {
  {
    SMCConnection passing(time_.executor(), client_);
    run(passing.open());
  }
  EXPECT_EQ(client_.closed, Connections());
}

TEST_F(SMCConnectionTest, AnUnopenedConnectionIsPassedToTheDriverAsZero) {
  answer({driverFailure(0xE00002C2U)});
  const auto read = run(connection_.readValue("FNum"));
  ASSERT_FALSE(read);
  EXPECT_EQ(read.error(), SMCError::ioReturn("IOConnectCallStructMethod", 0xE00002C2U));
  EXPECT_EQ(client_.connections, Connections{0});
}

TEST_F(SMCConnectionTest, AClosedConnectionIsPassedToTheDriverAsZero) {
  run(connection_.open());
  run(connection_.close());
  answer({driverFailure(0xE00002C2U)});
  EXPECT_EQ(run(connection_.tryReadValue("FNum")), std::nullopt);
  EXPECT_EQ(client_.connections, Connections{0});
}

TEST_F(SMCConnectionTest, AReadAsksForTheKeysInformationAndThenForItsValue) {
  answer({info(2, "ui16"), value({0x01, 0x02})});
  const auto read = run(connection_.readValue("FNum"));
  ASSERT_TRUE(read);
  EXPECT_EQ(*read, SMCValue{SMCValue::UInt{258}});
  ASSERT_EQ(client_.inputs.size(), 2U);
  EXPECT_EQ(client_.inputs[0], infoBlock(fnum));
}

TEST_F(SMCConnectionTest, TheReadBlockHasTheSizeAndLeavesTheTypeZero) {
  answer({info(4, "flt "), value({0x00, 0x00, 0xC8, 0x44})});
  run(connection_.readValue("FNum"));
  EXPECT_EQ(client_.inputs.at(1), blockOf({{0, fnum}, {28, {4, 0, 0, 0}}, {42, {5}}}));
}

TEST_F(SMCConnectionTest, EachCallGetsAZeroedOutputBlock) {
  answer({info(4, "flt "), value({0x00, 0x00, 0xC8, 0x44})});
  run(connection_.readValue("FNum"));
  EXPECT_EQ(client_.outputsAsGiven, (std::vector<doubles::Block>{{}, {}}));
}

TEST_F(SMCConnectionTest, DecodesByTheInformationAndNotByTheReadsOwnBlock) {
  auto answered = value({0x00, 0x00, 0xC8, 0x44});
  answered.output.keyInfo.dataSize = 1;
  answered.output.keyInfo.dataType = packKey("ui8 ");
  answer({info(4, "flt "), answered});
  EXPECT_EQ(*run(connection_.readValue("FNum")), SMCValue{SMCValue::Float{1600.0}});
}

TEST_F(SMCConnectionTest, NothingIsRememberedAboutAKeyBetweenTwoReads) {
  answer({info(1, "ui8 "), value({2}), info(2, "ui16"), value({1, 0})});
  EXPECT_EQ(*run(connection_.readValue("FNum")), SMCValue{SMCValue::UInt{2}});
  EXPECT_EQ(*run(connection_.readValue("FNum")), SMCValue{SMCValue::UInt{256}});
  EXPECT_EQ(client_.inputs.size(), 4U);
}

TEST_F(SMCConnectionTest, ReadFailuresCarryTheCauseOfTheStepThatFailed) {
  struct Row {
    const char* name;
    std::deque<doubles::Reply> replies;
    SMCError error;
  };
  const Row rows[] = {
      {"no such key", {result(132)}, SMCError::keyNotFound("FNum")},
      {"information refused", {result(0x85)}, SMCError::smcError("FNum", 0x85)},
      {"information not allowed", {driverFailure(0xE00002C1U)}, SMCError::notPrivileged()},
      {"information fails",
       {driverFailure(0xE00002BCU)},
       SMCError::ioReturn("IOConnectCallStructMethod", 0xE00002BCU)},
      {"read says no such key", {info(1, "ui8 "), result(132)}, SMCError::smcError("FNum", 132)},
      {"read refused", {info(1, "ui8 "), result(1)}, SMCError::smcError("FNum", 1)},
      {"read not allowed", {info(1, "ui8 "), driverFailure(0xE00002C1U)}, SMCError::notPrivileged()},
      {"read fails", {info(1, "ui8 "), driverFailure(5)}, SMCError::ioReturn("IOConnectCallStructMethod", 5)},
  };
  for (const Row& row : rows) {
    answer(row.replies);
    client_.inputs.clear();
    const auto read = run(connection_.readValue("FNum"));
    ASSERT_FALSE(read) << row.name;
    EXPECT_EQ(read.error(), row.error) << row.name;
    EXPECT_EQ(client_.inputs.size(), row.replies.size()) << row.name;

    answer(row.replies);
    EXPECT_EQ(run(connection_.tryReadValue("FNum")), std::nullopt) << row.name;
  }
}

TEST_F(SMCConnectionTest, AKeyOfUnknownTypeReadsAsRawAndNotAsAbsent) {
  answer({info(6, "ch8*"), value({'1', '2'})});
  EXPECT_EQ(run(connection_.tryReadValue("FNum")), SMCValue{SMCValue::Raw{}});
}

TEST_F(SMCConnectionTest, ASizeOverThirtyTwoIsAskedForAsItIsAndDecodedWithinTheBlock) {
  answer({info(300, "ui8 "), value({9})});
  EXPECT_EQ(run(connection_.tryReadValue("FNum")), SMCValue{SMCValue::UInt{9}});
  EXPECT_EQ(client_.inputs.at(1), blockOf({{0, fnum}, {28, {0x2C, 0x01, 0, 0}}, {42, {5}}}));
}

TEST_F(SMCConnectionTest, TwoCallersNeverSplitAQueryFromItsRead) {
  const auto read = [](SMCConnection& connection) -> runtime::Async<void> {
    co_await connection.tryReadValue("FNum");
  };
  answer({info(1, "ui8 "), value({1}), info(1, "ui8 "), value({1})});
  runtime::start(time_.executor(), "first", read(connection_));
  runtime::start(time_.executor(), "second", read(connection_));
  time_.clock.settle();

  std::vector<int> selectors;
  for (const auto& block : client_.inputs)
    selectors.push_back(block[42]);
  EXPECT_EQ(selectors, (std::vector<int>{9, 5, 9, 5}));
}

using SMCConnectionDeathTest = SMCConnectionTest;

TEST_F(SMCConnectionDeathTest, AKeyOfFiveCharactersStopsTheProcess) {
  EXPECT_DEATH(run(connection_.tryReadValue("F10Ac")), "four bytes");
  EXPECT_DEATH((void)run(connection_.writeUInt8("F10Md", 1)), "four bytes");
}

} // namespace
} // namespace ventolith::hardware
