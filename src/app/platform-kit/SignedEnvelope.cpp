#include "app/platform-kit/SignedEnvelope.h"

#include "core/Excerpt.h"

namespace ventolith::app {

using core::DecodeError;
using core::JSON;
using core::JSONReader;

std::string_view rawValue(SignedPayloadPurpose purpose) {
  switch (purpose) {
  case SignedPayloadPurpose::configuration: return "configuration";
  }
  return {};
}

std::optional<SignedPayloadPurpose> signedPayloadPurpose(std::string_view text) {
  if (text == rawValue(SignedPayloadPurpose::configuration)) return SignedPayloadPurpose::configuration;
  return std::nullopt;
}

namespace {

SignedPayloadPurpose readPurpose(const JSONReader& json) {
  const auto purpose = signedPayloadPurpose(json.asString());
  if (!purpose)
    json.fail(DecodeError::Kind::dataCorrupted, "no purpose: \"" + core::excerpt(json.asString()) + "\"");
  return *purpose;
}

} // namespace

JSON toJSON(const SignedEnvelope& envelope) {
  JSON json = JSON::object();
  json["kid"] = envelope.kid;
  json["algorithm"] = envelope.algorithm;
  json["purpose"] = rawValue(envelope.purpose);
  json["payload"] = envelope.payload;
  json["signature"] = envelope.signature;
  return json;
}

SignedEnvelope readSignedEnvelope(const JSONReader& json) {
  return {.kid = json.at("kid").asString(),
          .algorithm = json.at("algorithm").asString(),
          .purpose = readPurpose(json.at("purpose")),
          .payload = json.at("payload").asString(),
          .signature = json.at("signature").asString()};
}

SignedEnvelope decodeSignedEnvelope(std::string_view text) {
  const JSON document = core::parseJSON(text);
  return readSignedEnvelope(JSONReader(document));
}

} // namespace ventolith::app
