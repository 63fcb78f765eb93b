#include "app/platform-kit/SignedPayloadVerifier.h"

#include <sodium.h>

namespace ventolith::app {

using Error = SignedPayloadError;

namespace {

void prepareSodium() {
  if (sodium_init() < 0) throw std::runtime_error("libsodium cannot be used on this computer");
}

bool isSignedBy(const Bytes& key, const Bytes& signature, const Bytes& message) {
  return signature.size() == crypto_sign_BYTES &&
         crypto_sign_verify_detached(signature.data(), message.data(), message.size(), key.data()) == 0;
}

} // namespace

Ed25519SignedPayloadVerifier::Ed25519SignedPayloadVerifier(const SigningPublicKeyProviding& keys)
    : keys_(keys) {
  prepareSodium();
}

Bytes Ed25519SignedPayloadVerifier::verifiedPayload(const SignedEnvelope& envelope,
                                                    SignedPayloadPurpose expected) const {
  if (envelope.algorithm != "Ed25519") throw Error(Error::UnsupportedAlgorithm{envelope.algorithm});
  if (envelope.purpose != expected) throw Error(Error::WrongPurpose{expected, envelope.purpose});
  auto payload = decodeBase64URL(envelope.payload);
  if (!payload) throw Error(Error::Plain::malformedPayload);
  const auto signature = decodeBase64URL(envelope.signature);
  if (!signature) throw Error(Error::Plain::malformedSignature);
  const Bytes key = keys_.publicKey(envelope.kid, envelope.purpose);
  if (key.size() != crypto_sign_PUBLICKEYBYTES) throw Error(Error::InvalidPublicKey{envelope.kid});
  if (!isSignedBy(key, *signature, *payload)) throw Error(Error::Plain::invalidSignature);
  return std::move(*payload);
}

} // namespace ventolith::app
