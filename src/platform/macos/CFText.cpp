#include "platform/macos/CFText.h"

#include <cstring>

namespace ventolith::platform {

std::string textOf(CFTypeRef object) {
  if (object == nullptr || ::CFGetTypeID(object) != ::CFStringGetTypeID()) return {};
  const auto* const string = static_cast<CFStringRef>(object);
  const CFIndex longest =
      ::CFStringGetMaximumSizeForEncoding(::CFStringGetLength(string), kCFStringEncodingUTF8) + 1; // The end.
  std::string text(static_cast<std::size_t>(longest), '\0');
  if (!::CFStringGetCString(string, text.data(), longest, kCFStringEncodingUTF8)) return {};
  text.resize(std::strlen(text.c_str()));
  return text;
}

CFOwned<CFStringRef> cfText(std::string_view text) {
  const auto* const bytes = reinterpret_cast<const UInt8*>(text.data()); // NOLINT: the same bytes
  return CFOwned<CFStringRef>(::CFStringCreateWithBytes(
      kCFAllocatorDefault, bytes, static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

} // namespace ventolith::platform
