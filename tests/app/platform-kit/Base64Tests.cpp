#include "app/platform-kit/Base64.h"

#include "app/platform-kit/SignedDocuments.h"

#include <gtest/gtest.h>

#include <random>

namespace ventolith::app {
namespace {

using support::bytes;

TEST(Base64, PlainTextsAreDecoded) {
  struct Row {
    std::string_view text;
    std::string_view decoded;
  };
  const Row rows[] = {{"", ""},
                      {"Zg==", "f"},
                      {"Zm8=", "fo"},
                      {"Zm9v", "foo"},
                      {"Zm9vYg==", "foob"},
                      {"Zm9vYmE=", "fooba"},
                      {"Zm9vYmFy", "foobar"},
                      {"+/+/", "\xFB\xFF\xBF"}};
  for (const Row& row : rows)
    EXPECT_EQ(decodeBase64(row.text), bytes(row.decoded)) << row.text;
}

TEST(Base64, WhatAStrictDecoderRefusesIsRefused) {
  for (const std::string_view text : {"Z",     "Zg",   "Zg=",  "Zg===",    "Zg====", "Zm8",      "Zm9vY",
                                      "====",  "=",    "Z===", "Zm9v====", "Zm=v",   "=Zm9",     "Zm9v\n",
                                      " Zm9v", "Zm 9", "Zm9-", "Zm9_",     "Zm9*",   "Zg==Zg==", "Zm9\xC3"})
    EXPECT_EQ(decodeBase64(text), std::nullopt) << text;
}

TEST(Base64, HasSixtyFourDigits) {
  const std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t value = 0; value < digits.size(); ++value)
    EXPECT_EQ(decodeBase64(std::string("AAA") + digits[value]),
              (Bytes{0, 0, static_cast<std::uint8_t>(value)}));
}

TEST(Base64, NoOtherByteIsADigit) {
  const std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (int code = 0; code < 256; ++code) {
    const auto character = static_cast<char>(code);
    if (digits.find(character) != std::string_view::npos) continue;
    EXPECT_EQ(decodeBase64(std::string("AA") + character + "A"), std::nullopt) << code;
  }
}

TEST(Base64, AZeroByteEndsNothing) {
  EXPECT_EQ(decodeBase64(std::string_view("Zm9v\0AAA", 8)), std::nullopt);
}

TEST(Base64, SpareBitsAreZero) {
  EXPECT_EQ(decodeBase64("Zh=="), std::nullopt);
  EXPECT_EQ(decodeBase64("Zm9="), std::nullopt);
}

TEST(Base64URL, IsWrittenWithItsOwnTwoCharactersAndWithoutPadding) {
  EXPECT_EQ(encodeBase64URL({}), "");
  EXPECT_EQ(encodeBase64URL(bytes("f")), "Zg");
  EXPECT_EQ(encodeBase64URL(bytes("fo")), "Zm8");
  EXPECT_EQ(encodeBase64URL(bytes("foo")), "Zm9v");
  EXPECT_EQ(encodeBase64URL(bytes("\xFB\xFF\xBF")), "-_-_");
}

TEST(Base64URL, IsReadWithAnyPaddingAndInEitherAlphabet) {
  for (const std::string_view text : {"-_8", "-_8=", "+/8", "+_8="})
    EXPECT_EQ(decodeBase64URL(text), bytes("\xFB\xFF")) << text;
  for (const std::string_view text : {"Zg", "Zg=", "Zg=="})
    EXPECT_EQ(decodeBase64URL(text), bytes("f")) << text;
  EXPECT_EQ(decodeBase64URL(""), Bytes());
}

TEST(Base64URL, OtherTextsAreRefused) {
  for (const std::string_view text : {"Z", "Zm9vY", "=", "==", "====", "Zg===", "Zm9v=", "Zm8==", "Zm 9v",
                                      "Zm9v\n", "Zh", "Zm9", "Zm9.", "Z\xC3g"})
    EXPECT_EQ(decodeBase64URL(text), std::nullopt) << text;
}

TEST(Base64URL, ReadsBackWhatItWrote) {
  std::mt19937 random(20260301);
  std::uniform_int_distribution<int> anyByte(0, 255);
  for (std::size_t length = 0; length < 300; ++length) {
    Bytes original(length);
    for (auto& byte : original)
      byte = static_cast<std::uint8_t>(anyByte(random));
    const std::string text = encodeBase64URL(original);
    EXPECT_EQ(text.find_first_of("+/="), std::string::npos) << text;
    EXPECT_EQ(decodeBase64URL(text), original) << text;
  }
}

} // namespace
} // namespace ventolith::app
