#include "app/UserSettings.h"

#include <exception>
#include <string>
#include <utility>

namespace ventolith::app {

using core::JSON;

namespace {

constexpr const char* openedKey = "com.ventolith.hasOpenedOnFirstLaunch";
constexpr core::JSONBounds bounds{.bytes = std::size_t{64} << 10};

} // namespace

UserSettings::UserSettings(runtime::FileLayer& files, FolderLookup userFolder)
    : files_(&files), userFolder_(std::move(userFolder)) {}

bool UserSettings::hasOpenedOnFirstLaunch() const {
  const JSON settings = load();
  const auto found = settings.find(openedKey);
  return found != settings.end() && found->is_boolean() && found->get<bool>();
}

void UserSettings::setHasOpenedOnFirstLaunch(bool hasOpened) const {
  JSON settings = load();
  settings[openedKey] = hasOpened;
  (void)files_->createFolders(file().parent_path());
  (void)runtime::replaceFile(*files_, file(), core::writePrettyJSON(settings), runtime::ordinaryFile);
}

std::filesystem::path UserSettings::file() const {
  return userFolder_() / "Ventolith" / "settings.json";
}

JSON UserSettings::load() const {
  const auto text = files_->read(file(), bounds.bytes);
  if (!text) return JSON::object();
  try {
    JSON settings = core::parseJSON(*text, bounds);
    return settings.is_object() ? settings : JSON::object();
  } catch (const std::exception&) {
    return JSON::object();
  }
}

} // namespace ventolith::app
