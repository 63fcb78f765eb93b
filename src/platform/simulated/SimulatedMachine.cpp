#include "platform/simulated/SimulatedMachine.h"

#include "core/JSON.h"
#include "platform/simulated/EmbeddedMachines.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace ventolith::simulated {

namespace {

class SimulatedUserClient final : public hardware::SMCUserClient {
public:
  explicit SimulatedUserClient(std::shared_ptr<SimulatedMac> mac) : mac_(std::move(mac)) {}

  hardware::SMCResult<hardware::IOConnect> open() override { return mac_->open(); }
  void close(hardware::IOConnect connection) override { mac_->close(connection); }
  hardware::KernReturn call(hardware::IOConnect connection, const hardware::SMCParamStruct& input,
                            hardware::SMCParamStruct& output) override {
    return mac_->call(connection, input, output);
  }

private:
  std::shared_ptr<SimulatedMac> mac_;
};

class SimulatedHIDBridge final : public hardware::HIDBridge {
public:
  explicit SimulatedHIDBridge(std::shared_ptr<SimulatedMac> mac) : mac_(std::move(mac)) {}

  [[nodiscard]] bool isAvailable() const override { return mac_->hasHub(); }

  std::optional<Discovery> discoverLabeledTemperatureServices() override {
    if (!isAvailable()) return std::nullopt;
    Discovery discovery{.client = mac_, .services = {}};
    for (std::string& label : mac_->hubLabels()) {
      discovery.services.push_back(
          {std::move(label), std::make_shared<std::size_t>(discovery.services.size())});
    }
    return discovery;
  }

  std::optional<double> sampleTemperature(const Service& service) override {
    if (!service.service) return std::nullopt;
    return mac_->sampleHub(*std::static_pointer_cast<std::size_t>(service.service));
  }

private:
  std::shared_ptr<SimulatedMac> mac_;
};

class Unrestricted final : public hardware::Privileges {
public:
  [[nodiscard]] bool mayControlFans() const override { return true; }
};

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(fmt::format("machine {}: the file cannot be opened", path));
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (file.bad()) throw std::runtime_error(fmt::format("machine {}: the file cannot be read", path));
  return text;
}

bool looksLikePath(std::string_view text) {
  return text.find('/') != std::string_view::npos || text.ends_with(".json");
}

std::string machineText(std::string_view nameOrPath) {
  if (looksLikePath(nameOrPath)) return readFile(std::string(nameOrPath));
  for (const EmbeddedMachine& machine : embeddedMachines()) {
    if (machine.name == nameOrPath) return std::string(machine.text);
  }
  throw std::runtime_error(fmt::format("no machine is named \"{}\"; there are {}", nameOrPath,
                                       fmt::join(builtInMachines(), ", ")));
}

} // namespace

std::vector<std::string> builtInMachines() {
  std::vector<std::string> names;
  for (const EmbeddedMachine& machine : embeddedMachines())
    names.emplace_back(machine.name);
  return names;
}

std::shared_ptr<SimulatedMac> makeSimulatedMac(std::string_view nameOrPath, runtime::Clock& clock,
                                               std::uint64_t seed) {
  const std::string text = machineText(nameOrPath);
  try {
    return std::make_shared<SimulatedMac>(decodeMachine(text), clock, seed);
  } catch (const core::DecodeError& error) {
    throw std::runtime_error(fmt::format("machine {}: {}", nameOrPath, error.what()));
  }
}

std::unique_ptr<hardware::SMCUserClient> smcClient(std::shared_ptr<SimulatedMac> mac) {
  return std::make_unique<SimulatedUserClient>(std::move(mac));
}

std::unique_ptr<hardware::HIDBridge> hidBridge(std::shared_ptr<SimulatedMac> mac) {
  return std::make_unique<SimulatedHIDBridge>(std::move(mac));
}

std::unique_ptr<hardware::Privileges> simulatedPrivileges() {
  return std::make_unique<Unrestricted>();
}

hardware::Machine simulatedMachine(std::shared_ptr<SimulatedMac> mac) {
  return {
      .name = "simulated " + mac->machine().name,
      .smc = smcClient(mac),
      .hid = hidBridge(mac),
      .privileges = simulatedPrivileges(),
  };
}

} // namespace ventolith::simulated
