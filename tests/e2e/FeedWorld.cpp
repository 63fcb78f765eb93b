#include "e2e/FeedWorld.h"

#include "e2e/Patience.h"

#include <fmt/format.h>
#include <sodium.h>

#include <stdexcept>
#include <thread>

namespace ventolith::e2e {

namespace {

std::string base64(const app::Bytes& bytes) {
  constexpr int variant = sodium_base64_VARIANT_ORIGINAL;
  std::string text(sodium_base64_encoded_len(bytes.size(), variant), '\0');
  sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), variant);
  text.pop_back(); // The zero that ends a C string.
  return text;
}

} // namespace

FeedPublisher::FeedPublisher(std::uint8_t seed) : secretKey_(crypto_sign_SECRETKEYBYTES) {
  app::Bytes publicKey(crypto_sign_PUBLICKEYBYTES);
  const app::Bytes seedBytes(crypto_sign_SEEDBYTES, seed);
  crypto_sign_seed_keypair(publicKey.data(), secretKey_.data(), seedBytes.data());
  publicKey_ = base64(publicKey);
}

std::string FeedPublisher::sign(const std::string& feed) const {
  app::Bytes signature(crypto_sign_BYTES);
  crypto_sign_detached(signature.data(), nullptr, reinterpret_cast<const unsigned char*>(feed.data()),
                       feed.size(), secretKey_.data());
  return base64(signature);
}

std::string feedOf(const std::vector<FeedItem>& items) {
  std::string text =
      R"(<?xml version="1.0"?><rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel>)";
  for (const auto& [build, version, channel] : items) {
    text += fmt::format("<item><link>https://example.com/{1}</link><sparkle:version>{0}</sparkle:version>"
                        "<sparkle:shortVersionString>{1}</sparkle:shortVersionString>",
                        build, version);
    if (!channel.empty()) text += fmt::format("<sparkle:channel>{}</sparkle:channel>", channel);
    text += "</item>";
  }
  return text + "</channel></rss>\n";
}

const TestAuthority& testAuthority() {
  static const TestAuthority authority;
  return authority;
}

void FeedLoops::turn() {
  main_.restart();
  main_.poll();
  engine_.restart();
  engineWakeUps_ += engine_.run_for(std::chrono::milliseconds(2));
}

void FeedLoops::until(const std::string& what, const std::function<bool()>& holds) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > end) throw std::runtime_error("waited in vain: " + what);
    turn();
  }
}

void FeedLoops::runFor(std::chrono::milliseconds span) {
  const auto end = std::chrono::steady_clock::now() + span;
  while (std::chrono::steady_clock::now() < end) {
    turn();
    std::this_thread::sleep_for(std::chrono::milliseconds(1)); // An idle loop returns at once.
  }
}

} // namespace ventolith::e2e
