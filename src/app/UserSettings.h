// Settings of the user that belong to the application as a program, and not to the fans.
#pragma once

#include "app/UserFiles.h"

#include <utility>

namespace ventolith::app {

/// Kept in a small JSON file beside those of `ConfigStore`, and read anew each time. No operation reports a
/// failure or throws: a file that is missing or damaged counts as empty, and a save that fails leaves the
/// file as it was. So does the save of settings that could not be read back.
class UserSettings {
public:
  /// `files` outlives the settings.
  UserSettings(runtime::FileLayer& files, UserFiles::FolderLookup userFolder)
      : files_(files, std::move(userFolder)) {}

  /// Whether the window has opened by itself on a first start. False when unset.
  [[nodiscard]] bool hasOpenedOnFirstLaunch() const;
  /// Other settings in the file stay.
  void setHasOpenedOnFirstLaunch(bool hasOpened) const;

private:
  [[nodiscard]] core::JSON load() const;

  UserFiles files_;
};

} // namespace ventolith::app
