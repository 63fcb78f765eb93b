// What the application remembers from one start to the next, in four small JSON files of the user.
#pragma once

#include "app/UserFiles.h"
#include "core/FanControlPlan.h"

#include <optional>
#include <utility>
#include <vector>

namespace ventolith::app {

/// Turns values into files and back, and has no opinion about them: what it means that a file is missing or
/// unreadable is the caller's to say. It remembers nothing, so that every operation looks for its folder
/// anew. All are synchronous and called by the application model, on its executor.
///
/// No operation reports a failure or throws. A load that fails for any reason gives nothing and leaves the
/// file as it is; a save that fails leaves what stood there before. So does the save of a value that could
/// not be loaded again: of more than 4 MiB, or of more than 262,144 members and elements. A file is replaced
/// in one step: after a crash it is whole, old or new. The four are independent of each other.
class ConfigStore {
public:
  /// `files` outlives the store.
  ConfigStore(runtime::FileLayer& files, UserFiles::FolderLookup userFolder)
      : files_(files, std::move(userFolder)) {}

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
  UserFiles files_;
};

} // namespace ventolith::app
