// The user's settings in the user's defaults.
#pragma once

#include "app/UserSettings.h"

namespace ventolith::platform {

/// Those of this application: `defaults read com.ventolith.app` shows them. A program outside of a bundle has
/// those of its own name. A value that is neither a number nor a boolean counts as unset.
class UserDefaults final : public app::UserSettings {
public:
  [[nodiscard]] bool hasOpenedOnFirstLaunch() const override;
  /// On disk when it returns, for a process that may be killed next.
  void setHasOpenedOnFirstLaunch(bool hasOpened) override;
};

} // namespace ventolith::platform
