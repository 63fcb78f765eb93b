// The look follows the desktop while the window is open.
#include "e2e/window/RunningWindow.h"

#include <fmt/format.h>
#include <sdbus-c++/sdbus-c++.h>

#include <algorithm>
#include <cstdint>
#include <numeric>

namespace ventolith::e2e {

namespace {

constexpr std::uint32_t dark = 1;
constexpr std::uint32_t light = 2;

int brightness(const Colour& colour) {
  return std::accumulate(colour.begin(), colour.end(), 0) / 3;
}

/// The part of a desktop that tells applications how it looks.
class MockPortal {
public:
  explicit MockPortal(const PrivateBus& bus, std::uint32_t scheme)
      : peer_(bus, {"org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                    "org.freedesktop.portal.Settings"}) {
    peer_.answer("ReadAll", "as", "a{sa{sv}}",
                 fmt::format("ret = dbus.Dictionary({{'{}': dbus.Dictionary({{'color-scheme': "
                             "dbus.UInt32({})}}, signature='sv')}}, signature='sa{{sv}}')",
                             space, scheme));
  }
  void setScheme(std::uint32_t scheme) {
    peer_.emit("SettingChanged", "ssv", std::string(space), std::string("color-scheme"), scheme);
  }
  void setAccent(double red, double green, double blue) {
    peer_.emit("SettingChanged", "ssv", std::string(space), std::string("accent-color"),
               sdbus::Struct<double, double, double>(red, green, blue));
  }

private:
  static constexpr const char* space = "org.freedesktop.appearance";

  MockPeer peer_;
};

class WindowLook : public RunningWindow {
protected:
  /// In a corner of the screen, where nothing stands.
  [[nodiscard]] Colour ground() {
    const Box window = find("frame", "Dashboard").box;
    return desktop.colourAt({window.x + window.width - 6, window.y + window.height - 6});
  }
  /// Of the most prominent button, beside its title.
  [[nodiscard]] Colour accent() {
    const Box button = find("push button", "Enable…").box;
    return desktop.colourAt({button.x + 7, button.y + button.height / 2});
  }
  void waitUntilBright() {
    waitUntil("a light window", [this] { return brightness(ground()) > 215; });
  }
  void waitUntilDark() {
    waitUntil("a dark window", [this] { return brightness(ground()) < 70; });
  }
};

TEST_F(WindowLook, LightAndDarkFollowTheDesktopLive) {
  MockPortal portal(desktop.session(), dark);
  start();
  waitUntilDark();
  portal.setScheme(light);
  waitUntilBright();
  portal.setScheme(dark);
  waitUntilDark();
}

TEST_F(WindowLook, AccentFollowsTheDesktopLive) {
  MockPortal portal(desktop.session(), light);
  start();
  portal.setAccent(0.85, 0.1, 0.15);
  waitUntil("a red accent", [this] {
    const auto [red, green, blue] = accent();
    return red > std::max(green, blue) + 90;
  });
  portal.setAccent(0.1, 0.5, 0.15);
  waitUntil("a green accent", [this] {
    const auto [red, green, blue] = accent();
    return green > std::max(red, blue) + 40;
  });
}

} // namespace

} // namespace ventolith::e2e
