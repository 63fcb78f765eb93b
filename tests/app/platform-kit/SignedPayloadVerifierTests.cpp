#include "app/platform-kit/SignedPayloadVerifier.h"

#include "app/platform-kit/RemoteConfiguration.h"
#include "app/platform-kit/SignedDocuments.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using Error = SignedPayloadError;
using Plain = Error::Plain;
using support::Publisher;

constexpr SignedPayloadPurpose anotherPurpose{1};

/// A provider of one answer, which counts the questions.
class ScriptedKeys final : public SigningPublicKeyProviding {
public:
  explicit ScriptedKeys(Bytes key) : key_(std::move(key)) {}

  [[nodiscard]] Bytes publicKey(const std::string& kid, SignedPayloadPurpose purpose) const override {
    asked.emplace_back(kid, purpose);
    return key_;
  }

  mutable std::vector<std::pair<std::string, SignedPayloadPurpose>> asked;

private:
  Bytes key_;
};

class SignedPayloadVerifier : public testing::Test {
protected:
  [[nodiscard]] RemoteConfiguration verify(const SignedEnvelope& envelope) const {
    return verifier_.verify<RemoteConfiguration>(envelope);
  }

  [[nodiscard]] std::optional<Error::Case> failure(const SignedEnvelope& envelope) const {
    return support::thrown<Error>([&] { (void)verify(envelope); });
  }

  Publisher publisher_;
  StaticSigningPublicKeyProvider keys_{support::keysOf(publisher_)};
  Ed25519SignedPayloadVerifier verifier_{keys_};
};

TEST_F(SignedPayloadVerifier, GivesTheDocumentOfAGenuineEnvelope) {
  const auto configuration = verify(publisher_.publish(support::configurationJSON(7)));
  EXPECT_EQ(configuration.revision, 7);
  EXPECT_EQ(configuration.appID, "org.example.fans");
}

TEST_F(SignedPayloadVerifier, OnlyEd25519ToTheLetterIsSupported) {
  for (const std::string algorithm : {"ed25519", "ED25519", "Ed25519 ", "", "none"}) {
    auto envelope = publisher_.publish(support::configurationJSON());
    envelope.algorithm = algorithm;
    EXPECT_EQ(failure(envelope), Error::Case(Error::UnsupportedAlgorithm{algorithm})) << algorithm;
  }
}

TEST_F(SignedPayloadVerifier, AnotherPurposeIsWrong) {
  auto envelope = publisher_.publish(support::configurationJSON());
  envelope.purpose = anotherPurpose;
  EXPECT_EQ(failure(envelope),
            Error::Case(Error::WrongPurpose{SignedPayloadPurpose::configuration, anotherPurpose}));
}

TEST_F(SignedPayloadVerifier, APayloadThatIsNoBase64IsMalformed) {
  auto envelope = publisher_.publish(support::configurationJSON());
  envelope.payload += "*";
  EXPECT_EQ(failure(envelope), Error::Case(Plain::malformedPayload));
}

TEST_F(SignedPayloadVerifier, ASignatureThatIsNoBase64IsMalformed) {
  auto envelope = publisher_.publish(support::configurationJSON());
  envelope.signature += "*";
  EXPECT_EQ(failure(envelope), Error::Case(Plain::malformedSignature));
}

TEST_F(SignedPayloadVerifier, AnUnknownKeyFailsWithItsIdentifier) {
  auto envelope = publisher_.publish(support::configurationJSON());
  envelope.kid = "key-2";
  EXPECT_EQ(failure(envelope), Error::Case(Error::UnknownKey{"key-2"}));
}

TEST_F(SignedPayloadVerifier, TheKeyIsAskedForByIdentifierAndPurpose) {
  const ScriptedKeys keys(publisher_.publicKey());
  const Ed25519SignedPayloadVerifier verifier(keys);
  (void)verifier.verify<RemoteConfiguration>(publisher_.publish(support::configurationJSON()));
  ASSERT_EQ(keys.asked.size(), 1U);
  EXPECT_EQ(keys.asked.front(), std::pair(support::keyID, SignedPayloadPurpose::configuration));
}

TEST_F(SignedPayloadVerifier, AKeyThatIsNotThirtyTwoBytesIsInvalid) {
  for (const std::size_t length : {0U, 31U, 33U, 64U}) {
    Bytes key = publisher_.publicKey();
    key.resize(length);
    const ScriptedKeys keys(key);
    const Ed25519SignedPayloadVerifier verifier(keys);
    const auto envelope = publisher_.publish(support::configurationJSON());
    EXPECT_EQ(support::thrown<Error>([&] { (void)verifier.verify<RemoteConfiguration>(envelope); }),
              Error::Case(Error::InvalidPublicKey{support::keyID}))
        << length;
  }
}

