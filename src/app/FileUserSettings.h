// The user's settings in a file.
#pragma once

#include "app/UserFiles.h"
#include "app/UserSettings.h"

#include <utility>

namespace ventolith::app {

/// A small JSON file beside those of `ConfigStore`. Settings that could not be read back are not saved.
class FileUserSettings final : public UserSettings {
public:
  /// `files` outlives the settings.
  FileUserSettings(runtime::FileLayer& files, UserFiles::FolderLookup userFolder)
      : files_(files, std::move(userFolder)) {}

  [[nodiscard]] bool hasOpenedOnFirstLaunch() const override;
  /// Other settings in the file stay.
  void setHasOpenedOnFirstLaunch(bool hasOpened) override;

private:
  [[nodiscard]] core::JSON load() const;

  UserFiles files_;
};

} // namespace ventolith::app
