#include "platform/linux/HwmonUserClient.h"

#include "hardware/FanKeys.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

namespace ventolith::platform {

namespace {

using hardware::KernReturn;
using hardware::SMCParamStruct;
namespace keys = hardware::fankeys;

constexpr auto notFound = static_cast<std::uint8_t>(SMCParamStruct::ResultCode::keyNotFound);
constexpr std::uint8_t notWritable = 0x86;
constexpr KernReturn ioReturnError = static_cast<KernReturn>(0xE00002BCU);

/// While fans are held, devices that come are looked for at one look in so many. It is the dear part of a
/// look, and can wait: whatever comes, held fans stay the ones that they were, and all that a new device can
/// change is the number that a fan goes by.
constexpr unsigned looksPerListing = 8;

constexpr int mostProcessorFailures = 2; // Snapshots in a row.
constexpr std::size_t mostFans = static_cast<std::size_t>(keys::nameableFans);

/// The root by the one name that it has whatever links led to it.
std::filesystem::path resolved(const std::filesystem::path& path) {
  std::error_code error;
  auto canonical = std::filesystem::canonical(path, error);
  return error ? path : canonical;
}

hardware::SMCBytes encodeUInt32(std::uint32_t value) {
  hardware::SMCBytes bytes = hardware::zeroSMCBytes;
  for (std::size_t place = 0; place < 4; ++place)
    bytes[place] = static_cast<std::uint8_t>(value >> (24 - 8 * place));
  return bytes;
}

std::optional<hardware::SMCBytes> encodeFloat(const auto& value) {
  if (!value) return std::nullopt;
  return hardware::encodeFloat(static_cast<double>(*value));
}

double decodeFloat(const hardware::SMCBytes& bytes) {
  const auto value = hardware::decodeSMCValue(bytes, 4, hardware::packKey("flt ")).numeric();
  return value.value_or(std::nan(""));
}

/// Who each fan is, by the number that it goes by.
std::vector<std::pair<DeviceIdentity, int>>
fansInOrder(const std::vector<std::shared_ptr<const HwmonDevice>>& devices) {
  std::vector<std::pair<DeviceIdentity, int>> fans;
  for (const auto& device : devices) {
    for (const int number : device->fans)
      fans.emplace_back(device->identity, number);
  }
  if (fans.size() > mostFans) fans.erase(fans.begin() + mostFans, fans.end());
  return fans;
}

bool isGone(std::error_code error) {
  return error == std::errc::no_such_file_or_directory || error == std::errc::no_such_device ||
         error == std::errc::no_such_device_or_address;
}

bool isForbidden(std::error_code error) {
  return error == std::errc::permission_denied || error == std::errc::operation_not_permitted ||
         error == std::errc::read_only_file_system;
}

} // namespace

HwmonUserClient::HwmonUserClient(std::filesystem::path root, std::optional<std::filesystem::path> stateFolder,
                                 std::function<runtime::Duration()> timeAsleep)
    : root_(resolved(root)), timeAsleep_(std::move(timeAsleep)), claims_(std::move(stateFolder)) {
  discover();
}

void HwmonUserClient::discover() {
  deviceNames_ = deviceNames();
  devices_ = discoverDevices(root_);
  fans_.clear();
  for (const auto& device : devices_) {
    for (const int number : device->fans) {
      if (fans_.size() == mostFans) break;
      fans_.emplace_back(device, number, makeFanControl(device, number, modules()), root_.string());
    }
  }
  temperatures_ = temperatureKeys(devices_);

  keys_.clear();
  order_.clear();
  const bool isOutOfReach = countOutOfReach() > 0;
  if (!devices_.empty() || isOutOfReach) {
    addKey(keys::keyCount, {Role::keyCount});
    addKey(keys::fanCount, {Role::fanCount});
    for (std::size_t place = 0; place < fans_.size(); ++place)
      addFanKeys(place);
    addKey(keys::forceTest, {Role::forceTest});
  }
  if (isOutOfReach) addKey(keys::fansOutOfReach, {Role::fansOutOfReach});
  for (std::size_t place = 0; place < temperatures_.size(); ++place) {
    addKey(temperatures_[place].key(), {Role::temperature, place});
  }
  for (const std::uint32_t key : modeKeys_)
    keys_.emplace(key, Key{Role::retiredMode});
  isLost_ = false;
  hasProcessorRead_ = std::ranges::any_of(
      temperatures_, [](const TemperatureKey& key) { return key.isProcessor() && key.celsius(); });
  hasProcessorFailed_ = false;
  processorFailures_ = 0;
}

void HwmonUserClient::discoverWhileIdle() {
  if (isAnyClaimed()) return;
  if (isLost_ || isAnyDeviceGone() || deviceNames() != deviceNames_) discover();
}

void HwmonUserClient::addKey(const std::string& name, Key key) {
  const std::uint32_t packed = hardware::packKey(name);
  if (keys_.emplace(packed, key).second) order_.push_back(packed);
}

void HwmonUserClient::addFanKeys(std::size_t place) {
  const auto fan = static_cast<core::FanID>(place);
  addKey(keys::measured(fan), {Role::fanMeasured, place});
  if (fans_[place].has("_min")) addKey(keys::minimum(fan), {Role::fanMinimum, place});
  if (fans_[place].has("_max")) addKey(keys::maximum(fan), {Role::fanMaximum, place});
  if (!fans_[place].isControllable()) return;
  addKey(keys::modeFirstChoice(fan), {Role::fanMode, place});
  modeKeys_.insert(hardware::packKey(keys::modeFirstChoice(fan)));
  addKey(keys::target(fan), {Role::fanTarget, place});
}

KernReturn HwmonUserClient::call(hardware::IOConnect connection, const SMCParamStruct& input,
                                 SMCParamStruct& output) {
  if (!connections_.contains(connection)) return ioReturnBadArgument;
  try {
    return answer(input, output);
  } catch (const std::exception&) {
    return ioReturnError;
  }
}

KernReturn HwmonUserClient::answer(const SMCParamStruct& input, SMCParamStruct& output) {
  const auto selector = static_cast<SMCParamStruct::Selector>(input.data8);
  if (selector == SMCParamStruct::Selector::getKeyByIndex) {
    nameKeyAt(input.data32, output);
    return hardware::kernSuccess;
  }

  if (selector == SMCParamStruct::Selector::writeKey || devices_.empty()) discoverWhileIdle();
  const auto found = keys_.find(input.key);
  if (found == keys_.end()) {
    output.result = notFound;
    return hardware::kernSuccess;
  }
  const Key key = found->second; // A copy: reading may find the devices anew.
  output.key = input.key;
  switch (selector) {
  case SMCParamStruct::Selector::getKeyInfo: output.keyInfo = infoOf(key.role); return hardware::kernSuccess;
  case SMCParamStruct::Selector::readKey:
    if (const Bytes bytes = read(key)) {
      output.bytes = *bytes;
    } else {
      output.result = notFound;
    }
    return hardware::kernSuccess;
  case SMCParamStruct::Selector::writeKey: return write(key, input.bytes, output);
  case SMCParamStruct::Selector::ypcEvent:
  case SMCParamStruct::Selector::getKeyByIndex: break;
  }
  return ioReturnBadArgument;
}

hardware::SMCKeyInfoData HwmonUserClient::infoOf(Role role) {
  switch (role) {
  case Role::keyCount: return {4, hardware::packKey("ui32"), 0};
  case Role::fanCount:
  case Role::fansOutOfReach:
  case Role::forceTest:
  case Role::retiredMode:
  case Role::fanMode: return {1, hardware::packKey("ui8 "), 0};
  case Role::fanMeasured:
  case Role::fanMinimum:
  case Role::fanMaximum:
  case Role::fanTarget:
  case Role::temperature: break;
  }
  return {4, hardware::packKey("flt "), 0};
}

void HwmonUserClient::nameKeyAt(std::uint32_t index, SMCParamStruct& output) const {
  if (index < order_.size()) {
    output.key = order_[index];
  } else {
    output.result = notFound;
  }
}

HwmonUserClient::Bytes HwmonUserClient::read(const Key& key) {
  switch (key.role) {
  case Role::keyCount: return encodeUInt32(static_cast<std::uint32_t>(order_.size()));
  case Role::fanCount: return hardware::encodeUInt8(readFanCount());
  case Role::fansOutOfReach: return hardware::encodeUInt8(countOutOfReach());
  case Role::forceTest: return hardware::encodeUInt8(forceTest_);
  case Role::fanMeasured: return encodeFloat(fans_[key.place].read("_input"));
  case Role::fanMinimum: return encodeFloat(fans_[key.place].read("_min"));
  case Role::fanMaximum: return encodeFloat(fans_[key.place].read("_max"));
  case Role::fanMode: return hardware::encodeUInt8(fans_[key.place].mode());
  case Role::fanTarget: return encodeFloat(fans_[key.place].target());
  case Role::retiredMode: return std::nullopt;
  case Role::temperature: break;
  }
  return readTemperature(temperatures_[key.place]);
}

HwmonUserClient::Bytes HwmonUserClient::readTemperature(const TemperatureKey& key) {
  if (isLost_) return std::nullopt;
  const auto celsius = key.celsius();
  if (!key.isProcessor()) return encodeFloat(celsius);
  if (celsius) {
    hasProcessorRead_ = true;
    return encodeFloat(celsius);
  }
  hasProcessorFailed_ = true;
  // A processor that does not read yet has its key all the same, so that who looks for the keys once finds
  // it: zero is how a sensor says that it is not there.
  return hasProcessorRead_ ? std::nullopt : encodeFloat(std::optional(0.0));
}

std::uint8_t HwmonUserClient::readFanCount() {
  if (isAnyClaimed()) {
    lookWhileClaimed();
  } else {
    discoverWhileIdle();
  }
  return static_cast<std::uint8_t>(fans_.size());
}

std::uint8_t HwmonUserClient::countOutOfReach() const {
  const auto recorded = claims_.ofRoot(root_.string());
  const auto count = std::ranges::count_if(recorded, [this](const FanIdentity& identity) {
    return std::ranges::none_of(fans_, [&](const HwmonFan& fan) { return fan.isControllableAs(identity); });
  });
  return static_cast<std::uint8_t>(std::min<std::ptrdiff_t>(count, 255));
}

void HwmonUserClient::lookWhileClaimed() {
  const bool isListingDue = ++looksWhileClaimed_ % looksPerListing == 0;
  if (isAnyClaimedGone()) isLost_ = true;
  // A processor that fell silent under held fans must not leave them to cooler sensors.
  processorFailures_ = std::exchange(hasProcessorFailed_, false) ? processorFailures_ + 1 : 0;
  if (hasProcessorRead_ && processorFailures_ >= mostProcessorFailures) isLost_ = true;
  if (!isLost_ && isListingDue) isLost_ = areFansRenumbered();
}

KernReturn HwmonUserClient::write(const Key& key, const hardware::SMCBytes& bytes, SMCParamStruct& output) {
  switch (key.role) {
  case Role::fanMode: return writeMode(fans_[key.place], bytes[0], output);
  case Role::fanTarget: return writeTarget(fans_[key.place], decodeFloat(bytes), output);
  case Role::forceTest: forceTest_ = bytes[0]; return hardware::kernSuccess;
  case Role::retiredMode:
    if (bytes[0] != keys::modeAutomatic) output.result = notFound;
    return hardware::kernSuccess;
  case Role::keyCount:
  case Role::fanCount:
  case Role::fansOutOfReach:
  case Role::fanMeasured:
  case Role::fanMinimum:
  case Role::fanMaximum:
  case Role::temperature: break;
  }
  output.result = notWritable;
  return hardware::kernSuccess;
}

KernReturn HwmonUserClient::writeMode(HwmonFan& fan, std::uint8_t mode, SMCParamStruct& output) {
  if (mode == keys::modeAutomatic) {
    const KernReturn returned = report(giveBack(fan), output);
    if (isLost_ && !isAnyClaimed()) discover(); // `fan` ends here.
    return returned;
  }
  if (mode != keys::modeManual) {
    output.result = notWritable;
    return hardware::kernSuccess;
  }
  if (isLost_ && !fan.isClaimed()) {
    output.result = notFound;
    return hardware::kernSuccess;
  }
  return report(fan.take(claims_), output);
}

KernReturn HwmonUserClient::writeTarget(HwmonFan& fan, double rpm, SMCParamStruct& output) {
  // A target for a fan that nobody took would, on some drivers, take it without a record.
  if (!fan.isClaimed() || !std::isfinite(rpm)) {
    output.result = notWritable;
    return hardware::kernSuccess;
  }
  return report(fan.setSpeed(rpm, timeAsleep_()), output);
}

std::error_code HwmonUserClient::giveBack(HwmonFan& fan) {
  if (fan.device().folder.isStillThere()) {
    const auto error = fan.giveBack(claims_);
    if (!isGone(error)) return error;
  }
  isLost_ = true;
  return giveBackWhereverItIs(fan);
}

std::error_code HwmonUserClient::giveBackWhereverItIs(HwmonFan& fan) {
  const auto present = discoverDevices(root_);
  const auto device =
      std::ranges::find_if(present, [&](const auto& one) { return one->identity == fan.device().identity; });
  if (device == present.end()) {
    fan.forget(claims_);
    return {};
  }
  const auto control = makeFanControl(*device, fan.number(), modules());
  if (!control) return std::make_error_code(std::errc::no_such_device);
  return fan.giveBackThrough(*control, claims_);
}

KernReturn HwmonUserClient::report(std::error_code error, SMCParamStruct& output) {
  if (!error) return hardware::kernSuccess;
  if (isForbidden(error)) return hardware::ioReturnNotPrivileged;
  if (isGone(error)) {
    isLost_ = true;
    output.result = notFound;
    return hardware::kernSuccess;
  }
  const auto code = static_cast<std::uint8_t>(error.value());
  output.result = code == 0 ? notWritable : code;
  return hardware::kernSuccess;
}

bool HwmonUserClient::isAnyClaimed() const {
  return std::ranges::any_of(fans_, &HwmonFan::isClaimed);
}

bool HwmonUserClient::isAnyClaimedOn(const HwmonDevice& device) const {
  return std::ranges::any_of(
      fans_, [&](const HwmonFan& fan) { return fan.isClaimed() && &fan.device() == &device; });
}

bool HwmonUserClient::isAnyClaimedGone() const {
  bool isGone = false;
  for (const auto& device : devices_) {
    if (!isAnyClaimedOn(*device)) {
      device->folder.lookAtFiles();
    } else if (!device->folder.isStillThere()) {
      isGone = true;
    }
  }
  return isGone;
}

bool HwmonUserClient::isAnyDeviceGone() const {
  return std::ranges::any_of(devices_, [](const auto& device) { return !device->folder.isStillThere(); });
}

std::vector<std::string> HwmonUserClient::deviceNames() {
  listing_ = FolderListing(root_);
  return listing_.names();
}

bool HwmonUserClient::areFansRenumbered() {
  if (listing_.names() == deviceNames_) return false;
  deviceNames_ = deviceNames(); // By the path, for the root itself may be another one by now.
  return fansInOrder(discoverDevices(root_)) != fansInOrder(devices_);
}

} // namespace ventolith::platform
