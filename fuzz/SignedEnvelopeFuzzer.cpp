// Any text as an envelope: refused, or a record that comes back the same and that only its signature makes a
// document. The same text as the payload of a genuine envelope: refused, or a document that can be validated
// and cached.
#include "app/platform-kit/RemoteConfigurationValidator.h"
#include "app/platform-kit/SignedConfigurationCache.h"

#include <sodium.h>

#include <cstdlib>

using namespace ventolith;
using namespace ventolith::app;

namespace {

struct Publisher {
  Publisher() {
    const Bytes seed(crypto_sign_SEEDBYTES, 1);
    crypto_sign_seed_keypair(publicKey.data(), secretKey.data(), seed.data());
  }

  [[nodiscard]] SignedEnvelope sign(const Bytes& payload) const {
    Bytes signature(crypto_sign_BYTES);
    crypto_sign_detached(signature.data(), nullptr, payload.data(), payload.size(), secretKey.data());
    return {.kid = "k",
            .algorithm = "Ed25519",
            .payload = encodeBase64URL(payload),
            .signature = encodeBase64URL(signature)};
  }

  Bytes publicKey = Bytes(crypto_sign_PUBLICKEYBYTES);
  Bytes secretKey = Bytes(crypto_sign_SECRETKEYBYTES);
};

struct Reader {
  Publisher publisher;
  StaticSigningPublicKeyProvider keys{{{SignedPayloadPurpose::configuration, {{"k", publisher.publicKey}}}}};
  Ed25519SignedPayloadVerifier verifier{keys};
};

const Reader& reader() {
  static const Reader reader;
  return reader;
}

void tryAsEnvelope(std::string_view text) {
  try {
    const auto envelope = decodeSignedEnvelope(text);
    if (decodeSignedEnvelope(core::writeJSON(toJSON(envelope))) != envelope) std::abort();
    const Bytes payload = reader().verifier.verifiedPayload(envelope, SignedPayloadPurpose::configuration);
    // Genuine: then the one key signed it, which signs each payload in one way.
    if (decodeBase64URL(envelope.signature) != decodeBase64URL(reader().publisher.sign(payload).signature))
      std::abort();
  } catch (const core::DecodeError&) {
    return;
  } catch (const SignedPayloadError&) {
    return;
  }
}

void tryAsPayload(const Bytes& payload) {
  const runtime::WallTime now(std::chrono::hours(24) * 20522); // 2026-03-10.
  const auto envelope = reader().publisher.sign(payload);
  MemoryConfigurationCacheStore store;
  SignedConfigurationCache cache(reader().verifier, store, "org.example.fans", "1.0.3");
  try {
    const auto accepted = cache.accept(envelope, now);
    if (cache.current(now) != accepted || cache.accept(envelope, now) != accepted) std::abort();
  } catch (const core::DecodeError&) {
    return;
  } catch (const ConfigurationValidationError&) {
    return;
  } catch (const SignedPayloadError& error) {
    if (!std::holds_alternative<SignedPayloadError::UnsupportedSchemaVersion>(error.value())) std::abort();
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes input(data, data + size);
  tryAsEnvelope(characters(input));
  tryAsPayload(input);
  return 0;
}
