// Frames, good and hostile, without a socket.
#include "platform/simulated/Bench.h"
#include "platform/simulated/MachineProtocol.h"

#include <gtest/gtest.h>

namespace ventolith::simulated {
namespace {

struct SimulatedProtocol : testing::Test {
  std::optional<FrameBytes> answer(const FrameBytes& request) {
    return answerRequest(*bench.mac, connections, request);
  }

  MiniBench bench;
  std::set<hardware::IOConnect> connections;
};

TEST_F(SimulatedProtocol, OpenAnswersWithTheConnection) {
  EXPECT_EQ(answer({1}), (FrameBytes{0, 0, 0, 0, 2, 0, 0, 0}));
  EXPECT_EQ(connections, (std::set<hardware::IOConnect>{2}));
}

TEST_F(SimulatedProtocol, SessionCannotUseTheConnectionOfAnother) {
  FrameWriter request(Request::call);
  request.addUInt32(bench.connection);
  request.addBlock(block(SMCParamStruct::Selector::getKeyInfo, "FNum"));
  const auto reply = answer(request.bytes());
  ASSERT_TRUE(reply.has_value());
  FrameReader reader(*reply);
  EXPECT_EQ(static_cast<hardware::KernReturn>(reader.takeUInt32()), ioReturnNotOpen);
}

TEST_F(SimulatedProtocol, SessionCannotCloseTheConnectionOfAnother) {
  FrameWriter request(Request::close);
  request.addUInt32(bench.connection);
  EXPECT_EQ(answer(request.bytes()), FrameBytes{});
  EXPECT_TRUE(bench.read("FNum").has_value());
}

TEST_F(SimulatedProtocol, FrameThatIsNoRequestEndsTheSession) {
  const FrameBytes hostile[] = {
      {},                       // Empty.
      {0},                      // No such request.
      {8},                      //
      {255},                    //
      {1, 0},                   // Something after the end.
      {2, 1, 0, 0},             // Too short for a connection.
      {3, 1, 0, 0, 0},          // A call without a block.
      FrameBytes(84, 3),        // One byte short of a call.
      FrameBytes(86, 3),        // One too many.
      {4, 4},                   //
      {6, 0, 0, 0},             //
      FrameBytes(100000, 0xFF), //
  };
  for (const FrameBytes& frame : hostile)
    EXPECT_EQ(answer(frame), std::nullopt) << frame.size();
}

TEST_F(SimulatedProtocol, ScriptLineIsAnsweredByWhatIsWrongWithIt) {
  FrameWriter good(Request::script);
  good.addText(R"({"refuse":{"F0md":5}})");
  EXPECT_EQ(answer(good.bytes()), FrameBytes{});
  EXPECT_EQ(bench.writeByte("F0md", 1), 5);
  FrameWriter bad(Request::script);
  bad.addText(R"({"load":2})");
  const auto reply = answer(bad.bytes());
  EXPECT_EQ(std::string(reply->begin(), reply->end()), "load: expected a number from 0 to 1");
}

TEST(SimulatedFrames, HeaderIsTheLengthLittleEndian) {
  EXPECT_EQ(frameHeader(0x010203), (std::array<std::uint8_t, 4>{3, 2, 1, 0}));
  EXPECT_EQ(announcedLength({3, 2, 1, 0}), 0x010203U);
}

TEST(SimulatedFrames, LengthBeyondTheBoundIsNone) {
  EXPECT_EQ(announcedLength(frameHeader(longestFrame)), longestFrame);
  EXPECT_EQ(announcedLength(frameHeader(longestFrame + 1)), std::nullopt);
  EXPECT_EQ(announcedLength({255, 255, 255, 255}), std::nullopt);
}

TEST(SimulatedFrames, WhatIsWrittenIsReadBack) {
  FrameWriter writer;
  writer.addByte(7);
  writer.addUInt16(0xABCD);
  writer.addUInt32(0x89ABCDEF);
  writer.addDouble(-273.15);
  writer.addText("tdie");
  FrameReader reader(writer.bytes());
  EXPECT_EQ(reader.takeByte(), 7);
  EXPECT_EQ(reader.takeUInt16(), 0xABCD);
  EXPECT_EQ(reader.takeUInt32(), 0x89ABCDEFU);
  EXPECT_EQ(reader.takeDouble(), -273.15);
  EXPECT_EQ(reader.takeText(4), "tdie");
  EXPECT_TRUE(reader.isComplete());
}

TEST(SimulatedFrames, ReadingBeyondTheEndMakesTheFrameBad) {
  const FrameBytes bytes{1, 2};
  FrameReader reader(bytes);
  EXPECT_EQ(reader.takeText(3), "");
  EXPECT_TRUE(reader.isBad());
  EXPECT_EQ(reader.takeByte(), 0);
  EXPECT_FALSE(reader.isComplete());
}

} // namespace
} // namespace ventolith::simulated
