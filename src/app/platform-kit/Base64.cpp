#include "app/platform-kit/Base64.h"

#include <sodium.h>

#include <algorithm>

namespace ventolith::app {

namespace {

bool isASCII(char character) {
  return static_cast<unsigned char>(character) < 0x80;
}

} // namespace

std::string_view characters(const Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::optional<Bytes> decodeBase64(std::string_view text) {
  // libsodium 1.0.18 takes some bytes beyond ASCII for digits.
  if (!std::all_of(text.begin(), text.end(), isASCII)) return std::nullopt;
  Bytes bytes(text.size() / 4 * 3 + 1); // One to spare: libsodium takes no null for a buffer.
  std::size_t count = 0;
  // No characters to skip, and no place to report where it ended: so anything left over is a failure.
  const int failure = sodium_base642bin(bytes.data(), bytes.size(), text.data(), text.size(), nullptr, &count,
                                        nullptr, sodium_base64_VARIANT_ORIGINAL);
  if (failure != 0) return std::nullopt;
  bytes.resize(count);
  return bytes;
}

std::optional<Bytes> decodeBase64URL(std::string_view text) {
  std::string plain(text);
  std::replace(plain.begin(), plain.end(), '-', '+');
  std::replace(plain.begin(), plain.end(), '_', '/');
  plain.resize((plain.size() + 3) / 4 * 4, '=');
  return decodeBase64(plain);
}

std::string encodeBase64URL(const Bytes& bytes) {
  constexpr int variant = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
  std::string text(sodium_base64_encoded_len(bytes.size(), variant), '\0');
  sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), variant);
  text.pop_back(); // The zero that ends a C string.
  return text;
}

} // namespace ventolith::app
