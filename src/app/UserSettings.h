// Settings of the user that belong to the application as a program, and not to the fans.
#pragma once

#include "core/JSON.h"
#include "runtime/Files.h"

#include <filesystem>
#include <functional>

namespace ventolith::app {

/// Kept in a small JSON file beside those of `ConfigStore`, and read anew each time. No operation reports a
/// failure or throws: a file that is missing or damaged counts as empty, and a save that fails leaves the
/// file as it was.
class UserSettings {
public:
  /// Gives the folder in which applications keep what belongs to the user.
  using FolderLookup = std::function<std::filesystem::path()>;

  /// `files` outlives the settings.
  UserSettings(runtime::FileLayer& files, FolderLookup userFolder);

  /// Whether the window has opened by itself on a first start. False when unset.
  [[nodiscard]] bool hasOpenedOnFirstLaunch() const;
  /// Other settings in the file stay.
  void setHasOpenedOnFirstLaunch(bool hasOpened) const;

private:
  [[nodiscard]] std::filesystem::path file() const;
  [[nodiscard]] core::JSON load() const;

  runtime::FileLayer* files_;
  FolderLookup userFolder_;
};

} // namespace ventolith::app
