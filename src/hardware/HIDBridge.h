// The seam of the HID event system's temperature services.
#pragma once

#include "runtime/Clock.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::hardware {

class HIDBridge {
public:
  /// One temperature service: its label, and the handle by which the bridge knows it.
  struct Service {
    std::string label;
    std::shared_ptr<void> service;
  };

  /// What discovery found. `client` stays alive for as long as the services are used.
  struct Discovery {
    std::shared_ptr<void> client;
    std::vector<Service> services;
  };

  struct RawReading {
    std::string label;
    std::vector<double> samples; // Degrees Celsius, in the order taken.

    /// The mean of the samples; 0 without samples.
    [[nodiscard]] double celsius() const;
    /// All samples are equal; also true of none and of one.
    [[nodiscard]] bool isConstant() const;
  };

  HIDBridge() = default;
  HIDBridge(const HIDBridge&) = delete;
  HIDBridge& operator=(const HIDBridge&) = delete;
  virtual ~HIDBridge() = default;

  /// Whether the platform's interface could be reached at all.
  [[nodiscard]] virtual bool isAvailable() const = 0;

  /// All temperature services with a non-empty label, in the system's order; none if the interface
  /// does not answer.
  [[nodiscard]] virtual std::optional<Discovery> discoverLabeledTemperatureServices() = 0;

  /// One sample of `service` in degrees Celsius; none if it does not answer now.
  [[nodiscard]] virtual std::optional<double> sampleTemperature(const Service& service) = 0;
};

inline constexpr runtime::Duration hidSampleInterval = std::chrono::microseconds(40000);

/// Samples every service `rounds` times, at least once, `interval` apart, and returns a reading per
/// service in the order of `services`; one that never answered has no samples. Empty when the bridge is
/// not available.
[[nodiscard]] runtime::Async<std::vector<HIDBridge::RawReading>>
sampleTemperatures(HIDBridge& bridge, runtime::Clock& clock, std::vector<HIDBridge::Service> services,
                   int rounds, runtime::Duration interval = hidSampleInterval);

} // namespace ventolith::hardware
