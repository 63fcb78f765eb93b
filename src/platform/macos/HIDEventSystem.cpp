#include "platform/macos/HIDEventSystem.h"

#include "platform/macos/AutoreleasePool.h"
#include "platform/macos/CFText.h"

#include <utility>

namespace ventolith::platform {

namespace {

constexpr std::int64_t temperatureEvent = 15;
constexpr std::uint32_t temperatureLevel = static_cast<std::uint32_t>(temperatureEvent) << 16U;

/// A handle of the seam; takes `object` over.
std::shared_ptr<void> handle(CFOwned<CFTypeRef> object) {
  return {const_cast<void*>(object.release()), CFReleaser()};
}

} // namespace

std::optional<hardware::HIDBridge::Discovery> HIDEventSystem::discoverLabeledTemperatureServices() {
  if (!isAvailable()) return std::nullopt;
  const AutoreleasePool pool;
  CFOwned<CFTypeRef> client(interface_.clientCreate(kCFAllocatorDefault));
  if (!client) return std::nullopt;
  interface_.setMatching(client.get(), interface_.temperatureMatching.get());
  const CFOwned<CFArrayRef> services(interface_.copyServices(client.get()));
  if (!services) return std::nullopt;

  Discovery discovery{.client = handle(std::move(client)), .services = {}};
  const CFIndex count = ::CFArrayGetCount(services.get());
  for (CFIndex place = 0; place < count; ++place) {
    const CFTypeRef service = ::CFArrayGetValueAtIndex(services.get(), place); // The array's.
    std::string label = labelOf(service);
    if (label.empty()) continue;
    discovery.services.push_back({std::move(label), handle(CFOwned<CFTypeRef>(::CFRetain(service)))});
  }
  return discovery;
}

std::optional<double> HIDEventSystem::sampleTemperature(const Service& service) {
  if (!isAvailable() || !service.service) return std::nullopt;
  const AutoreleasePool pool;
  const CFOwned<CFTypeRef> event(interface_.copyEvent(service.service.get(), temperatureEvent, 0, 0));
  if (!event) return std::nullopt;
  return interface_.getFloatValue(event.get(), temperatureLevel);
}

/// Empty if it has none.
std::string HIDEventSystem::labelOf(CFTypeRef service) const {
  const CFOwned<CFTypeRef> product(interface_.copyProperty(service, CFSTR("Product")));
  return textOf(product.get());
}

} // namespace ventolith::platform
