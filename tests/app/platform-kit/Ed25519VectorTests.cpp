// The signatures of RFC 8032, section 7.1, tests 1 to 3.
#include "app/platform-kit/SignedDocuments.h"
#include "app/platform-kit/SignedPayloadVerifier.h"

#include <gtest/gtest.h>

#include <vector>

namespace ventolith::app {
namespace {

using Error = SignedPayloadError;
using support::fromHex;

constexpr auto configuration = SignedPayloadPurpose::configuration;

struct Vector {
  std::string_view publicKey;
  std::string_view message;
  std::string_view signature;
};

const std::vector<Vector> vectors = {
    {"d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a", "",
     "e5564300c360ac729086e2cc806e828a84877f1eb8e5d974d873e065224901555fb8821590a33bacc61e39701cf9b46bd25bf5f"
     "0595b"
     "be24655141438e7a100b"},
    {"3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c", "72",
     "92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da085ac1e43e15996e458f3613d0f11d8c387b2ea"
     "eb430"
     "2aeeb00d291612bb0c00"},
    {"fc51cd8e6218a1a38da47ed00230f0580816ed13ba3303ac5deb911548908025", "af82",
     "6291d657deec24024827e69c3abe01a30ce548a284743a445e3680d7db5ac3ac18ff9b538d16f290ae67f760984dc6594a7c15e"
     "9716e"
     "d28dc027beceea1ec40a"},
};

SignedEnvelope envelope(const Bytes& message, const Bytes& signature) {
  return {.kid = "k",
          .algorithm = "Ed25519",
          .purpose = configuration,
          .payload = encodeBase64URL(message),
          .signature = encodeBase64URL(signature)};
}

/// Knows the vector's key.
struct Verifier {
  explicit Verifier(const Vector& vector)
      : keys({{configuration, {{"k", fromHex(vector.publicKey)}}}}), ed25519(keys) {}

  [[nodiscard]] Bytes payload(const SignedEnvelope& envelope) const {
    return ed25519.verifiedPayload(envelope, configuration);
  }
  [[nodiscard]] std::optional<Error::Case> failure(const SignedEnvelope& envelope) const {
    return support::thrown<Error>([&] { (void)payload(envelope); });
  }

  StaticSigningPublicKeyProvider keys;
  Ed25519SignedPayloadVerifier ed25519;
};

TEST(Ed25519Vectors, ThePublishedSignaturesHold) {
  for (const Vector& vector : vectors) {
    const Verifier verifier(vector);
    const Bytes message = fromHex(vector.message);
    EXPECT_EQ(verifier.payload(envelope(message, fromHex(vector.signature))), message);
  }
}

TEST(Ed25519Vectors, WithAnyBitOfTheSignatureChangedTheyDoNot) {
  for (const Vector& vector : vectors) {
    const Verifier verifier(vector);
    const Bytes signature = fromHex(vector.signature);
    for (std::size_t bit = 0; bit < signature.size() * 8; ++bit) {
      Bytes changed = signature;
      changed[bit / 8] = static_cast<std::uint8_t>(changed[bit / 8] ^ (1U << bit % 8));
      const auto altered = envelope(fromHex(vector.message), changed);
      EXPECT_EQ(verifier.failure(altered), Error::Case(Error::Plain::invalidSignature)) << bit;
    }
  }
}

TEST(Ed25519Vectors, NoneHoldsForAnotherMessage) {
  for (const Vector& vector : vectors) {
    const Verifier verifier(vector);
    Bytes message = fromHex(vector.message);
    message.push_back(0);
    const auto altered = envelope(message, fromHex(vector.signature));
    EXPECT_EQ(verifier.failure(altered), Error::Case(Error::Plain::invalidSignature));
  }
}

} // namespace
} // namespace ventolith::app
