#include "Objects.h"

#include "platform/macos/AutoreleasePool.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>

namespace ventolith::fake {

void Objects::retain(Object& object) {
  if (!object.isConstant) ++object.references;
}

void Objects::release(Object& object) {
  if (object.isConstant || --object.references > 0) return;
  for (Object* const part : object.parts)
    release(*part);
}

Object* Objects::alive(CFTypeRef reference, const char* function, const char* type) {
  Object* const object = objectOf(reference);
  if (object == nullptr) {
    complain(std::string(function) + " was given null");
    return nullptr;
  }
  if (object->references <= 0) {
    complain(std::string(function) + " was given a dead " + object->type);
    return nullptr;
  }
  if (type != nullptr && object->type != type) {
    complain(std::string(function) + " was given a " + object->type);
    return nullptr;
  }
  return object;
}

void Objects::popPool(const void* pool) {
  if (pools_.empty() || &pools_.back() != pool) return complain("a pool went that is not the innermost");
  pools_.pop_back();
}

std::vector<std::string> Objects::held() const {
  std::vector<std::string> types;
  for (const Object& object : objects_)
    if (object.references > 0) types.push_back(object.type);
  return types;
}

namespace {

constexpr CFTypeID stringType = 7;
constexpr CFTypeID dataType = 20;
constexpr CFTypeID anyOtherType = 1;

std::vector<Object*> keysAndValues(const void** keys, const void** values, CFIndex count) {
  std::vector<Object*> parts;
  for (CFIndex place = 0; place < count; ++place) {
    parts.push_back(objectOf(keys[place]));
    parts.push_back(objectOf(values[place]));
  }
  return parts;
}

} // namespace

} // namespace ventolith::fake

using ventolith::fake::Object;
using ventolith::fake::objectOf;
using ventolith::fake::Objects;

extern "C" {

void* objc_autoreleasePoolPush() {
  return Objects::get().pushPool();
}

void objc_autoreleasePoolPop(void* pool) {
  Objects::get().popPool(pool);
}

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{.retains = true};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{.retains = true};
const CFRunLoopMode kCFRunLoopDefaultMode = FakeConstantString("kCFRunLoopDefaultMode");

CFTypeRef CFRetain(CFTypeRef reference) {
  if (Object* const object = Objects::get().alive(reference, "CFRetain")) Objects::get().retain(*object);
  return reference;
}

void CFRelease(CFTypeRef reference) {
  if (Object* const object = Objects::get().alive(reference, "CFRelease")) Objects::get().release(*object);
}

CFTypeID CFGetTypeID(CFTypeRef reference) {
  const Object* const object = Objects::get().alive(reference, "CFGetTypeID");
  if (object != nullptr && object->type == "string") return ventolith::fake::stringType;
  if (object != nullptr && object->type == "data") return ventolith::fake::dataType;
  return ventolith::fake::anyOtherType;
}

CFTypeID CFStringGetTypeID() {
  return ventolith::fake::stringType;
}

CFTypeID CFDataGetTypeID() {
  return ventolith::fake::dataType;
}

CFStringRef FakeConstantString(const char* text) {
  static std::map<std::string, std::unique_ptr<Object>, std::less<>> constants;
  auto& constant = constants[text];
  if (!constant)
    constant = std::make_unique<Object>(Object{.type = "string", .text = text, .isConstant = true});
  return constant->as<CFStringRef>();
}

// In units of UTF-16, of which a character of more than three bytes takes two.
CFIndex CFStringGetLength(CFStringRef string) {
  const Object* const object = Objects::get().alive(string, "CFStringGetLength", "string");
  if (object == nullptr) return 0;
  return std::count_if(object->text.begin(), object->text.end(),
                       [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; });
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
  return encoding == kCFStringEncodingUTF8 ? 3 * length : length;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding) {
  const Object* const object = Objects::get().alive(string, "CFStringGetCString", "string");
  if (object == nullptr || !object->hasUTF8 || encoding != kCFStringEncodingUTF8) return 0;
  const std::size_t needed = object->text.size() + 1;
  if (size < static_cast<CFIndex>(needed)) return 0;
  std::memcpy(buffer, object->text.c_str(), needed);
  return 1;
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
  if (type != kCFNumberSInt32Type) Objects::get().complain("CFNumberCreate was given another type");
  Object& number = Objects::get().make({.type = "number"});
  std::memcpy(&number.number, value, sizeof number.number);
  return number.as<CFNumberRef>();
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex count,
                                   const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
  // Without their callbacks it would hold addresses of objects that may be gone.
  if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks || valueCallBacks != &kCFTypeDictionaryValueCallBacks)
    Objects::get().complain("CFDictionaryCreate makes a dictionary that does not hold what is in it");
  Object dictionary{.type = "dictionary", .parts = ventolith::fake::keysAndValues(keys, values, count)};
  for (Object* const part : dictionary.parts)
    Objects::get().retain(*part);
  return Objects::get().make(std::move(dictionary)).as<CFDictionaryRef>();
}

CFIndex CFArrayGetCount(CFArrayRef array) {
  const Object* const object = Objects::get().alive(array, "CFArrayGetCount", "array");
  return object == nullptr ? 0 : static_cast<CFIndex>(object->parts.size());
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
  Object* const object = Objects::get().alive(array, "CFArrayGetValueAtIndex", "array");
  return object == nullptr ? nullptr : object->parts.at(static_cast<std::size_t>(index));
}

} // extern "C"
