#include "app/platform-kit/SigningPublicKeys.h"

#include "app/platform-kit/SignedPayloadError.h"
#include "app/platform-kit/TrimmedText.h"

namespace ventolith::app {

Bytes StaticSigningPublicKeyProvider::publicKey(const std::string& kid, SignedPayloadPurpose purpose) const {
  const auto forPurpose = keys_.find(purpose);
  if (forPurpose != keys_.end()) {
    const auto key = forPurpose->second.find(kid);
    if (key != forPurpose->second.end()) return key->second;
  }
  throw SignedPayloadError(SignedPayloadError::UnknownKey{kid});
}

StaticSigningPublicKeyProvider::Keys signingPublicKeys(const BundleInfo& bundle) {
  const auto kid = bundle.string("PlatformConfigurationKeyID");
  const auto keyText = bundle.string("PlatformConfigurationPublicKey");
  if (!kid || !keyText) return {};
  const auto name = trimmed(*kid);
  const auto key = decodeBase64(trimmed(*keyText));
  if (name.empty() || !key || key->empty()) return {};
  return {{SignedPayloadPurpose::configuration, {{std::string(name), *key}}}};
}

} // namespace ventolith::app
