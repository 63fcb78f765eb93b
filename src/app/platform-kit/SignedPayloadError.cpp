#include "app/platform-kit/SignedPayloadError.h"

#include "core/Excerpt.h"
#include "core/Visitor.h"

#include <fmt/format.h>

namespace ventolith::app {

using Error = SignedPayloadError;

namespace {

std::string plainText(Error::Plain error) {
  switch (error) {
  case Error::Plain::malformedPayload: return "malformedPayload";
  case Error::Plain::malformedSignature: return "malformedSignature";
  case Error::Plain::invalidSignature: return "invalidSignature";
  }
  return {};
}

std::string text(const Error::Case& value) {
  return std::visit(core::Visitor{
                        [](const Error::UnsupportedAlgorithm& error) {
                          return fmt::format("unsupportedAlgorithm(\"{}\")", core::excerpt(error.algorithm));
                        },
                        [](const Error::UnknownKey& error) {
                          return fmt::format("unknownKey(\"{}\")", core::excerpt(error.kid));
                        },
                        [](const Error::InvalidPublicKey& error) {
                          return fmt::format("invalidPublicKey(\"{}\")", core::excerpt(error.kid));
                        },
                        [](const Error::UnsupportedSchemaVersion& error) {
                          return fmt::format("unsupportedSchemaVersion({})", error.version);
                        },
                        [](const Error::WrongPurpose& error) {
                          return fmt::format("wrongPurpose(expected: {}, received: {})",
                                             rawValue(error.expected), rawValue(error.received));
                        },
                        [](const Error::Plain& error) { return plainText(error); },
                    },
                    value);
}

} // namespace

SignedPayloadError::SignedPayloadError(Case value)
    : std::runtime_error(text(value)), value_(std::move(value)) {}

} // namespace ventolith::app
