// The machines of a Linux computer.
#pragma once

#include "hardware/Machine.h"

#include <filesystem>

namespace ventolith::platform {

/// May control fans as root, and as anybody who may write every control file of every fan that has any.
class HwmonPrivileges final : public hardware::Privileges {
public:
  explicit HwmonPrivileges(std::filesystem::path root) : root_(std::move(root)) {}

  /// Looks at the devices as they are now.
  [[nodiscard]] bool mayControlFans() const override;

private:
  std::filesystem::path root_;
};

/// The machine behind the hwmon devices in `root`, with its claims on record where stateFolder() says.
[[nodiscard]] hardware::Machine hwmonMachine(const std::filesystem::path& root);

} // namespace ventolith::platform
