// UPower, played on a private bus.
#pragma once

#include "e2e/MockPeer.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ventolith::e2e {

using Properties = std::map<std::string, sdbus::Variant>;

inline const MockedObject upowerObject{.name = "org.freedesktop.UPower",
                                       .path = "/org/freedesktop/UPower",
                                       .interface = "org.freedesktop.UPower"};

/// `parameters` are its properties, as JSON.
[[nodiscard]] inline std::unique_ptr<MockPeer> startUPowerOn(const PrivateBus& bus,
                                                             const std::string& parameters) {
  return std::make_unique<MockPeer>(bus, upowerObject, "upower",
                                    std::vector<std::string>{"--parameters", parameters});
}

} // namespace ventolith::e2e
