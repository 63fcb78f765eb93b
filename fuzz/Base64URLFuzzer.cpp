// Any text as base64url: refused, or bytes of which it is the one text, the alphabet and the padding aside.
// Any bytes: a text that reads back as them.
#include "app/platform-kit/Base64.h"

#include <algorithm>
#include <cstdlib>

using namespace ventolith::app;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes input(data, data + size);
  if (decodeBase64URL(encodeBase64URL(input)) != input) std::abort();

  std::string text(characters(input));
  const auto decoded = decodeBase64URL(text);
  if (!decoded) return 0;
  std::replace(text.begin(), text.end(), '+', '-');
  std::replace(text.begin(), text.end(), '/', '_');
  text.erase(std::find(text.begin(), text.end(), '='), text.end());
  if (encodeBase64URL(*decoded) != text) std::abort();
  return 0;
}
