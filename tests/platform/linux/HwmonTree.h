// A hwmon tree of plain files in a folder of its own, and the machine that a program sees behind it.
#pragma once

#include "platform/linux/HwmonUserClient.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::platform {

class HwmonTree {
public:
  HwmonTree();
  /// A copy of data/hwmon/`name`, with its links and file modes.
  explicit HwmonTree(const std::string& name);
  HwmonTree(const HwmonTree&) = delete;
  HwmonTree& operator=(const HwmonTree&) = delete;
  ~HwmonTree();

  [[nodiscard]] std::filesystem::path root() const { return folder_ / "sys/class/hwmon"; }
  [[nodiscard]] std::filesystem::path sys() const { return folder_ / "sys"; }
  [[nodiscard]] std::filesystem::path stateFolder() const { return folder_ / "state"; }

  /// Paths are relative to the root, as in "hwmon0/fan1_input".
  void set(const std::string& path, const std::string& text, unsigned mode = 0644) const;
  void remove(const std::string& path) const;
  /// Without the line end; "(none)" for a file that is not there.
  [[nodiscard]] std::string text(const std::string& path) const;

  // Devices of each kind, with fan 1 in automatic and `hwmon` as their folder.
  void addIntelMac(const std::string& hwmon) const;     // 1000 to 6000 RPM, at 2000.
  void addAppleSilicon(const std::string& hwmon) const; // 1200 to 5000 RPM, at 2000.
  void addGraphicsCard(const std::string& hwmon) const; // 400 to 3300 RPM, at 530.
  void addMainBoard(const std::string& hwmon) const;    // up to 2000 RPM, pwm1_enable 5.
  void addProcessor(const std::string& hwmon) const;    // 50 degrees.

private:
  std::filesystem::path folder_;
};

/// What the driver returned, and the SMC's result byte.
struct Answer {
  hardware::KernReturn returned = 0;
  int result = 0;

  bool operator==(const Answer&) const = default;
};
inline constexpr Answer applied{};
inline constexpr Answer gone{0, 132};
inline constexpr Answer notWritable{0, 0x86};
inline constexpr Answer notPrivileged{hardware::ioReturnNotPrivileged, 0};

std::ostream& operator<<(std::ostream& stream, const Answer& answer);

/// Talks to a user client by key names.
class Keys {
public:
  explicit Keys(hardware::SMCUserClient& client) : client_(client), connection_(client.open().value()) {}

  [[nodiscard]] std::optional<double> read(const std::string& key);
  [[nodiscard]] std::string typeOf(const std::string& key); // "" of a key that is not there.
  [[nodiscard]] std::vector<std::string> all();             // By index.
  Answer write(const std::string& key, int byte);
  Answer writeFloat(const std::string& key, double value);

  /// One call, whatever comes of it.
  Answer call(const hardware::SMCParamStruct& input, hardware::SMCParamStruct& output);

private:
  hardware::SMCUserClient& client_;
  hardware::IOConnect connection_;
};

/// A process that drives the fans of a tree. It can be killed by destroying it: it gives nothing back.
struct Driver {
  explicit Driver(const HwmonTree& tree)
      : client(tree.root(), tree.stateFolder(), [this] { return asleep; }), keys(client) {}

  runtime::Duration asleep{};
  HwmonUserClient client;
  Keys keys;
};

/// Names the files of a folder that are used, in order. Each answer is about the time since the last.
class FileWatch {
public:
  explicit FileWatch(const std::filesystem::path& folder);
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;
  ~FileWatch();

  [[nodiscard]] std::vector<std::string> written();
  [[nodiscard]] std::vector<std::string> read(); // Files that are empty read without being named.
  [[nodiscard]] std::vector<std::string> opened();

private:
  [[nodiscard]] std::vector<std::string> names(unsigned wanted);

  int descriptor_;
};

} // namespace ventolith::platform
