#include "platform/macos/HIDInterface.h"

#include <dlfcn.h>

#include <array>

namespace ventolith::platform {

namespace {

constexpr const char* ioKit = "/System/Library/Frameworks/IOKit.framework/IOKit";

/// Converts itself to whatever function is expected of the name.
class Symbol {
public:
  Symbol(const DynamicLoader& loader, void* library, const char* name)
      : address_(library == nullptr ? nullptr : loader.find(library, name)) {}

  template <class Function>
  operator Function*() const {
    return reinterpret_cast<Function*>(address_);
  }

private:
  void* address_;
};

CFOwned<CFNumberRef> number(std::int32_t value) {
  return CFOwned<CFNumberRef>(::CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value));
}

CFOwned<CFDictionaryRef> matchTemperatures() {
  constexpr std::int32_t vendorPage = 0xFF00;
  constexpr std::int32_t temperatureSensor = 5;
  const auto page = number(vendorPage);
  const auto usage = number(temperatureSensor);
  std::array<const void*, 2> keys = {CFSTR("PrimaryUsagePage"), CFSTR("PrimaryUsage")};
  std::array<const void*, 2> values = {page.get(), usage.get()};
  return CFOwned<CFDictionaryRef>(::CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(),
                                                       keys.size(), &kCFTypeDictionaryKeyCallBacks,
                                                       &kCFTypeDictionaryValueCallBacks));
}

} // namespace

HIDInterface::HIDInterface(const DynamicLoader& loader)
    : HIDInterface(loader, loader.open(ioKit, RTLD_NOW)) {}

HIDInterface::HIDInterface(const DynamicLoader& loader, void* library)
    : clientCreate(Symbol(loader, library, "IOHIDEventSystemClientCreate")),
      setMatching(Symbol(loader, library, "IOHIDEventSystemClientSetMatching")),
      copyServices(Symbol(loader, library, "IOHIDEventSystemClientCopyServices")),
      copyProperty(Symbol(loader, library, "IOHIDServiceClientCopyProperty")),
      copyEvent(Symbol(loader, library, "IOHIDServiceClientCopyEvent")),
      getFloatValue(Symbol(loader, library, "IOHIDEventGetFloatValue")),
      temperatureMatching(isComplete() ? matchTemperatures() : nullptr) {}

const HIDInterface& HIDInterface::ofThisProcess() {
  static const HIDInterface interface({.open = ::dlopen, .find = ::dlsym});
  return interface;
}

bool HIDInterface::isComplete() const {
  return clientCreate != nullptr && setMatching != nullptr && copyServices != nullptr &&
         copyProperty != nullptr && copyEvent != nullptr && getFloatValue != nullptr;
}

} // namespace ventolith::platform
