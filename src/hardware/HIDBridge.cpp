#include "hardware/HIDBridge.h"

#include <algorithm>
#include <numeric>

namespace ventolith::hardware {

double HIDBridge::RawReading::celsius() const {
  if (samples.empty()) return 0;
  return std::accumulate(samples.begin(), samples.end(), 0.0) / static_cast<double>(samples.size());
}

bool HIDBridge::RawReading::isConstant() const {
  if (samples.size() < 2) return true; // A single sample that is not a number does not equal itself.
  return std::all_of(samples.begin(), samples.end(),
                     [this](double sample) { return sample == samples.front(); });
}

runtime::Async<std::vector<HIDBridge::RawReading>>
sampleTemperatures(HIDBridge& bridge, runtime::Clock& clock, std::vector<HIDBridge::Service> services,
                   int rounds, runtime::Duration interval) {
  std::vector<HIDBridge::RawReading> readings;
  if (!bridge.isAvailable()) co_return readings;
  for (const HIDBridge::Service& service : services)
    readings.push_back({service.label, {}});
  for (int round = 0; round < std::max(rounds, 1); ++round) {
    if (round > 0) co_await clock.sleep(interval, runtime::StopToken());
    for (std::size_t place = 0; place < services.size(); ++place) {
      if (const auto sample = bridge.sampleTemperature(services[place]))
        readings[place].samples.push_back(*sample);
    }
  }
  co_return readings;
}

} // namespace ventolith::hardware
