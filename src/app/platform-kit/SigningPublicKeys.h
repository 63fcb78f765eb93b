// Whose signatures count.
#pragma once

#include "app/platform-kit/Base64.h"
#include "app/platform-kit/BundleInfo.h"
#include "app/platform-kit/SignedEnvelope.h"

#include <map>
#include <string>

namespace ventolith::app {

class SigningPublicKeyProviding {
public:
  SigningPublicKeyProviding() = default;
  SigningPublicKeyProviding(const SigningPublicKeyProviding&) = delete;
  SigningPublicKeyProviding& operator=(const SigningPublicKeyProviding&) = delete;
  virtual ~SigningPublicKeyProviding() = default;

  /// The 32 raw bytes of an Ed25519 public key. Throws SignedPayloadError or a failure of its own.
  [[nodiscard]] virtual Bytes publicKey(const std::string& kid, SignedPayloadPurpose purpose) const = 0;
};

class StaticSigningPublicKeyProvider final : public SigningPublicKeyProviding {
public:
  using Keys = std::map<SignedPayloadPurpose, std::map<std::string, Bytes>>;

  explicit StaticSigningPublicKeyProvider(Keys keys) : keys_(std::move(keys)) {}

  /// Throws SignedPayloadError (unknownKey) for a key that it does not hold, or holds for another purpose.
  [[nodiscard]] Bytes publicKey(const std::string& kid, SignedPayloadPurpose purpose) const override;

private:
  Keys keys_;
};

/// The one key for configurations that a build carries: its identifier under PlatformConfigurationKeyID, the
/// key in base64 under PlatformConfigurationPublicKey. No keys at all when one of the two is missing, empty
/// or no base64.
[[nodiscard]] StaticSigningPublicKeyProvider::Keys signingPublicKeys(const BundleInfo& bundle);

} // namespace ventolith::app
