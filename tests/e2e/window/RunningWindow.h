// The application with its window, on a desktop of a test's own, with a helper and a simulated Mac.
#pragma once

#include "e2e/HelperHouse.h"
#include "e2e/window/AccessibleTree.h"
#include "e2e/window/Desktop.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace ventolith::e2e {

/// Fan 0 and fan 1 of a MacBook Pro. The helper is the application's child once it is enabled. What the test
/// saw last is kept as a picture beside the tests if it fails.
class RunningWindow : public testing::Test {
protected:
  RunningWindow();
  ~RunningWindow() override;

  /// Starts the application and waits until its window has the keyboard.
  void start(const Environment& more = {});
  /// Starts it, and does not wait.
  [[nodiscard]] std::unique_ptr<Program> launch(const Environment& more = {}) const;
  [[nodiscard]] Environment environment() const;

  /// As a user finds it: by what it is and says.
  [[nodiscard]] Accessible find(const std::string& role, const std::string& name);
  /// The fan's own slider on the dashboard.
  [[nodiscard]] Accessible fanSlider(const std::string& fan);
  void click(const Accessible& element) const { hands.click(element.box.centre()); }
  void click(const std::string& role, const std::string& name) { click(find(role, name)); }
  /// Chooses the screen in the sidebar, and waits until it is there.
  void goTo(const std::string& screen);
  void enableHelper();
  /// Drags the slider's knob to this part of its way.
  void dragSlider(const Accessible& slider, double fraction) const;
  /// Fan 0 at half of its range, by the mouse.
  void holdFan0();

  [[nodiscard]] std::filesystem::path settings() const { return home_.path() / "Ventolith"; }
  /// As it is on the disk.
  [[nodiscard]] nlohmann::json stored(const std::string& file) const;
  [[nodiscard]] nlohmann::json storedMode(int fan) const;
  /// Waits, and goes on waiting while there is no such file or it has no such content.
  void waitUntilStored(const std::string& what, const std::string& file,
                       const std::function<bool(const nlohmann::json&)>& holds) const;

  /// As the simulated Mac has it.
  [[nodiscard]] nlohmann::json simulatedFan(int fan) const;
  void waitUntilFanRunsAt(int fan, double rpm) const;
  [[nodiscard]] bool isFanHeld(int fan) const;
  void waitUntilFanIsBack(int fan) const;

  TemporaryFolder home_;
  Desktop desktop;
  HelperHouse house;
  AccessibleTree tree{desktop};
  Hands hands{desktop};
  std::unique_ptr<Program> application;
};

} // namespace ventolith::e2e
