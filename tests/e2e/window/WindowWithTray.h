// The application on a desktop with a status area.
#pragma once

#include "e2e/window/RunningWindow.h"

#include <sdbus-c++/sdbus-c++.h>

#include <stdexcept>
#include <string>

namespace ventolith::e2e {

/// The area is played by a mock: it shows nothing, and what is clicked is its idea alone.
class WindowWithTray : public RunningWindow {
protected:
  WindowWithTray() {
    const std::string interface = "org.kde.StatusNotifierWatcher";
    watcher_.control("AddProperty", interface, std::string("IsStatusNotifierHostRegistered"),
                     sdbus::Variant(true));
    watcher_.answer("RegisterStatusNotifierItem", "s", "", "");
  }

  void startInTray() {
    start();
    waitUntil("an icon in the tray", [this] { return watcher_.count("RegisterStatusNotifierItem") == 1; });
  }
  /// A click on the icon, which stands where the pointer is.
  void clickIcon() {
    hands.moveTo({Desktop::width - 60, 10});
    const auto connection = connectTo(desktop.session());
    sdbus::createProxy(*connection, itemName(), "/StatusNotifierItem")
        ->callMethod("Activate")
        .onInterface("org.kde.StatusNotifierItem")
        .withArguments(Desktop::width - 60, 10);
  }
  void closeWindow() {
    waitUntil("no window", [this] { // The window manager loses a key that comes while it changes the focus.
      if (desktop.activeWindow().empty()) return true;
      hands.press({"alt+F4"});
      return false;
    });
  }
  [[nodiscard]] Accessible openPanel() {
    clickIcon();
    return tree.find(panel);
  }

  const Wanted panel{.role = "dialog", .name = "Ventolith"};

private:
  /// As the application has told it: "RegisterStatusNotifierItem "name"".
  [[nodiscard]] std::string itemName() const {
    for (const std::string& call : watcher_.calls()) {
      const auto quote = call.find('"');
      if (call.starts_with("RegisterStatusNotifierItem"))
        return call.substr(quote + 1, call.rfind('"') - quote - 1);
    }
    throw std::runtime_error("there is no icon in the tray");
  }

  MockPeer watcher_{
      desktop.session(),
      {"org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher"}};
};

} // namespace ventolith::e2e
