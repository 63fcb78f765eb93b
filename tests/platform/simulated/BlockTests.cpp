// The driver's blocks, byte by byte.
#include "platform/simulated/Bench.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace ventolith::simulated {
namespace {

using Selector = SMCParamStruct::Selector;
using Block = std::array<std::uint8_t, 80>;

/// A block as its 80 bytes; those that are not given are zero.
Block bytesOf(const SMCParamStruct& block) {
  Block bytes{};
  std::memcpy(bytes.data(), &block, sizeof block);
  return bytes;
}

Block withBytes(std::initializer_list<std::pair<std::size_t, std::uint8_t>> bytes) {
  Block block{};
  for (const auto& [place, value] : bytes)
    block[place] = value;
  return block;
}

SMCParamStruct fromBytes(const Block& bytes) {
  SMCParamStruct block;
  std::memcpy(&block, bytes.data(), sizeof block);
  return block;
}

TEST(SimulatedBlocks, KeyInfoGivesSizeTypeAndAttributes) {
  MiniBench bench;
  // "FNum" in host byte order, selector 9.
  const auto input = fromBytes(withBytes({{0, 0x6D}, {1, 0x75}, {2, 0x4E}, {3, 0x46}, {42, 9}}));
  EXPECT_EQ(bench.call(input), 0);
  // Size 1 at 28, type "ui8 " at 32, attributes (readable) at 36.
  EXPECT_EQ(bytesOf(bench.output),
            withBytes({{28, 1}, {32, 0x20}, {33, 0x38}, {34, 0x69}, {35, 0x75}, {36, 0x80}}));
}

TEST(SimulatedBlocks, ReadGivesTheValueFromItsFirstByte) {
  MiniBench bench;
  EXPECT_EQ(bench.call(block(Selector::readKey, "F0Mn", 4)), 0);
  // 1700.0 as a little-endian single is 00 80 D4 44.
  EXPECT_EQ(bytesOf(bench.output), withBytes({{49, 0x80}, {50, 0xD4}, {51, 0x44}}));
}

TEST(SimulatedBlocks, IndexGivesTheKeysInTheOrderOfTheFile) {
  MiniBench bench;
  auto input = fromBytes(withBytes({{42, 8}, {44, 4}}));
  EXPECT_EQ(bench.call(input), 0);
  EXPECT_EQ(bytesOf(bench.output), withBytes({{0, 'd'}, {1, 'm'}, {2, '0'}, {3, 'F'}}));
}

TEST(SimulatedBlocks, IndexBeyondTheLastKeyIsRefused) {
  MiniBench bench;
  auto input = SMCParamStruct{};
  input.data8 = static_cast<std::uint8_t>(Selector::getKeyByIndex);
  input.data32 = static_cast<std::uint32_t>(*bench.read("#KEY"));
  EXPECT_EQ(bench.call(input), 0);
  EXPECT_EQ(bench.output.result, smcresult::badIndex);
}

TEST(SimulatedBlocks, WriteIsAnsweredByTheResultAlone) {
  MiniBench bench;
  auto input = block(Selector::writeKey, "F0md", 1);
  input.bytes = hardware::encodeUInt8(1);
  EXPECT_EQ(bench.call(input), 0);
  EXPECT_EQ(bytesOf(bench.output), Block{});
}

TEST(SimulatedBlocks, UnknownKeyIsAnswered132) {
  MiniBench bench;
  for (const Selector selector : {Selector::getKeyInfo, Selector::readKey, Selector::writeKey}) {
    EXPECT_EQ(bench.call(block(selector, "F0Md", 1)), 0);
    EXPECT_EQ(bench.output.result, 132);
  }
}

TEST(SimulatedBlocks, WrongSizeIsRefusedAndWritesNothing) {
  MiniBench bench;
  bench.call(block(Selector::readKey, "F0Mn", 2));
  EXPECT_EQ(bench.output.result, smcresult::sizeMismatch);
  EXPECT_EQ(bench.write("F0md", hardware::encodeUInt8(1), 4), smcresult::sizeMismatch);
  EXPECT_EQ(bench.read("F0md"), 0);
}

TEST(SimulatedBlocks, UnknownSelectorIsRefused) {
  MiniBench bench;
  auto input = block(Selector::readKey, "FNum", 1);
  for (const int selector : {0, 2, 7, 10, 255}) {
    input.data8 = static_cast<std::uint8_t>(selector);
    EXPECT_EQ(bench.call(input), 0);
    EXPECT_NE(bench.output.result, 0) << selector;
  }
}

TEST(SimulatedBlocks, KeyThatIsNotForWritingIsRefused) {
  MiniBench bench;
  EXPECT_EQ(bench.writeSpeed("F0Mx", 9000), smcresult::notWritable);
  EXPECT_EQ(bench.read("F0Mx"), 4400);
}

TEST(SimulatedBlocks, ListedKeyCanRefuseToBeRead) {
  MiniBench bench;
  bench.call(block(Selector::getKeyInfo, "TXXX"));
  EXPECT_EQ(bench.output.result, 132);
  bench.call(block(Selector::readKey, "TXXX", 4));
  EXPECT_EQ(bench.output.result, 132);
}

TEST(SimulatedBlocks, CallWithoutConnectionIsRefusedByTheDriver) {
  MiniBench bench;
  SMCParamStruct output;
  for (const hardware::IOConnect connection : {0U, 2U}) {
    const auto status = bench.client->call(connection, block(Selector::getKeyInfo, "FNum"), output);
    EXPECT_EQ(status, static_cast<hardware::KernReturn>(0xE00002CDU));
  }
}

TEST(SimulatedBlocks, ClosedConnectionIsRefusedAndItsNumberNeverGivenAgain) {
  MiniBench bench;
  bench.client->close(bench.connection);
  EXPECT_EQ(bench.call(block(Selector::getKeyInfo, "FNum")), ioReturnNotOpen);
  EXPECT_EQ(*bench.client->open(), 2U);
}

TEST(SimulatedBlocks, ConnectionsAreLimitedInNumber) {
  MiniBench bench;
  for (int count = 1; count < 256; ++count)
    ASSERT_TRUE(bench.client->open().has_value());
  EXPECT_FALSE(bench.client->open().has_value());
  bench.client->close(bench.connection);
  EXPECT_TRUE(bench.client->open().has_value());
}

TEST(SimulatedBlocks, ConnectionOfTheProjectReadsAndWritesThroughThem) {
  MiniBench bench;
  hardware::SMCConnection connection(bench.context.get_executor(), *bench.client);
  EXPECT_EQ(bench.clock.run(connection.open()), std::nullopt);
  EXPECT_EQ(bench.clock.run(connection.tryReadValue("FNum"))->numeric(), 1);
  EXPECT_EQ(*bench.clock.run(connection.writeUInt8("F0md", 1)), 0);
  EXPECT_EQ(bench.mac->fans()[0].mode(), 1);
}

} // namespace
} // namespace ventolith::simulated
