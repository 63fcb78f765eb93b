// What stood in the fans' files before they were taken, on record outside the process: whoever starts
// after a process that was killed can still give every fan back to exactly that.
#pragma once

#include "platform/linux/FanControl.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::platform {

/// The folder for records: what VENTOLITH_STATE_DIR says, else /run/ventolith, else `ventolith` in the
/// user's run-time folder; none if this process can make and write none of them. Makes nothing itself.
[[nodiscard]] std::optional<std::filesystem::path> stateFolder();

/// One fan of one device of one hwmon root.
struct FanIdentity {
  std::string root; // Links resolved.
  DeviceIdentity device;
  int fan = 0;

  bool operator==(const FanIdentity&) const = default;
};

struct ClaimRecord {
  FanIdentity fan;
  std::string kind; // FanControl::kind(); a driver of another kind cannot use the rest.
  FormerControl former;

  bool operator==(const ClaimRecord&) const = default;
};

/// The file `claims` of a folder. Every change is on disk when the operation returns, or a line on
/// standard error says that it is not; the file is replaced whole and goes away with the last record.
/// A file that cannot be understood counts as none.
class ClaimsRecord {
public:
  /// Without a folder nothing outlives the process.
  explicit ClaimsRecord(std::optional<std::filesystem::path> folder);

  [[nodiscard]] std::optional<FormerControl> find(const FanIdentity& fan, const std::string& kind) const;

  /// Those that are on record of any fan of the hwmon root, links resolved.
  [[nodiscard]] std::vector<FanIdentity> ofRoot(const std::string& root) const;

  /// Replaces the record of the fan, if there is one.
  void put(ClaimRecord record);

  /// Writes the records anew if their file, which has this one, is gone.
  void keep(ClaimRecord record);

  void remove(const FanIdentity& fan);

private:
  void load();
  void save();

  std::optional<std::filesystem::path> folder_;
  std::vector<ClaimRecord> records_;
  bool hasFailed_ = false; // The last attempt to write them, which was said.
};

} // namespace ventolith::platform
