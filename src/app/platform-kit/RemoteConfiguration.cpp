#include "app/platform-kit/RemoteConfiguration.h"

namespace ventolith::app {

RemoteConfiguration RemoteConfiguration::read(const core::JSONReader& json) {
  return {.schemaVersion = json.at("schemaVersion").asInteger(),
          .revision = json.at("revision").asInteger(),
          .appID = json.at("appID").asString(),
          .publishedAt = readDate(json.at("publishedAt")),
          .expiresAt = readDate(json.at("expiresAt")),
          .minimumSupportedVersion = json.at("minimumSupportedVersion").asString(),
          .configRefreshMinutes = json.at("configRefreshMinutes").asInteger()};
}

} // namespace ventolith::app
