// The machine of a computer without fans or sensors that a program could reach: everything opens,
// nothing answers.
#pragma once

#include "hardware/Machine.h"

#include <set>

namespace ventolith::platform {

/// Hands out connections and knows which of them are open.
class OpenConnections {
public:
  [[nodiscard]] hardware::IOConnect add();
  void remove(hardware::IOConnect connection) { open_.erase(connection); }
  [[nodiscard]] bool contains(hardware::IOConnect connection) const { return open_.contains(connection); }

private:
  hardware::IOConnect last_ = 0;
  std::set<hardware::IOConnect> open_;
};

/// What a driver returns for a connection that is not open, or for a block that it cannot read.
inline constexpr hardware::KernReturn ioReturnBadArgument = static_cast<hardware::KernReturn>(0xE00002C2U);

/// An SMC without a single key.
class AbsentUserClient final : public hardware::SMCUserClient {
public:
  [[nodiscard]] hardware::SMCResult<hardware::IOConnect> open() override { return connections_.add(); }
  void close(hardware::IOConnect connection) override { connections_.remove(connection); }
  [[nodiscard]] hardware::KernReturn call(hardware::IOConnect connection,
                                          const hardware::SMCParamStruct& input,
                                          hardware::SMCParamStruct& output) override;

private:
  OpenConnections connections_;
};

/// A system without the HID event system's temperature services.
class AbsentHIDBridge final : public hardware::HIDBridge {
public:
  [[nodiscard]] bool isAvailable() const override { return false; }
  [[nodiscard]] std::optional<Discovery> discoverLabeledTemperatureServices() override {
    return std::nullopt;
  }
  [[nodiscard]] std::optional<double> sampleTemperature(const Service&) override { return std::nullopt; }
};

/// May control fans as root, and only as root.
class GeteuidPrivileges final : public hardware::Privileges {
public:
  [[nodiscard]] bool mayControlFans() const override;
};

[[nodiscard]] hardware::Machine absentMachine();

} // namespace ventolith::platform
