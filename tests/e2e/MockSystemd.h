// systemd, played on a private bus.
#pragma once

#include "e2e/MockPeer.h"

#include <string>

namespace ventolith::e2e {

/// Has the helper's unit enabled, or not.
class MockSystemd {
public:
  explicit MockSystemd(const PrivateBus& bus)
      : peer_(bus,
              {"org.freedesktop.systemd1", "/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager"}) {
    peer_.answer("Subscribe", "", "", "");
  }
  void unitIs(const std::string& state) {
    peer_.answer("GetUnitFileState", "s", "s", "ret = '" + state + "'");
    peer_.emit("UnitFilesChanged", "");
  }

private:
  MockPeer peer_;
};

} // namespace ventolith::e2e
