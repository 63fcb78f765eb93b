#include "platform/linux/desktop/PowerSupplyFolder.h"

#include "platform/linux/AttributeFolder.h"
#include "platform/linux/FolderListing.h"

#include <string>

namespace ventolith::platform {

namespace {

/// What the supplies say together.
struct Account {
  bool hasMains = false;
  bool hasOnlineCharger = false;
  bool hasDischargingBattery = false;
  bool hasFedBattery = false; // One that takes power, or needs none.
};

bool isFed(const std::string& batteryStatus) {
  return batteryStatus == "Charging" || batteryStatus == "Full" || batteryStatus == "Not charging";
}

/// 1 for a fixed voltage, 2 for one that was negotiated.
bool isOnline(const AttributeFolder& supply) {
  return supply.readInteger("online").value_or(0) > 0;
}

void add(const AttributeFolder& supply, Account& account) {
  const auto type = supply.readLine("type");
  if (!type || supply.readLine("scope") == "Device") return;
  if (*type == "Mains") {
    account.hasMains = true;
    account.hasOnlineCharger |= isOnline(supply);
  } else if (type->starts_with("USB")) { // Older kernels name the kind of port: "USB_PD".
    account.hasOnlineCharger |= isOnline(supply);
  } else if (*type == "Battery") {
    const std::string status = supply.readLine("status").value_or("");
    account.hasDischargingBattery |= status == "Discharging";
    account.hasFedBattery |= isFed(status);
  }
}

} // namespace

app::PowerSource powerSourceIn(const std::filesystem::path& folder) {
  Account account;
  for (const std::string& name : FolderListing(folder).names()) {
    if (name.starts_with('.')) continue;
    if (const auto supply = AttributeFolder::open(folder / name)) add(*supply, account);
  }
  if (account.hasOnlineCharger) return app::PowerSource::ac;
  if (account.hasDischargingBattery) return app::PowerSource::battery;
  if (account.hasFedBattery && !account.hasMains) return app::PowerSource::ac;
  return app::PowerSource::unknown;
}

} // namespace ventolith::platform
