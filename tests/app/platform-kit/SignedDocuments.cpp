#include "app/platform-kit/SignedDocuments.h"

#include <sodium.h>

#include <stdexcept>

namespace ventolith::app::support {

Publisher::Publisher(std::uint8_t seed)
    : publicKey_(crypto_sign_PUBLICKEYBYTES), secretKey_(crypto_sign_SECRETKEYBYTES) {
  const Bytes seedBytes(crypto_sign_SEEDBYTES, seed);
  crypto_sign_seed_keypair(publicKey_.data(), secretKey_.data(), seedBytes.data());
}

SignedEnvelope Publisher::sign(std::string_view payload) const {
  const Bytes message = bytes(payload);
  Bytes signature(crypto_sign_BYTES);
  crypto_sign_detached(signature.data(), nullptr, message.data(), message.size(), secretKey_.data());
  return {.kid = keyID,
          .algorithm = "Ed25519",
          .purpose = SignedPayloadPurpose::configuration,
          .payload = encodeBase64URL(message),
          .signature = encodeBase64URL(signature)};
}

StaticSigningPublicKeyProvider::Keys keysOf(const Publisher& publisher) {
  return {{SignedPayloadPurpose::configuration, {{keyID, publisher.publicKey()}}}};
}

Bytes bytes(std::string_view text) {
  return {text.begin(), text.end()};
}

Bytes fromHex(std::string_view digits) {
  Bytes bytes(digits.size() / 2);
  if (bytes.empty()) return bytes; // libsodium takes no null for a buffer.
  if (sodium_hex2bin(bytes.data(), bytes.size(), digits.data(), digits.size(), nullptr, nullptr, nullptr) !=
      0)
    throw std::logic_error("no hexadecimal digits: " + std::string(digits));
  return bytes;
}

DocumentDate date(std::string_view text) {
  const auto date = dateFromISO8601(text);
  if (!date) throw std::logic_error("no date: " + std::string(text));
  return *date;
}

core::JSON configurationJSON(std::int64_t revision) {
  core::JSON json = core::JSON::object();
  json["schemaVersion"] = 1;
  json["revision"] = revision;
  json["appID"] = "org.example.fans";
  json["publishedAt"] = "2026-03-01T00:00:00Z";
  json["expiresAt"] = "2026-03-31T00:00:00.000Z";
  json["minimumSupportedVersion"] = "1.0.0";
  json["configRefreshMinutes"] = 60;
  return json;
}

} // namespace ventolith::app::support
