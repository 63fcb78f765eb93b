#include "hardware/SMCConnectionFixture.h"

namespace ventolith::hardware {
namespace {

using doubles::blockOf;
using doubles::driverFailure;
using doubles::info;
using doubles::result;

const std::vector<std::uint8_t> f0md = {0x64, 0x4D, 0x30, 0x46};
const std::vector<std::uint8_t> f0tg = {0x67, 0x54, 0x30, 0x46};
const std::vector<std::uint8_t> ui8 = {0x20, 0x38, 0x69, 0x75};
const std::vector<std::uint8_t> flt = {0x20, 0x74, 0x6C, 0x66};

TEST_F(SMCConnectionTest, AByteIsWrittenWithTheKeysOwnSizeAndType) {
  answer({info(1, "ui8 "), result(0)});
  const auto written = run(connection_.writeUInt8("F0Md", 1));
  ASSERT_TRUE(written);
  EXPECT_EQ(*written, 0);
  ASSERT_EQ(client_.inputs.size(), 2U);
  EXPECT_EQ(client_.inputs[0], infoBlock(f0md));
  EXPECT_EQ(client_.inputs[1], blockOf({{0, f0md}, {28, {1, 0, 0, 0}}, {32, ui8}, {42, {6}}, {48, {1}}}));
}

TEST_F(SMCConnectionTest, AFloatIsWrittenLittleEndian) {
  answer({info(4, "flt "), result(0)});
  ASSERT_TRUE(run(connection_.writeFloat("F0Tg", 1600.0)));
  ASSERT_EQ(client_.inputs.size(), 2U);
  EXPECT_EQ(client_.inputs[0], infoBlock(f0tg));
  EXPECT_EQ(client_.inputs[1],
            blockOf({{0, f0tg}, {28, {4, 0, 0, 0}}, {32, flt}, {42, {6}}, {48, {0x00, 0x00, 0xC8, 0x44}}}));
}

TEST_F(SMCConnectionTest, TheEncodedValueIsWrittenAsItIsWhateverTheKeysType) {
  answer({info(2, "fpe2"), result(0)});
  ASSERT_TRUE(run(connection_.writeFloat("F0Tg", 1600.0)));
  EXPECT_EQ(client_.inputs.at(1), blockOf({{0, f0tg},
                                           {28, {2, 0, 0, 0}},
                                           {32, {0x32, 0x65, 0x70, 0x66}},
                                           {42, {6}},
                                           {48, {0x00, 0x00, 0xC8, 0x44}}}));
}

TEST_F(SMCConnectionTest, TheInformationsAttributesAreNotWrittenBack) {
  auto described = info(1, "ui8 ");
  described.output.keyInfo.dataAttributes = 0xD4;
  answer({described, result(0)});
  run(connection_.writeUInt8("F0Md", 1));
  EXPECT_EQ(client_.inputs.at(1)[36], 0);
}

TEST_F(SMCConnectionTest, AWriteThatTheSMCRefusesReturnsItsResultByte) {
  for (const int byte : {0x82, 0x84, 1, 255}) {
    answer({info(1, "ui8 "), result(static_cast<std::uint8_t>(byte))});
    const auto written = run(connection_.writeUInt8("F0Md", 1));
    ASSERT_TRUE(written) << byte;
    EXPECT_EQ(*written, byte);

    answer({info(4, "flt "), result(static_cast<std::uint8_t>(byte))});
    const auto target = run(connection_.writeFloat("F0Tg", 2000));
    ASSERT_TRUE(target) << byte;
    EXPECT_EQ(*target, byte);
  }
}

TEST_F(SMCConnectionTest, AKeyThatDoesNotExistIsNotWritten) {
  answer({result(132)});
  const auto written = run(connection_.writeUInt8("F0Md", 1));
  ASSERT_FALSE(written);
  EXPECT_EQ(written.error(), SMCError::keyNotFound("F0Md"));
  EXPECT_EQ(client_.inputs, std::vector{infoBlock(f0md)});
}

TEST_F(SMCConnectionTest, AWriteFailsOnlyWhereTheDriverOrTheQueryFails) {
  struct Row {
    const char* name;
    std::deque<doubles::Reply> replies;
    SMCError error;
  };
  const Row rows[] = {
      {"information refused", {result(0x85)}, SMCError::smcError("F0Tg", 0x85)},
      {"information not allowed", {driverFailure(0xE00002C1U)}, SMCError::notPrivileged()},
      {"information fails", {driverFailure(5)}, SMCError::ioReturn("IOConnectCallStructMethod", 5)},
      {"write not allowed", {info(4, "flt "), driverFailure(0xE00002C1U)}, SMCError::notPrivileged()},
      {"write fails",
       {info(4, "flt "), driverFailure(0xE00002BCU)},
       SMCError::ioReturn("IOConnectCallStructMethod", 0xE00002BCU)},
  };
  for (const Row& row : rows) {
    answer(row.replies);
    const auto written = run(connection_.writeFloat("F0Tg", 2000));
    ASSERT_FALSE(written) << row.name;
    EXPECT_EQ(written.error(), row.error) << row.name;
  }
}

TEST_F(SMCConnectionTest, IsWhatTheControllerWritesThrough) {
  SMCWriting& writing = connection_;
  answer({info(1, "ui8 "), result(3), info(4, "flt "), result(4), info(1, "ui8 "), doubles::value({5})});
  EXPECT_EQ(*run(writing.writeUInt8("F0Md", 1)), 3);
  EXPECT_EQ(*run(writing.writeFloat("F0Tg", 2000)), 4);
  EXPECT_EQ(run(writing.tryReadValue("F0Md")), SMCValue{SMCValue::UInt{5}});
}

} // namespace
} // namespace ventolith::hardware
