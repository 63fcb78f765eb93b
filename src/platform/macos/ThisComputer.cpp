#include "platform/macos/ThisComputer.h"

#include "platform/macos/AppleSMC.h"
#include "platform/macos/HIDEventSystem.h"

#include <sys/sysctl.h>
#include <unistd.h>

#include <array>

namespace ventolith::platform {

namespace {

class RootPrivileges final : public hardware::Privileges {
public:
  [[nodiscard]] bool mayControlFans() const override { return ::geteuid() == 0; }
};

std::string nameOfThisMac() {
  std::array<char, 64> model{};
  std::size_t size = model.size() - 1;
  if (::sysctlbyname("hw.model", model.data(), &size, nullptr, 0) != 0) return "this Mac";
  return "this Mac (" + std::string(model.data()) + ")";
}

} // namespace

hardware::Machine thisComputer() {
  return {nameOfThisMac(), std::make_unique<AppleSMC>(), std::make_unique<HIDEventSystem>(),
          std::make_unique<RootPrivileges>()};
}

} // namespace ventolith::platform
