// The temperature sensors of an Apple-silicon Mac, as its HID event system shows them.
#pragma once

#include "hardware/HIDBridge.h"
#include "platform/macos/HIDInterface.h"

namespace ventolith::platform {

/// Clients and services are handed out as retained objects, which are released with their last handle.
class HIDEventSystem final : public hardware::HIDBridge {
public:
  HIDEventSystem() : HIDEventSystem(HIDInterface::ofThisProcess()) {}
  /// With `interface`, which outlives it.
  explicit HIDEventSystem(const HIDInterface& interface) : interface_(interface) {}

  [[nodiscard]] bool isAvailable() const override { return interface_.isComplete(); }
  [[nodiscard]] std::optional<Discovery> discoverLabeledTemperatureServices() override;
  [[nodiscard]] std::optional<double> sampleTemperature(const Service& service) override;

private:
  [[nodiscard]] std::string labelOf(CFTypeRef service) const;

  const HIDInterface& interface_;
};

} // namespace ventolith::platform
