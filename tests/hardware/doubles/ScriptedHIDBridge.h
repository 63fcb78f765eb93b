// A sensor hub: labels, and the samples that each gives one after the other.
#pragma once

#include "hardware/HIDBridge.h"
#include "hardware/doubles/KeyTableSMC.h"

#include <map>

namespace ventolith::doubles {

/// Logs "discover", and "sample <label>" for each sample.
struct ScriptedHIDBridge final : hardware::HIDBridge {
  using Samples = std::vector<std::optional<double>>; // In order; the last one stays.

  explicit ScriptedHIDBridge(Log& shared) : log(shared) {}

  Log& log;
  bool isResolved = true;
  bool answersDiscovery = true;
  std::vector<std::string> labels;
  std::map<std::string, Samples> samples;
  std::weak_ptr<void> lastClient;

  [[nodiscard]] bool isAvailable() const override { return isResolved; }

  std::optional<Discovery> discoverLabeledTemperatureServices() override {
    if (!isResolved) return std::nullopt;
    log.push_back("discover");
    if (!answersDiscovery) return std::nullopt;
    Discovery discovery;
    discovery.client = std::make_shared<int>();
    lastClient = discovery.client;
    for (const std::string& label : labels)
      discovery.services.push_back({label, std::make_shared<int>()});
    return discovery;
  }

  std::optional<double> sampleTemperature(const Service& service) override {
    log.push_back("sample " + service.label);
    const auto script = samples.find(service.label);
    if (script == samples.end()) return std::nullopt;
    const auto sample = script->second.front();
    if (script->second.size() > 1) script->second.erase(script->second.begin());
    return sample;
  }

  /// Adds a service; moving samples keep it from being taken for frozen.
  void add(const std::string& label, Samples given) {
    labels.push_back(label);
    samples[label] = std::move(given);
  }
};

} // namespace ventolith::doubles
