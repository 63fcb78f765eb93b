// Any text in the place of a build's property list: it gives nothing and a sentence, or strings and booleans
// that are no longer than the text, each under a key of its own.
#include "app/platform-kit/PropertyList.h"

#include <cstdint>
#include <cstdlib>

using namespace ventolith;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto values = app::parsePropertyList(text);
  if (!values) {
    require(!values.error().description.empty());
    return 0;
  }
  require(size <= app::mostPropertyListBytes);
  std::size_t bytes = 0;
  for (const auto& [key, value] : *values) {
    bytes += key.size();
    if (const auto* const words = std::get_if<std::string>(&value)) bytes += words->size();
  }
  require(bytes <= size); // Nothing expands.
  return 0;
}
