#include "app/PowerSource.h"

#include <array>
#include <utility>

namespace ventolith::app {

namespace {

constexpr std::array allPowerSources = {PowerSource::ac, PowerSource::battery, PowerSource::unknown};

} // namespace

std::string_view rawValue(PowerSource source) {
  switch (source) {
  case PowerSource::ac: return "ac";
  case PowerSource::battery: return "battery";
  case PowerSource::unknown: return "unknown";
  }
  return {};
}

std::optional<PowerSource> powerSource(std::string_view word) {
  for (const PowerSource source : allPowerSources) {
    if (rawValue(source) == word) return source;
  }
  return std::nullopt;
}

PowerSourceMonitor::PowerSourceMonitor(std::unique_ptr<PowerSourceProvider> provider, OnChange onChange)
    : provider_(std::move(provider)), onChange_(std::move(onChange)) {}

PowerSourceMonitor::~PowerSourceMonitor() {
  stop();
}

void PowerSourceMonitor::start() {
  provider_->start([this] { onChange_(current()); });
  onChange_(current());
}

void PowerSourceMonitor::stop() {
  provider_->stop();
}

} // namespace ventolith::app
