// The private interface of the HID event system, which no header of the system declares. It is looked up by
// name, so that a system without it, or without a part of it, is an ordinary one.
#pragma once

#include "platform/macos/CFOwned.h"

#include <cstdint>

namespace ventolith::platform {

/// How a library is opened and searched: `dlopen` and `dlsym`.
struct DynamicLoader {
  void* (*open)(const char* path, int mode);
  void* (*find)(void* library, const char* name);
};

/// Six functions of IOKit; one that the system does not have is null.
class HIDInterface {
public:
  /// Opens IOKit and looks each of the six up once. The library stays open.
  explicit HIDInterface(const DynamicLoader& loader);

  /// The interface of this process, looked up by the first to ask for it, on whatever thread.
  [[nodiscard]] static const HIDInterface& ofThisProcess();

  /// All six are there.
  [[nodiscard]] bool isComplete() const;

  // Clients, services and events are objects of Core Foundation, whose types have no names here. What is
  // created or copied belongs to the caller; null is no answer.
  CFTypeRef (*const clientCreate)(CFAllocatorRef allocator);
  void (*const setMatching)(CFTypeRef client, CFDictionaryRef matching);
  CFArrayRef (*const copyServices)(CFTypeRef client);
  CFTypeRef (*const copyProperty)(CFTypeRef service, CFStringRef key);
  CFTypeRef (*const copyEvent)(CFTypeRef service, std::int64_t type, std::int32_t options,
                               std::int64_t timeStamp);
  double (*const getFloatValue)(CFTypeRef event, std::uint32_t field);

  /// What makes a client see temperature sensors and nothing else; none if one of the six is not there.
  const CFOwned<CFDictionaryRef> temperatureMatching;

private:
  HIDInterface(const DynamicLoader& loader, void* library);
};

} // namespace ventolith::platform
