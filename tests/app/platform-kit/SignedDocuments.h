// Documents as a publisher makes them, with keys made for the tests alone.
#pragma once

#include "app/platform-kit/Base64.h"
#include "app/platform-kit/RemoteConfiguration.h"
#include "app/platform-kit/SignedEnvelope.h"
#include "app/platform-kit/SigningPublicKeys.h"

#include <optional>
#include <string>
#include <string_view>

namespace ventolith::app::support {

/// A publisher with a key pair made from `seed`, the same each time.
class Publisher {
public:
  explicit Publisher(std::uint8_t seed = 1);

  [[nodiscard]] const Bytes& publicKey() const { return publicKey_; }
  [[nodiscard]] SignedEnvelope sign(std::string_view payload) const;
  [[nodiscard]] SignedEnvelope publish(const core::JSON& document) const {
    return sign(core::writeJSON(document));
  }

private:
  Bytes publicKey_;
  Bytes secretKey_;
};

/// The identifier of a publisher's key.
inline const std::string keyID = "key-1";

/// Keys that hold the publisher's one for configurations.
[[nodiscard]] StaticSigningPublicKeyProvider::Keys keysOf(const Publisher& publisher);

[[nodiscard]] Bytes bytes(std::string_view text);
/// The bytes of hexadecimal digits.
[[nodiscard]] Bytes fromHex(std::string_view digits);

/// The date of a text that is one.
[[nodiscard]] DocumentDate date(std::string_view text);

/// A configuration published 2026-03-01T00:00:00Z, for 30 days and for the application "org.example.fans"
/// from 1.0.0 on.
[[nodiscard]] core::JSON configurationJSON(std::int64_t revision = 7);

/// The case that `action` throws in an Error; none if it throws nothing.
template <class Error, class Action>
std::optional<typename Error::Case> thrown(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.value();
  }
  return std::nullopt;
}

} // namespace ventolith::app::support
