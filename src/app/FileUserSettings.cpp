#include "app/FileUserSettings.h"

namespace ventolith::app {

using core::JSON;

namespace {

constexpr const char* settingsFile = "settings.json";

} // namespace

bool FileUserSettings::hasOpenedOnFirstLaunch() const {
  const JSON settings = load();
  const auto found = settings.find(openedKey);
  return found != settings.end() && found->is_boolean() && found->get<bool>();
}

void FileUserSettings::setHasOpenedOnFirstLaunch(bool hasOpened) {
  JSON settings = load();
  settings[openedKey] = hasOpened;
  files_.write(settingsFile, settings);
}

/// An object, whatever stands in the file.
JSON FileUserSettings::load() const {
  const auto settings = files_.read(settingsFile);
  return settings && settings->is_object() ? *settings : JSON::object();
}

} // namespace ventolith::app
