#include "platform/linux/desktop/FeedSignature.h"

#include "app/platform-kit/Base64.h"
#include "app/platform-kit/TrimmedText.h"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>
#include <sodium.h>

#include <stdexcept>

namespace ventolith::platform {

std::string signatureURL(const std::string& feedURL) {
  const boost::urls::url_view url = boost::urls::parse_uri(feedURL).value();
  const auto text = [](const auto& part) { return std::string(part.data(), part.size()); };
  std::string path = text(url.encoded_path());
  if (path.empty()) path = "/";
  const std::string query = url.has_query() ? "?" + text(url.encoded_query()) : "";
  return text(url.encoded_origin()) + path + ".sig" + query;
}

bool isSignedFeed(std::string_view feed, std::string_view signature, std::string_view publicKey) {
  if (sodium_init() < 0) throw std::runtime_error("libsodium cannot be used on this computer");
  const auto signatureBytes = app::decodeBase64(app::trimmed(signature));
  const auto key = app::decodeBase64(publicKey);
  if (!signatureBytes || signatureBytes->size() != crypto_sign_BYTES) return false;
  if (!key || key->size() != crypto_sign_PUBLICKEYBYTES) return false;
  return crypto_sign_verify_detached(signatureBytes->data(),
                                     reinterpret_cast<const unsigned char*>(feed.data()), feed.size(),
                                     key->data()) == 0;
}

} // namespace ventolith::platform
