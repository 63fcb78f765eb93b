// Settings of the user that belong to the application as a program, and not to the fans.
#pragma once

namespace ventolith::app {

/// Kept for the user's account, and read anew each time. No operation reports a failure or throws: settings
/// that cannot be read count as unset, and a save that fails changes nothing.
class UserSettings {
public:
  UserSettings() = default;
  UserSettings(const UserSettings&) = delete;
  UserSettings& operator=(const UserSettings&) = delete;
  virtual ~UserSettings() = default;

  /// Whether the window has opened by itself on a first start. False when unset.
  [[nodiscard]] virtual bool hasOpenedOnFirstLaunch() const = 0;
  virtual void setHasOpenedOnFirstLaunch(bool hasOpened) = 0;

protected:
  static constexpr const char* openedKey = "com.ventolith.hasOpenedOnFirstLaunch";
};

} // namespace ventolith::app
