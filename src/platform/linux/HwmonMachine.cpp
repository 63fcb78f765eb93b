#include "platform/linux/HwmonMachine.h"

#include "platform/linux/ElapsedTime.h"
#include "platform/linux/HwmonUserClient.h"
#include "platform/linux/ThisComputer.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace ventolith::platform {

namespace {

std::filesystem::path hwmonRoot() {
  const char* root = std::getenv("VENTOLITH_HWMON_ROOT");
  return root && *root ? root : "/sys/class/hwmon";
}

/// Every control file of every fan of `device` may be written; none if it has no fan to control.
std::optional<bool> mayWriteAll(const std::shared_ptr<const HwmonDevice>& device,
                                const std::filesystem::path& modules) {
  std::optional<bool> may;
  for (const int fan : device->fans) {
    const auto control = makeFanControl(device, fan, modules);
    if (!control) continue;
    const auto isWritable = [&](const std::string& file) { return device->folder.mayWrite(file); };
    may = may.value_or(true) && std::ranges::all_of(control->files(), isWritable);
  }
  return may;
}

} // namespace

bool HwmonPrivileges::mayControlFans() const {
  if (::geteuid() == 0) return true;
  std::optional<bool> may;
  for (const auto& device : discoverDevices(root_)) {
    const auto here = mayWriteAll(device, root_ / ".." / ".." / "module");
    if (here) may = may.value_or(true) && *here;
  }
  return may.value_or(false);
}

hardware::Machine hwmonMachine(const std::filesystem::path& root) {
  return {"hwmon at " + root.string(), std::make_unique<HwmonUserClient>(root, stateFolder(), timeAsleep),
          std::make_unique<AbsentHIDBridge>(), std::make_unique<HwmonPrivileges>(root)};
}

hardware::Machine thisComputer() {
  const std::filesystem::path root = hwmonRoot();
  hardware::Machine machine = hwmonMachine(root);
  if (discoverDevices(root).empty()) machine.name = absentMachine().name; // It sees devices that come later.
  return machine;
}

} // namespace ventolith::platform
