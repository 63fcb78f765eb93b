#include "hardware/HIDSensorReader.h"

#include "hardware/HIDSensorCatalog.h"

namespace ventolith::hardware {

namespace {

constexpr int sampleRounds = 3;

} // namespace

runtime::Async<std::vector<core::TempSensor>> HIDSensorReader::readTemperatures() {
  return serial_.run(read());
}

runtime::Async<std::vector<core::TempSensor>> HIDSensorReader::read() {
  if (!cachedDiscovery_) {
    auto discovery = bridge_.discoverLabeledTemperatureServices();
    if (!discovery || discovery->services.empty()) co_return std::vector<core::TempSensor>();
    cachedDiscovery_ = std::move(discovery);
  }
  const auto readings =
      co_await sampleTemperatures(bridge_, clock_, cachedDiscovery_->services, sampleRounds);
  co_return HIDSensorCatalog::curate(readings);
}

} // namespace ventolith::hardware
