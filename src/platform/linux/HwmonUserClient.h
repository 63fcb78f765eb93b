// The kernel's hwmon devices, shown as the SMC of a Mac: fans and temperatures under the keys that the
// layers above know, driven through whatever files their drivers offer.
#pragma once

#include "hardware/SMCUserClient.h"
#include "platform/linux/AbsentMachine.h"
#include "platform/linux/FolderListing.h"
#include "platform/linux/HwmonFan.h"
#include "platform/linux/HwmonTemperatures.h"

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace ventolith::platform {

/// Belongs to one owner, and is called on its executor alone. Nothing it is asked throws.
///
/// The keys are fixed when the devices are looked for: at construction, and again when devices have come,
/// gone or moved and no fan is held, which is looked at with each read of the number of fans and before each
/// write. If a held fan's device goes, which every read of the number of fans notices, or if fans would no
/// longer go by the same numbers, which every eighth notices, the machine is *lost*: no temperature answers
/// any more, so that whoever holds fans gives all of them back; the last one that is given back starts the
/// machine anew.
///
/// Without a device, and without a claim on record, it has no key at all; each call looks for devices then.
///
/// Files stay open from one read to the next. That one was removed or replaced is noticed with the number of
/// fans too, so whoever wants what is there now reads that number first.
class HwmonUserClient final : public hardware::SMCUserClient {
public:
  /// `stateFolder` is where claims are put on record, if anywhere; `timeAsleep` is how long the machine has
  /// slept so far.
  HwmonUserClient(std::filesystem::path root, std::optional<std::filesystem::path> stateFolder,
                  std::function<runtime::Duration()> timeAsleep);

  [[nodiscard]] hardware::SMCResult<hardware::IOConnect> open() override { return connections_.add(); }
  void close(hardware::IOConnect connection) override { connections_.remove(connection); }

  /// Refusals by the system come back as "not privileged" where they are about permissions, and else as
  /// the error's number in the result byte; a device that is gone is a key that is not found.
  [[nodiscard]] hardware::KernReturn call(hardware::IOConnect connection,
                                          const hardware::SMCParamStruct& input,
                                          hardware::SMCParamStruct& output) override;

private:
  enum class Role {
    keyCount,
    fanCount,
    fansOutOfReach,
    forceTest,
    fanMeasured,
    fanMinimum,
    fanMaximum,
    fanMode,
    fanTarget,
    temperature,
    retiredMode, // Of a fan that is no more: there is nothing left to give back.
  };

  struct Key {
    Role role;
    std::size_t place = 0; // Of the fan or the temperature.
  };

  /// A value of a key, in the bytes of its type.
  using Bytes = std::optional<hardware::SMCBytes>;

  void discover();
  /// discover() if anything has changed and no fan is held.
  void discoverWhileIdle();
  void addKey(const std::string& name, Key key);
  void addFanKeys(std::size_t place);

  [[nodiscard]] hardware::KernReturn answer(const hardware::SMCParamStruct& input,
                                            hardware::SMCParamStruct& output);
  [[nodiscard]] static hardware::SMCKeyInfoData infoOf(Role role);
  void nameKeyAt(std::uint32_t index, hardware::SMCParamStruct& output) const;
  [[nodiscard]] Bytes read(const Key& key);
  [[nodiscard]] hardware::KernReturn write(const Key& key, const hardware::SMCBytes& bytes,
                                           hardware::SMCParamStruct& output);

  [[nodiscard]] Bytes readTemperature(const TemperatureKey& key);
  [[nodiscard]] std::uint8_t readFanCount();
  /// How many claims are on record that no fan of the machine answers to.
  [[nodiscard]] std::uint8_t countOutOfReach() const;
  /// Notes that the machine is lost, if it is.
  void lookWhileClaimed();
  [[nodiscard]] hardware::KernReturn writeMode(HwmonFan& fan, std::uint8_t mode,
                                               hardware::SMCParamStruct& output);
  [[nodiscard]] hardware::KernReturn writeTarget(HwmonFan& fan, double rpm, hardware::SMCParamStruct& output);
  [[nodiscard]] std::error_code giveBack(HwmonFan& fan);
  [[nodiscard]] std::error_code giveBackWhereverItIs(HwmonFan& fan);

  /// Notes that a device is gone, if that is what `error` says.
  [[nodiscard]] hardware::KernReturn report(std::error_code error, hardware::SMCParamStruct& output);

  [[nodiscard]] bool isAnyClaimed() const;
  [[nodiscard]] bool isAnyClaimedOn(const HwmonDevice& device) const;
  /// Whether a device with a claimed fan is gone. Looks at the files of all the others too.
  [[nodiscard]] bool isAnyClaimedGone() const;
  /// Looks at the files of all devices too, unless one is gone.
  [[nodiscard]] bool isAnyDeviceGone() const;
  /// What stands at the root's path.
  [[nodiscard]] std::vector<std::string> deviceNames();
  /// Whether devices that have come or gone leave the fans with other numbers than they have here.
  [[nodiscard]] bool areFansRenumbered();
  [[nodiscard]] std::filesystem::path modules() const { return root_ / ".." / ".." / "module"; }

  std::filesystem::path root_; // Links resolved, if it is there.
  std::function<runtime::Duration()> timeAsleep_;
  ClaimsRecord claims_;
  OpenConnections connections_;

  FolderListing listing_;                // Of the root.
  std::vector<std::string> deviceNames_; // What the root held when it was last looked at.
  std::vector<std::shared_ptr<const HwmonDevice>> devices_;
  std::vector<HwmonFan> fans_; // By fan id.
  std::vector<TemperatureKey> temperatures_;
  std::unordered_map<std::uint32_t, Key> keys_; // By packed name.
  std::vector<std::uint32_t> order_;            // Of the keys, by index.
  std::set<std::uint32_t> modeKeys_;            // All that there ever were.

  std::uint8_t forceTest_ = 0;
  unsigned looksWhileClaimed_ = 0;
  bool isLost_ = false;
  // Of the processor's temperature: whether it ever read, whether it failed since the fans were last
  // counted, and how many counts in a row it has failed for.
  bool hasProcessorRead_ = false;
  bool hasProcessorFailed_ = false;
  int processorFailures_ = 0;
};

} // namespace ventolith::platform
