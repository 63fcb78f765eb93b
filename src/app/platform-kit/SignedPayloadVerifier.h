// From an envelope to a document that can be trusted.
#pragma once

#include "app/platform-kit/Base64.h"
#include "app/platform-kit/SignedPayloadError.h"
#include "app/platform-kit/SigningPublicKeys.h"

#include <concepts>
#include <cstdint>

namespace ventolith::app {

/// A document that can be signed: it tells the purpose that its signature must be for, and its schema's
/// version.
template <class Document>
concept SignedPayload = requires(const Document& document, const core::JSONReader& json) {
  { Document::signingPurpose } -> std::convertible_to<SignedPayloadPurpose>;
  { document.schemaVersion } -> std::convertible_to<std::int64_t>;
  { Document::read(json) } -> std::same_as<Document>; // Throws DecodeError.
};

inline constexpr std::int64_t supportedSchemaVersion = 1;

class SignedPayloadVerifying {
public:
  SignedPayloadVerifying() = default;
  SignedPayloadVerifying(const SignedPayloadVerifying&) = delete;
  SignedPayloadVerifying& operator=(const SignedPayloadVerifying&) = delete;
  virtual ~SignedPayloadVerifying() = default;

  /// The payload's bytes, if the envelope is for `expected` and signed by a known key. Throws
  /// SignedPayloadError, and what the key provider throws. No byte of the payload has been interpreted.
  [[nodiscard]] virtual Bytes verifiedPayload(const SignedEnvelope& envelope,
                                              SignedPayloadPurpose expected) const = 0;

  /// The document in it. Throws as `verifiedPayload`, then DecodeError, then SignedPayloadError
  /// (unsupportedSchemaVersion).
  template <SignedPayload Document>
  [[nodiscard]] Document verify(const SignedEnvelope& envelope) const {
    const Bytes payload = verifiedPayload(envelope, Document::signingPurpose);
    const core::JSON json = core::parseJSON(characters(payload));
    auto document = Document::read(core::JSONReader(json));
    if (document.schemaVersion != supportedSchemaVersion)
      throw SignedPayloadError(SignedPayloadError::UnsupportedSchemaVersion{document.schemaVersion});
    return document;
  }
};

class Ed25519SignedPayloadVerifier final : public SignedPayloadVerifying {
public:
  /// `keys` outlives the verifier.
  explicit Ed25519SignedPayloadVerifier(const SigningPublicKeyProviding& keys);

  /// The first failure, in the order unsupportedAlgorithm, wrongPurpose, malformedPayload,
  /// malformedSignature, the provider's, invalidPublicKey, invalidSignature. A key that is no point of the
  /// curve verifies nothing, and so gives the last.
  [[nodiscard]] Bytes verifiedPayload(const SignedEnvelope& envelope,
                                      SignedPayloadPurpose expected) const override;

private:
  const SigningPublicKeyProviding& keys_;
};

} // namespace ventolith::app
