// Why an envelope holds no document that can be trusted.
#pragma once

#include "app/platform-kit/SignedEnvelope.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <variant>

namespace ventolith::app {

/// `what()` is the case and an excerpt of its payload, for a log.
class SignedPayloadError : public std::runtime_error {
public:
  struct UnsupportedAlgorithm {
    std::string algorithm;
    bool operator==(const UnsupportedAlgorithm&) const = default;
  };
  struct UnknownKey {
    std::string kid;
    bool operator==(const UnknownKey&) const = default;
  };
  struct InvalidPublicKey {
    std::string kid;
    bool operator==(const InvalidPublicKey&) const = default;
  };
  struct UnsupportedSchemaVersion {
    std::int64_t version;
    bool operator==(const UnsupportedSchemaVersion&) const = default;
  };
  struct WrongPurpose {
    SignedPayloadPurpose expected;
    SignedPayloadPurpose received;
    bool operator==(const WrongPurpose&) const = default;
  };
  enum class Plain { malformedPayload, malformedSignature, invalidSignature };

  using Case = std::variant<UnsupportedAlgorithm, UnknownKey, InvalidPublicKey, UnsupportedSchemaVersion,
                            WrongPurpose, Plain>;

  explicit SignedPayloadError(Case value);

  [[nodiscard]] const Case& value() const { return value_; }

private:
  Case value_;
};

} // namespace ventolith::app
