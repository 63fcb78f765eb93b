#include "e2e/window/RunningWindow.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <stdexcept>

namespace ventolith::e2e {

namespace fs = std::filesystem;
using nlohmann::json;

RunningWindow::RunningWindow() {
  fs::create_directories(settings());
}

RunningWindow::~RunningWindow() {
  if (!HasFailure()) return;
  std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
  std::ranges::replace(test, '/', '-');
  const fs::path picture = fs::path(VENTOLITH_PICTURES) / (test + ".png");
  try {
    desktop.photograph(picture);
    std::cerr << "what was seen last: " << picture << '\n';
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
  }
  if (application) std::cerr << application->err();
}

Environment RunningWindow::environment() const {
  Environment environment = house.environment();
  environment.merge(desktop.environment());
  environment["XDG_CONFIG_HOME"] = home_.path().string();
  environment["VENTOLITH_HELPER"] = (fs::path(VENTOLITH_PROGRAMS) / "ventolith-helper").string();
  environment["VENTOLITH_POWER_SUPPLY"] = (home_.path() / "no-supplies").string();
  return environment;
}

std::unique_ptr<Program> RunningWindow::launch(const Environment& more) const {
  Environment all = more;
  all.merge(environment());
  return std::make_unique<Program>("ventolith", std::vector<std::string>(), all);
}

void RunningWindow::start(const Environment& more) {
  application = launch(more);
  waitUntil("a window", [this] {
    if (!application->isRunning()) throw std::runtime_error("the application ended: " + application->err());
    return desktop.activeWindow() == "Dashboard";
  });
  static_cast<void>(fanSlider("Fan 0")); // The first reading.
}

Accessible RunningWindow::find(const std::string& role, const std::string& name) {
  return tree.find({.role = role, .name = name});
}

Accessible RunningWindow::fanSlider(const std::string& fan) {
  return tree.find({.role = "slider", .begins = "Manual control", .description = fan});
}

void RunningWindow::goTo(const std::string& screen) {
  click("list item", screen);
  waitUntil(screen, [&] { return desktop.activeWindow() == screen; });
}

void RunningWindow::enableHelper() {
  click("push button", "Enable…");
  static_cast<void>(tree.find({.role = "slider", .name = "Manual control", .states = {"enabled"}}));
}

void RunningWindow::dragSlider(const Accessible& slider, double fraction) const {
  constexpr int knobRadius = 8;
  const AccessibleValue value = slider.value.value();
  const auto placeOf = [&](double part) {
    const double way = slider.box.width - 2 * knobRadius;
    return Point{slider.box.x + knobRadius + static_cast<int>(std::lround(way * part)),
                 slider.box.y + knobRadius};
  };
  const double now = (value.now - value.least) / (value.most - value.least);
  hands.drag({placeOf(now), placeOf((now + fraction) / 2), placeOf(fraction)});
}

void RunningWindow::holdFan0() {
  dragSlider(fanSlider("Fan 0"), 0.5);
  waitUntil("a fan that is held", [this] { return isFanHeld(0); });
}

json RunningWindow::stored(const std::string& file) const {
  return json::parse(readText(settings() / file), nullptr, false);
}

json RunningWindow::storedMode(int fan) const {
  const json plan = stored("plan.json");
  if (!plan.is_object()) return nullptr;
  for (const json& one : plan.at("fans")) {
    if (one.at("fanID") == fan) return one.at("mode");
  }
  return nullptr;
}

void RunningWindow::waitUntilStored(const std::string& what, const std::string& file,
                                    const std::function<bool(const json&)>& holds) const {
  waitUntil(what, [&] {
    const json content = stored(file);
    return !content.is_discarded() && holds(content);
  });
}

json RunningWindow::simulatedFan(int fan) const {
  return house.mac().snapshot().at("fans").at(static_cast<std::size_t>(fan));
}

void RunningWindow::waitUntilFanRunsAt(int fan, double rpm) const {
  constexpr double tolerance = 0.03;
  waitUntil(fmt::format("fan {} at {} RPM", fan, rpm), [&] {
    return std::abs(simulatedFan(fan).at("currentRPM").get<double>() - rpm) < tolerance * rpm;
  });
}

bool RunningWindow::isFanHeld(int fan) const {
  return house.mac().lastWrite(fmt::format("F{}Md", fan)) == "01";
}

void RunningWindow::waitUntilFanIsBack(int fan) const {
  waitUntil("a fan that is back with the firmware",
            [&] { return house.mac().lastWrite(fmt::format("F{}Md", fan)) == "00"; });
}

} // namespace ventolith::e2e
