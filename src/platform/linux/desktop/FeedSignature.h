// The signature of the update feed: one of the whole file, in a file beside it.
#pragma once

#include <string>
#include <string_view>

namespace ventolith::platform {

/// Where the signature of the feed at `feedURL`, a valid URL, is: its path with ".sig" appended. A query
/// stays behind the path, since it is what lets one in; a fragment falls away.
[[nodiscard]] std::string signatureURL(const std::string& feedURL);

/// Whether `signature`, an Ed25519 signature in base64 with blanks around it or not, is the key's for exactly
/// these bytes. `publicKey` is base64 too.
[[nodiscard]] bool isSignedFeed(std::string_view feed, std::string_view signature,
                                std::string_view publicKey);

} // namespace ventolith::platform
