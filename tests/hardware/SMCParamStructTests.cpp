#include "hardware/SMCParamStruct.h"
#include "hardware/doubles/Blocks.h"

#include <gtest/gtest.h>

namespace ventolith::hardware {
namespace {

using doubles::blockOf;
using doubles::bytesOf;

TEST(SMCParamStruct, ANewBlockIsEightyZeroBytes) {
  EXPECT_EQ(bytesOf(SMCParamStruct()), doubles::Block{});
}

TEST(SMCParamStruct, EachFieldStandsAtItsOffsetInHostByteOrder) {
  struct Row {
    const char* name;
    void (*set)(SMCParamStruct& block);
    doubles::Field bytes;
  };
  const std::vector<std::uint8_t> wide = {0x04, 0x03, 0x02, 0x01};
  const std::vector<std::uint8_t> half = {0x02, 0x01};
  const Row rows[] = {
      {"key", [](SMCParamStruct& block) { block.key = 0x01020304; }, {0, wide}},
      {"vers.major", [](SMCParamStruct& block) { block.vers.major = 9; }, {4, {9}}},
      {"vers.minor", [](SMCParamStruct& block) { block.vers.minor = 9; }, {5, {9}}},
      {"vers.build", [](SMCParamStruct& block) { block.vers.build = 9; }, {6, {9}}},
      {"vers.reserved", [](SMCParamStruct& block) { block.vers.reserved = 9; }, {7, {9}}},
      {"vers.release", [](SMCParamStruct& block) { block.vers.release = 0x0102; }, {8, half}},
      {"pLimitData.version", [](SMCParamStruct& block) { block.pLimitData.version = 0x0102; }, {12, half}},
      {"pLimitData.length", [](SMCParamStruct& block) { block.pLimitData.length = 0x0102; }, {14, half}},
      {"cpuPLimit", [](SMCParamStruct& block) { block.pLimitData.cpuPLimit = 0x01020304; }, {16, wide}},
      {"gpuPLimit", [](SMCParamStruct& block) { block.pLimitData.gpuPLimit = 0x01020304; }, {20, wide}},
      {"memPLimit", [](SMCParamStruct& block) { block.pLimitData.memPLimit = 0x01020304; }, {24, wide}},
      {"dataSize", [](SMCParamStruct& block) { block.keyInfo.dataSize = 0x01020304; }, {28, wide}},
      {"dataType", [](SMCParamStruct& block) { block.keyInfo.dataType = 0x01020304; }, {32, wide}},
      {"dataAttributes", [](SMCParamStruct& block) { block.keyInfo.dataAttributes = 9; }, {36, {9}}},
      {"padding", [](SMCParamStruct& block) { block.padding = 0x0102; }, {38, half}},
      {"result", [](SMCParamStruct& block) { block.result = 9; }, {40, {9}}},
      {"status", [](SMCParamStruct& block) { block.status = 9; }, {41, {9}}},
      {"data8", [](SMCParamStruct& block) { block.data8 = 9; }, {42, {9}}},
      {"data32", [](SMCParamStruct& block) { block.data32 = 0x01020304; }, {44, wide}},
      {"bytes, first", [](SMCParamStruct& block) { block.bytes.front() = 9; }, {48, {9}}},
      {"bytes, last", [](SMCParamStruct& block) { block.bytes.back() = 9; }, {79, {9}}},
  };
  for (const Row& row : rows) {
    SMCParamStruct block;
    row.set(block);
    EXPECT_EQ(bytesOf(block), blockOf({row.bytes})) << row.name;
  }
}

TEST(SMCParamStruct, SelectorsAndResultCodesHaveTheDriversNumbers) {
  using Selector = SMCParamStruct::Selector;
  using ResultCode = SMCParamStruct::ResultCode;
  EXPECT_EQ(static_cast<int>(Selector::ypcEvent), 2);
  EXPECT_EQ(static_cast<int>(Selector::readKey), 5);
  EXPECT_EQ(static_cast<int>(Selector::writeKey), 6);
  EXPECT_EQ(static_cast<int>(Selector::getKeyByIndex), 8);
  EXPECT_EQ(static_cast<int>(Selector::getKeyInfo), 9);
  EXPECT_EQ(static_cast<int>(ResultCode::success), 0);
  EXPECT_EQ(static_cast<int>(ResultCode::keyNotFound), 0x84);
}

TEST(SMCParamStruct, TheZeroValueBlockHasThirtyTwoZeroBytes) {
  EXPECT_EQ(zeroSMCBytes.size(), 32U);
  for (const std::uint8_t byte : zeroSMCBytes)
    EXPECT_EQ(byte, 0);
}

} // namespace
} // namespace ventolith::hardware
