// The form in which a signed document travels and is stored.
#pragma once

#include "core/JSON.h"

#include <optional>
#include <string>
#include <string_view>

namespace ventolith::app {

/// What kind of document a signature is for.
enum class SignedPayloadPurpose { configuration };

[[nodiscard]] std::string_view rawValue(SignedPayloadPurpose purpose);
[[nodiscard]] std::optional<SignedPayloadPurpose> signedPayloadPurpose(std::string_view text);

/// Everything in it is as received: nothing is true of it before a verifier has said so. The signature covers
/// the bytes of the payload alone, not the fields before it.
struct SignedEnvelope {
  std::string kid; // Names the signing key.
  std::string algorithm;
  SignedPayloadPurpose purpose = SignedPayloadPurpose::configuration;
  std::string payload;   // The document's JSON, in unpadded base64url.
  std::string signature; // In unpadded base64url.

  bool operator==(const SignedEnvelope&) const = default;
};

// JSON: keys are the field names, all required; others are ignored. Reading fails with DecodeError.
[[nodiscard]] core::JSON toJSON(const SignedEnvelope& envelope);
[[nodiscard]] SignedEnvelope readSignedEnvelope(const core::JSONReader& json);

/// An envelope as it travels. Fails with DecodeError; a text over the bounds of `JSONBounds` is refused.
[[nodiscard]] SignedEnvelope decodeSignedEnvelope(std::string_view text);

} // namespace ventolith::app
