// As much of Core Foundation as the sources under test use, with its names, types and rules of ownership.
#pragma once

#include <cstdint>

using CFTypeRef = const void*;
using CFPropertyListRef = CFTypeRef;
using CFAllocatorRef = const struct FakeCFAllocator*;
using CFStringRef = const struct FakeCFString*;
using CFDataRef = const struct FakeCFData*;
using CFBooleanRef = const struct FakeCFBoolean*;
using CFNumberRef = const struct FakeCFNumber*;
using CFArrayRef = const struct FakeCFArray*;
using CFDictionaryRef = const struct FakeCFDictionary*;
using CFMutableDictionaryRef = struct FakeCFDictionary*;
using CFRunLoopRef = struct FakeCFRunLoop*;
using CFRunLoopSourceRef = struct FakeCFRunLoopSource*;
using CFRunLoopMode = CFStringRef;

using Boolean = unsigned char;
using UInt8 = unsigned char;
using OSStatus = std::int32_t;
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
extern const CFStringRef kCFPreferencesCurrentApplication;
extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

CFStringRef FakeConstantString(const char* text);
CFTypeID CFStringGetTypeID();
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding);

CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternal);

CFTypeID CFDataGetTypeID();
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CFIndex CFDataGetLength(CFDataRef data);
const UInt8* CFDataGetBytePtr(CFDataRef data);

CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks);

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks);
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);

CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

Boolean CFPreferencesGetAppBooleanValue(CFStringRef key, CFStringRef application, Boolean* isValid);
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef application);
Boolean CFPreferencesAppSynchronize(CFStringRef application);

CFRunLoopRef CFRunLoopGetMain();
void CFRunLoopRun();
void CFRunLoopStop(CFRunLoopRef loop);
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
}

#define CFSTR(text) FakeConstantString(text)
