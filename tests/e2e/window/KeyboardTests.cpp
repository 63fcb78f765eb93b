// The window without a mouse.
#include "e2e/window/RunningWindow.h"

#include <functional>

namespace ventolith::e2e {

using nlohmann::json;

namespace {

class WindowByKeyboard : public RunningWindow {
protected:
  /// Presses Tab until the keyboard is where it is wanted.
  Accessible tabTo(const std::string& what, const std::function<bool(const Accessible&)>& isThere) {
    constexpr int longestWay = 60;
    Accessible reached = tree.focused();
    for (int presses = 0; presses < longestWay && !isThere(reached); ++presses) {
      const int left = reached.id;
      hands.press({"Tab"});
      waitUntil("another control with the keyboard", [&] {
        reached = tree.focused();
        return reached.id != left;
      });
    }
    if (isThere(reached)) return reached;
    throw std::runtime_error("the keyboard does not reach " + what);
  }
  Accessible tabTo(const std::string& role, const std::string& name) {
    return tabTo(name,
                 [&](const Accessible& reached) { return reached.role == role && reached.name == name; });
  }
};

TEST_F(WindowByKeyboard, EnablesTheHelperHoldsAFanShapesACurveAndRestoresAuto) {
  start();
  tabTo("push button", "Enable…");
  hands.press({"space"});
  static_cast<void>(tree.find({.role = "slider", .name = "Manual control", .states = {"enabled"}}));

  const Accessible slider = tabTo("the slider of fan 0", [](const Accessible& reached) {
    return reached.role == "slider" && reached.description == "Fan 0";
  });
  hands.press({"End"});
  waitUntil("a fan that is held", [this] { return isFanHeld(0); });
  waitUntilFanRunsAt(0, simulatedFan(0).at("maxRPM").get<double>());
  hands.press({"Left", "Left"});
  waitUntil("a slider two steps below the end", [&] { return tree.look(slider).value.value().now == 98; });

  tabTo("list item", "Dashboard");
  hands.press({"Down"});
  waitUntil("the curves", [this] { return desktop.activeWindow() == "Fan Curves"; });
  const Accessible second =
      tabTo("a point", [](const Accessible& reached) { return reached.name.starts_with("Point 2 of "); });
  const double higher = second.value.value().now + 2 * second.value.value().step;
  hands.press({"Up", "Up"});
  waitUntil("a point two steps higher", [&] { return tree.look(second).value.value().now == higher; });
  waitUntilStored("a curve with that point", "plan.json", [&](const json&) {
    const json mode = storedMode(0);
    return mode.contains("curve") && mode["curve"]["_0"]["points"].at(1).at("percent") == higher;
  });

  tabTo("push button", "Restore Auto");
  hands.press({"space"});
  waitUntilFanIsBack(0);
}

} // namespace

} // namespace ventolith::e2e
