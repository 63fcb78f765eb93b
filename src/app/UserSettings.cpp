#include "app/UserSettings.h"

namespace ventolith::app {

using core::JSON;

namespace {

constexpr const char* settingsFile = "settings.json";
constexpr const char* openedKey = "com.ventolith.hasOpenedOnFirstLaunch";

} // namespace

bool UserSettings::hasOpenedOnFirstLaunch() const {
  const JSON settings = load();
  const auto found = settings.find(openedKey);
  return found != settings.end() && found->is_boolean() && found->get<bool>();
}

void UserSettings::setHasOpenedOnFirstLaunch(bool hasOpened) const {
  JSON settings = load();
  settings[openedKey] = hasOpened;
  files_.write(settingsFile, settings);
}

/// An object, whatever stands in the file.
JSON UserSettings::load() const {
  const auto settings = files_.read(settingsFile);
  return settings && settings->is_object() ? *settings : JSON::object();
}

} // namespace ventolith::app
