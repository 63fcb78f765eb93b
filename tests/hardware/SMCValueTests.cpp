#include "hardware/SMCValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ventolith::hardware {
namespace {

SMCBytes valueBytes(const std::vector<std::uint8_t>& start) {
  SMCBytes bytes = zeroSMCBytes;
  std::copy(start.begin(), start.end(), bytes.begin());
  return bytes;
}

const SMCValue rawValue{SMCValue::Raw{}};

TEST(SMCKey, TheFirstCharacterEndsInTheMostSignificantByte) {
  EXPECT_EQ(packKey("FNum"), 0x464E756DU);
  EXPECT_EQ(packKey("#KEY"), 0x234B4559U);
  EXPECT_EQ(packKey(std::string_view("\0\0\0\1", 4)), 1U);
}

TEST(SMCKey, CountsBytesAndNotCharacters) {
  EXPECT_EQ(packKey("\xC3\xA9"
                    "AB"),
            0xC3A94142U);
}

TEST(SMCKey, UnpackingGivesTheCharactersBack) {
  for (const char* key : {"FNum", "#KEY", "F0Ac", "flt ", "ui8 "})
    EXPECT_EQ(unpackKey(packKey(key)), key);
}

TEST(SMCKey, WhatIsNotASCIIUnpacksToQuestionMarks) {
  for (const std::uint32_t packed : {0x80424344U, 0x41FF4344U, 0x41428044U, 0x414243C3U}) {
    EXPECT_EQ(unpackKey(packed), "????") << packed;
  }
  EXPECT_EQ(unpackKey(0x7F424344U), "\x7F"
                                    "BCD");
  EXPECT_EQ(unpackKey(0), std::string(4, '\0'));
}

TEST(SMCKeyDeathTest, AKeyOfFiveCharactersStopsTheProcess) {
  EXPECT_DEATH((void)packKey("F10Ac"), "four bytes");
}

TEST(SMCKeyDeathTest, AKeyOfThreeCharactersStopsTheProcess) {
  EXPECT_DEATH((void)packKey("FNu"), "four bytes");
}

TEST(SMCKeyDeathTest, FourCharactersOfFiveBytesStopTheProcess) {
  EXPECT_DEATH((void)packKey("\xC3\xA9"
                             "ABC"),
               "four bytes");
}

TEST(SMCValueDecoding, EachTypeDecodesInItsOwnByteOrder) {
  struct Row {
    const char* type;
    std::vector<std::uint8_t> bytes;
    SMCValue expected;
  };
  const Row rows[] = {
      {"flt ", {0x00, 0x00, 0xC8, 0x44}, {SMCValue::Float{1600.0}}},
      {"flt ", {0x00, 0x00, 0x20, 0xC1}, {SMCValue::Float{-10.0}}},
      {"flt ", {0xCD, 0xCC, 0xCC, 0x3D}, {SMCValue::Float{static_cast<double>(0.1F)}}},
      {"ui8 ", {0xFE}, {SMCValue::UInt{254}}},
      {"ui16", {0x01, 0x02}, {SMCValue::UInt{258}}},
      {"ui16", {0xFF, 0xFE}, {SMCValue::UInt{65534}}},
      {"ui32", {0x01, 0x02, 0x03, 0x04}, {SMCValue::UInt{0x01020304}}},
      {"ui32", {0xFF, 0xFF, 0xFF, 0xFF}, {SMCValue::UInt{0xFFFFFFFF}}},
      {"fpe2", {0x19, 0x00}, {SMCValue::FixedPoint{1600.0}}},
      {"fpe2", {0x00, 0x03}, {SMCValue::FixedPoint{0.75}}},
      {"fpe2", {0xFF, 0xFF}, {SMCValue::FixedPoint{16383.75}}},
      {"sp78", {0xFF, 0x80}, {SMCValue::FixedPoint{-0.5}}},
      {"sp78", {0x2B, 0x80}, {SMCValue::FixedPoint{43.5}}},
      {"sp78", {0x80, 0x00}, {SMCValue::FixedPoint{-128.0}}},
      {"sp78", {0x7F, 0xFF}, {SMCValue::FixedPoint{127.99609375}}},
  };
  for (const Row& row : rows) {
    const auto size = static_cast<std::uint32_t>(row.bytes.size());
    EXPECT_EQ(decodeSMCValue(valueBytes(row.bytes), size, packKey(row.type)), row.expected) << row.type;
  }
}

TEST(SMCValueDecoding, AValueShorterThanItsTypeNeedsIsRaw) {
  struct Row {
    const char* type;
    std::uint32_t minimumSize;
  };
  const Row rows[] = {{"flt ", 4}, {"ui8 ", 1}, {"ui16", 2}, {"ui32", 4}, {"fpe2", 2}, {"sp78", 2}};
  const SMCBytes bytes = valueBytes({1, 2, 3, 4});
  for (const auto& [type, minimumSize] : rows) {
    for (std::uint32_t size = 0; size < minimumSize; ++size)
      EXPECT_EQ(decodeSMCValue(bytes, size, packKey(type)), rawValue) << type << " of " << size;
    EXPECT_NE(decodeSMCValue(bytes, minimumSize, packKey(type)), rawValue) << type;
  }
}

TEST(SMCValueDecoding, ASixteenBitValueOfOneByteIsRawAndNotATruncatedNumber) {
  EXPECT_EQ(decodeSMCValue(valueBytes({0x12, 0x34}), 1, packKey("ui16")), rawValue);
}

TEST(SMCValueDecoding, BytesBeyondTheTypesLengthAreIgnored) {
  EXPECT_EQ(decodeSMCValue(valueBytes({7, 0xFF, 0xFF}), 3, packKey("ui8 ")), SMCValue{SMCValue::UInt{7}});
  EXPECT_EQ(decodeSMCValue(valueBytes({1, 2, 0xFF}), 3, packKey("ui16")), SMCValue{SMCValue::UInt{258}});
}

TEST(SMCValueDecoding, ASizeOverThirtyTwoIsTreatedAsThirtyTwo) {
  const SMCBytes bytes = valueBytes({0x00, 0x00, 0xC8, 0x44});
  for (const std::uint32_t size : {32U, 33U, 1000U, 0xFFFFFFFFU})
    EXPECT_EQ(decodeSMCValue(bytes, size, packKey("flt ")), SMCValue{SMCValue::Float{1600.0}}) << size;
}

TEST(SMCValueDecoding, EveryOtherTypeIsRaw) {
  for (const char* type :
       {"flt", "FLT ", "ui8", "si8 ", "si16", "ui64", "sp1e", "fp88", "ch8*", "flag", "{fds"}) {
    const std::string padded = std::string(type).append(4 - std::string_view(type).size(), '\0');
    EXPECT_EQ(decodeSMCValue(valueBytes({1, 2, 3, 4}), 32, packKey(padded)), rawValue) << type;
  }
  EXPECT_EQ(decodeSMCValue(valueBytes({1, 2, 3, 4}), 32, 0), rawValue);
  EXPECT_EQ(decodeSMCValue(valueBytes({1, 2, 3, 4}), 32, 0xFFFFFFFF), rawValue);
}

TEST(SMCValue, NumericGivesTheNumberWhateverItsForm) {
  EXPECT_EQ((SMCValue{SMCValue::Float{1600.5}}.numeric()), 1600.5);
  EXPECT_EQ((SMCValue{SMCValue::FixedPoint{-0.5}}.numeric()), -0.5);
  EXPECT_EQ((SMCValue{SMCValue::UInt{0xFFFFFFFF}}.numeric()), 4294967295.0);
}

TEST(SMCValue, RawHasNoNumberWhileAnIntegerZeroIsZero) {
  EXPECT_EQ(rawValue.numeric(), std::nullopt);
  EXPECT_EQ((SMCValue{SMCValue::UInt{0}}.numeric()), 0.0);
}

TEST(SMCValueEncoding, AByteStandsFirstAndZerosFollow) {
  EXPECT_EQ(encodeUInt8(0xA5), valueBytes({0xA5}));
  EXPECT_EQ(encodeUInt8(0), zeroSMCBytes);
}

TEST(SMCValueEncoding, AFloatIsFourLittleEndianBytesAndZerosFollow) {
  EXPECT_EQ(encodeFloat(1600.0), valueBytes({0x00, 0x00, 0xC8, 0x44}));
  EXPECT_EQ(encodeFloat(-10.0), valueBytes({0x00, 0x00, 0x20, 0xC1}));
  EXPECT_EQ(encodeFloat(0.0), zeroSMCBytes);
}

TEST(SMCValueEncoding, ADoubleIsNarrowedToTheNearestSingle) {
  EXPECT_EQ(encodeFloat(0.1), valueBytes({0xCD, 0xCC, 0xCC, 0x3D}));
}

TEST(SMCValueEncoding, AFloatReadsBackAsItWasWritten) {
  for (const double rpm : {0.0, 1350.0, 2317.5, 8000.0}) {
    EXPECT_EQ(decodeSMCValue(encodeFloat(rpm), 4, packKey("flt ")), SMCValue{SMCValue::Float{rpm}});
  }
}

} // namespace
} // namespace ventolith::hardware
