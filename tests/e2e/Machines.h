// Machines that a test may do anything to: copies of hwmon trees, and simulators that run.
#pragma once

#include "e2e/Program.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::e2e {

/// A folder like /sys, and the state folder of the programs that run on it.
class HwmonTree {
public:
  /// Without any device.
  HwmonTree();
  /// A copy of data/hwmon/`name`, with its links and file modes.
  explicit HwmonTree(const std::string& name);

  /// Names the tree to a program.
  [[nodiscard]] Environment environment() const;

  /// Paths are relative to sys/class/hwmon. The text is without its line end.
  [[nodiscard]] std::string text(const std::string& path) const;
  void set(const std::string& path, const std::string& text) const;

  /// Every file with its content.
  [[nodiscard]] std::map<std::string, std::string> contents() const;

  /// Whether claims are on record.
  [[nodiscard]] bool hasClaims() const { return std::filesystem::exists(stateFolder() / "claims"); }

private:
  [[nodiscard]] std::filesystem::path sys() const { return folder_.path() / "sys"; }
  [[nodiscard]] std::filesystem::path root() const { return sys() / "class" / "hwmon"; }
  [[nodiscard]] std::filesystem::path stateFolder() const { return folder_.path() / "state"; }

  TemporaryFolder folder_;
};

/// The names of all trees in data/hwmon, sorted.
[[nodiscard]] std::vector<std::string> treeNames();

/// What the snapshot of a tree is to be: its "fans" and "temps".
[[nodiscard]] nlohmann::json expectedSnapshot(const std::string& treeName);

/// One call of the simulated driver.
struct JournalLine {
  int client = 0;
  std::string operation;
  std::string key;
  std::string bytes; // Hexadecimal.
  int result = 0;
  bool isDriverFailure = false;
};

/// A simulator behind a socket.
class Simulator {
public:
  /// Starts it with a built-in machine and waits until it serves.
  explicit Simulator(const std::string& machine);
  /// The same with a machine of its own.
  explicit Simulator(const nlohmann::json& description);

  /// Names the machine to a program.
  [[nodiscard]] Environment environment() const;

  /// Has it do a line of a script.
  void send(const std::string& line) const;

  /// Ends it without warning.
  void kill();

  [[nodiscard]] std::vector<JournalLine> journal() const;

  /// The bytes of the last write to the key that the machine took; none if there was none.
  [[nodiscard]] std::optional<std::string> lastWrite(const std::string& key) const;

  /// What `ventolithctl snapshot --json` shows of it now.
  [[nodiscard]] nlohmann::json snapshot() const;
  /// The fans' modes of that, in the order of the fans.
  [[nodiscard]] std::vector<int> fanModes() const;

private:
  [[nodiscard]] std::string socket() const { return (folder_.path() / "mac").string(); }
  [[nodiscard]] std::filesystem::path journalFile() const { return folder_.path() / "journal"; }
  void waitUntilItServes();

  TemporaryFolder folder_;
  Program program_;
};

/// The MacBook Pro of data/machines, whose latch lets go at once: a test need not wait for it.
[[nodiscard]] nlohmann::json quickMacBookPro();

/// The snapshot that `ventolithctl snapshot --json` shows.
[[nodiscard]] nlohmann::json snapshotOf(const Environment& machine);

} // namespace ventolith::e2e