TEST_F(SignedPayloadVerifier, AKeyThatIsNoPointOfTheCurveVerifiesNothing) {
  for (const std::uint8_t filling : {std::uint8_t{0}, std::uint8_t{2}, std::uint8_t{255}}) {
    const ScriptedKeys keys(Bytes(32, filling));
    const Ed25519SignedPayloadVerifier verifier(keys);
    const auto envelope = publisher_.publish(support::configurationJSON());
    EXPECT_EQ(support::thrown<Error>([&] { (void)verifier.verify<RemoteConfiguration>(envelope); }),
              Error::Case(Plain::invalidSignature))
        << int{filling};
  }
}

TEST_F(SignedPayloadVerifier, AnotherPublishersSignatureIsInvalid) {
  EXPECT_EQ(failure(Publisher(2).publish(support::configurationJSON())),
            Error::Case(Plain::invalidSignature));
}

TEST_F(SignedPayloadVerifier, APayloadWithAnyByteAlteredIsInvalid) {
  const auto genuine = publisher_.publish(support::configurationJSON());
  const Bytes payload = *decodeBase64URL(genuine.payload);
  for (std::size_t place = 0; place < payload.size(); ++place) {
    Bytes altered = payload;
    altered[place] ^= 1U;
    auto envelope = genuine;
    envelope.payload = encodeBase64URL(altered);
    EXPECT_EQ(failure(envelope), Error::Case(Plain::invalidSignature)) << place;
  }
}

TEST_F(SignedPayloadVerifier, WhatIsNotGenuineIsNeverParsed) {
  auto envelope = publisher_.publish(support::configurationJSON());
  envelope.payload = encodeBase64URL(support::bytes("{")); // Parsing it would be another failure.
  EXPECT_EQ(failure(envelope), Error::Case(Plain::invalidSignature));
}

TEST_F(SignedPayloadVerifier, ASignatureOfAnotherLengthIsInvalid) {
  for (const std::size_t length : {0U, 63U, 65U, 128U}) {
    auto envelope = publisher_.publish(support::configurationJSON());
    Bytes signature = *decodeBase64URL(envelope.signature);
    signature.resize(length);
    envelope.signature = encodeBase64URL(signature);
    EXPECT_EQ(failure(envelope), Error::Case(Plain::invalidSignature)) << length;
  }
}

TEST_F(SignedPayloadVerifier, AGenuinePayloadThatIsNoDocumentFailsToDecode) {
  for (const std::string_view payload : {"", "{", "{}", "[]", "null"})
    EXPECT_THROW((void)verify(publisher_.sign(payload)), core::DecodeError) << payload;
}

TEST_F(SignedPayloadVerifier, OnlyTheFirstSchemaIsSupported) {
  for (const std::int64_t version : {std::int64_t{0}, std::int64_t{2}, std::int64_t{-1}, INT64_MAX}) {
    auto document = support::configurationJSON();
    document["schemaVersion"] = version;
    EXPECT_EQ(failure(publisher_.publish(document)), Error::Case(Error::UnsupportedSchemaVersion{version}))
        << version;
  }
}

TEST_F(SignedPayloadVerifier, TheFirstFailureIsTheOneReported) {
  auto envelope = Publisher(2).sign("{");
  envelope.kid = "key-2";
  envelope.payload += "*";
  envelope.signature += "*";
  envelope.purpose = anotherPurpose;
  envelope.algorithm = "none";
  EXPECT_EQ(failure(envelope), Error::Case(Error::UnsupportedAlgorithm{"none"}));
  envelope.algorithm = "Ed25519";
  EXPECT_EQ(failure(envelope),
            Error::Case(Error::WrongPurpose{SignedPayloadPurpose::configuration, anotherPurpose}));
  envelope.purpose = SignedPayloadPurpose::configuration;
  EXPECT_EQ(failure(envelope), Error::Case(Plain::malformedPayload));
  envelope.payload.pop_back();
  EXPECT_EQ(failure(envelope), Error::Case(Plain::malformedSignature));
  envelope.signature.pop_back();
  EXPECT_EQ(failure(envelope), Error::Case(Error::UnknownKey{"key-2"}));
  envelope.kid = support::keyID;
  EXPECT_EQ(failure(envelope), Error::Case(Plain::invalidSignature));
}

TEST(SignedPayloadError, TellsCaseAndPayload) {
  struct Row {
    Error::Case value;
    std::string_view text;
  };
  const Row rows[] = {
      {Error::UnsupportedAlgorithm{"none"}, "unsupportedAlgorithm(\"none\")"},
      {Error::UnknownKey{"k"}, "unknownKey(\"k\")"},
      {Error::InvalidPublicKey{"k"}, "invalidPublicKey(\"k\")"},
      {Error::UnsupportedSchemaVersion{2}, "unsupportedSchemaVersion(2)"},
      {Error::WrongPurpose{SignedPayloadPurpose::configuration, SignedPayloadPurpose::configuration},
       "wrongPurpose(expected: configuration, received: configuration)"},
      {Plain::malformedPayload, "malformedPayload"},
      {Plain::malformedSignature, "malformedSignature"},
      {Plain::invalidSignature, "invalidSignature"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(Error(row.value).what(), row.text);
}

} // namespace
} // namespace ventolith::app
