#include "app/platform-kit/SignedEnvelope.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using core::DecodeError;
using Kind = DecodeError::Kind;

const SignedEnvelope envelope = {.kid = "key-1",
                                 .algorithm = "Ed25519",
                                 .purpose = SignedPayloadPurpose::configuration,
                                 .payload = "e30",
                                 .signature = "AA"};
const std::string text =
    R"({"kid":"key-1","algorithm":"Ed25519","purpose":"configuration","payload":"e30","signature":"AA"})";

TEST(SignedEnvelope, IsWrittenInTheOrderOfItsFields) {
  EXPECT_EQ(core::writeJSON(toJSON(envelope)), text);
}

TEST(SignedEnvelope, ReadsBackTheSame) {
  EXPECT_EQ(decodeSignedEnvelope(text), envelope);
}

TEST(SignedEnvelope, EveryFieldIsRequired) {
  for (const std::string key : {"kid", "algorithm", "purpose", "payload", "signature"}) {
    core::JSON json = toJSON(envelope);
    json.erase(key);
    try {
      (void)readSignedEnvelope(core::JSONReader(json));
      FAIL() << "read without " << key;
    } catch (const DecodeError& error) {
      EXPECT_EQ(error.kind(), Kind::keyNotFound) << key;
      EXPECT_EQ(error.path(), key);
    }
  }
}

TEST(SignedEnvelope, EveryFieldIsAString) {
  for (const std::string key : {"kid", "algorithm", "purpose", "payload", "signature"}) {
    core::JSON json = toJSON(envelope);
    json[key] = 1;
    try {
      (void)readSignedEnvelope(core::JSONReader(json));
      FAIL() << "read with a number for " << key;
    } catch (const DecodeError& error) {
      EXPECT_EQ(error.kind(), Kind::typeMismatch) << key;
      EXPECT_EQ(error.path(), key);
    }
  }
}

TEST(SignedEnvelope, OtherMembersAreIgnored) {
  core::JSON json = toJSON(envelope);
  json["note"] = "hello";
  EXPECT_EQ(readSignedEnvelope(core::JSONReader(json)), envelope);
}

TEST(SignedEnvelope, AnUnknownPurposeIsRefused) {
  for (const std::string purpose : {"", "Configuration", "license"}) {
    core::JSON json = toJSON(envelope);
    json["purpose"] = purpose;
    try {
      (void)readSignedEnvelope(core::JSONReader(json));
      FAIL() << "read with the purpose " << purpose;
    } catch (const DecodeError& error) {
      EXPECT_EQ(error.kind(), Kind::dataCorrupted) << purpose;
      EXPECT_EQ(error.path(), "purpose");
    }
  }
}

TEST(SignedEnvelope, TextThatIsNoObjectIsRefused) {
  for (const std::string_view other : {"", "{", "[]", "null", "\"x\"", "{\"kid\":\"a\",\"kid\":\"b\"}"})
    EXPECT_THROW((void)decodeSignedEnvelope(other), DecodeError) << other;
}

TEST(SignedEnvelope, DiffersInEveryField) {
  const auto changed = [](auto change) {
    SignedEnvelope other = envelope;
    change(other);
    return other;
  };
  EXPECT_NE(envelope, changed([](SignedEnvelope& other) { other.kid = "key-2"; }));
  EXPECT_NE(envelope, changed([](SignedEnvelope& other) { other.algorithm = "ed25519"; }));
  EXPECT_NE(envelope, changed([](SignedEnvelope& other) { other.purpose = SignedPayloadPurpose{1}; }));
  EXPECT_NE(envelope, changed([](SignedEnvelope& other) { other.payload = "e31"; }));
  EXPECT_NE(envelope, changed([](SignedEnvelope& other) { other.signature = "AB"; }));
}

TEST(SignedPayloadPurpose, HasAWord) {
  EXPECT_EQ(rawValue(SignedPayloadPurpose::configuration), "configuration");
  EXPECT_EQ(signedPayloadPurpose("configuration"), SignedPayloadPurpose::configuration);
  EXPECT_EQ(signedPayloadPurpose("Configuration"), std::nullopt);
}

} // namespace
} // namespace ventolith::app
