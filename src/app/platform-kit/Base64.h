// Bytes in text, as signed documents and keys carry them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::app {

using Bytes = std::vector<std::uint8_t>;

/// `bytes` as the characters that they are; valid for as long as `bytes` stays as it is.
[[nodiscard]] std::string_view characters(const Bytes& bytes);

/// Plain base64, padded. None for any other text: a foreign character, white space, padding that is missing
/// or too much, and spare bits that are not zero. So there is one text for given bytes.
[[nodiscard]] std::optional<Bytes> decodeBase64(std::string_view text);

/// Base64url, padded fully, in part, or not at all. The characters + and / are taken for - and _.
[[nodiscard]] std::optional<Bytes> decodeBase64URL(std::string_view text);

/// Base64url without padding.
[[nodiscard]] std::string encodeBase64URL(const Bytes& bytes);

} // namespace ventolith::app
