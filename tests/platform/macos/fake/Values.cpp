// Values that the sources under test make for the fake system: texts, bytes, truths, and what holds them.
#include "Objects.h"

#include <string>
#include <utility>

using ventolith::fake::Object;
using ventolith::fake::objectOf;
using ventolith::fake::Objects;

namespace {

Object truth{.type = "boolean", .text = "true", .isConstant = true};
Object untruth{.type = "boolean", .text = "false", .isConstant = true};

std::string textOf(const UInt8* bytes, CFIndex length) {
  return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

bool isUTF8(const std::string& text) {
  return text.find('\xFF') == text.npos; // Enough for what tests make of it.
}

Object* dataBehind(CFDataRef data, const char* function) {
  return Objects::get().alive(data, function, "data");
}

} // namespace

extern "C" {

const CFBooleanRef kCFBooleanTrue = truth.as<CFBooleanRef>();
const CFBooleanRef kCFBooleanFalse = untruth.as<CFBooleanRef>();

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternal) {
  if (encoding != kCFStringEncodingUTF8 || isExternal != 0)
    Objects::get().complain("CFStringCreateWithBytes was given another encoding");
  std::string text = textOf(bytes, count);
  return isUTF8(text) ? Objects::get().makeString(std::move(text)).as<CFStringRef>() : nullptr;
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
  return Objects::get().make({.type = "data", .text = textOf(bytes, length)}).as<CFDataRef>();
}

CFIndex CFDataGetLength(CFDataRef data) {
  const Object* const object = dataBehind(data, "CFDataGetLength");
  return object == nullptr ? 0 : static_cast<CFIndex>(object->text.size());
}

/// None for no bytes.
const UInt8* CFDataGetBytePtr(CFDataRef data) {
  const Object* const object = dataBehind(data, "CFDataGetBytePtr");
  if (object == nullptr || object->text.empty()) return nullptr;
  return reinterpret_cast<const UInt8*>(object->text.data());
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
  if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks || valueCallBacks != &kCFTypeDictionaryValueCallBacks)
    Objects::get().complain("CFDictionaryCreateMutable makes a dictionary that does not hold what is in it");
  if (capacity != 0) Objects::get().complain("CFDictionaryCreateMutable was given a limit");
  return Objects::get().make({.type = "dictionary"}).as<CFMutableDictionaryRef>();
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
  Object* const holder = Objects::get().alive(dictionary, "CFDictionarySetValue", "dictionary");
  Object* const name = Objects::get().alive(key, "CFDictionarySetValue", "string");
  Object* const held = Objects::get().alive(value, "CFDictionarySetValue");
  if (holder == nullptr || name == nullptr || held == nullptr) return;
  for (Object* const part : {name, held}) {
    Objects::get().retain(*part);
    holder->parts.push_back(part);
  }
}

} // extern "C"
