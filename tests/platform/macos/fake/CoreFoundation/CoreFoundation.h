// As much of Core Foundation as the sources under test use, with its names, types and rules of ownership.
#pragma once

#include <cstdint>

using CFTypeRef = const void*;
using CFAllocatorRef = const struct FakeCFAllocator*;
using CFStringRef = const struct FakeCFString*;
using CFNumberRef = const struct FakeCFNumber*;
using CFArrayRef = const struct FakeCFArray*;
using CFDictionaryRef = const struct FakeCFDictionary*;
using CFMutableDictionaryRef = struct FakeCFDictionary*;
using CFRunLoopRef = struct FakeCFRunLoop*;
using CFRunLoopSourceRef = struct FakeCFRunLoopSource*;
using CFRunLoopMode = CFStringRef;

using Boolean = unsigned char;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFNumberType = CFIndex;
using CFStringEncoding = std::uint32_t;

struct CFDictionaryKeyCallBacks {
  bool retains;
};
struct CFDictionaryValueCallBacks {
  bool retains;
};

inline constexpr CFNumberType kCFNumberSInt32Type = 3;
inline constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;

extern "C" {

extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
extern const CFRunLoopMode kCFRunLoopDefaultMode;

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

CFStringRef FakeConstantString(const char* text);
CFTypeID CFStringGetTypeID();
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding);

CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks);

CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

CFRunLoopRef CFRunLoopGetMain();
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
}

#define CFSTR(text) FakeConstantString(text)
