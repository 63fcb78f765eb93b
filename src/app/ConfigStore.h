// What the application remembers from one start to the next, in four small JSON files of the user.
#pragma once

#include "core/FanControlPlan.h"
#include "runtime/Files.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::app {

/// Turns values into files and back, and has no opinion about them: what it means that a file is missing or
/// unreadable is the caller's to say. It remembers nothing, so that every operation looks for its folder
/// anew. All are synchronous and called by the application model, on its executor.
///
/// No operation reports a failure or throws. A load that fails for any reason gives nothing and leaves the
/// file as it is; a save that fails leaves what stood there before. A file is replaced in one step: after a
/// crash it is whole, old or new. The four are independent of each other.
class ConfigStore {
public:
  /// Gives the folder in which applications keep what belongs to the user; asked at every operation.
  using FolderLookup = std::function<std::filesystem::path()>;

  /// `files` outlives the store.
  ConfigStore(runtime::FileLayer& files, FolderLookup userFolder);

  [[nodiscard]] std::optional<core::FanControlPlan> loadPlan() const;
  void savePlan(const core::FanControlPlan& plan) const;

  /// In the order in which they were saved. An empty list that was saved is an empty list, not nothing.
  [[nodiscard]] std::optional<std::vector<core::FanPreset>> loadPresets() const;
  void savePresets(const std::vector<core::FanPreset>& presets) const;

  /// Whether there is such a preset is not looked at.
  [[nodiscard]] std::optional<core::UUID> loadActivePresetID() const;
  /// None removes the file: that it is missing is how "none" is stored.
  void saveActivePresetID(const std::optional<core::UUID>& id) const;

  [[nodiscard]] std::optional<core::AutoSwitchSettings> loadAutoSwitch() const;
  void saveAutoSwitch(const core::AutoSwitchSettings& settings) const;

private:
  [[nodiscard]] std::filesystem::path directory() const;
  void ensureDirectory() const;

  template <class Value>
  [[nodiscard]] std::optional<Value> load(const char* name, Value (*read)(const core::JSONReader&)) const;
  template <class Value>
  void save(const char* name, const Value& value, core::JSON (*write)(const Value&)) const;

  runtime::FileLayer* files_;
  FolderLookup userFolder_;
};

} // namespace ventolith::app
