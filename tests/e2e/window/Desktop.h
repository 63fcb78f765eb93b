// A desktop of a test's own: a display, a window manager, a session's bus, and assistive technology's bus.
#pragma once

#include "e2e/PrivateBus.h"
#include "e2e/Program.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace ventolith::e2e {

struct Point {
  int x = 0;
  int y = 0;

  [[nodiscard]] Point movedBy(int right, int down) const { return {x + right, y + down}; }
};

/// Red, green and blue, 0...255.
using Colour = std::array<int, 3>;

/// Fails with std::runtime_error where one of its programs cannot be run.
class Desktop {
public:
  static constexpr int width = 1400;
  static constexpr int height = 1000;

  Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;
  ~Desktop();

  /// Leads a program to this desktop, and nowhere else.
  [[nodiscard]] Environment environment() const;
  [[nodiscard]] PrivateBus& session() { return session_; }

  /// The title of the window that has the keyboard; empty for none.
  [[nodiscard]] std::string activeWindow() const;
  /// Puts that window away, as the desktop's own button does.
  void minimise() const;
  /// What is seen there.
  [[nodiscard]] Colour colourAt(Point place) const;
  /// All that is seen, as a picture in `file`.
  void photograph(const std::filesystem::path& file) const;

  /// Ends the display, as the end of a session does.
  void endDisplay();

private:
  void startDisplay();
  void startWindowManager();
  void startAccessibility();

  TemporaryFolder folder_;
  PrivateBus session_;
  std::unique_ptr<Program> display_;
  std::string displayName_;
  std::unique_ptr<Program> windowManager_;
  std::unique_ptr<Program> accessibility_;
};

/// Mouse and keyboard: what they do reaches the display as it would from a device.
class Hands {
public:
  explicit Hands(const Desktop& desktop) : desktop_(desktop) {}

  void click(Point place) const;
  /// Presses at the first place, and releases at the last one.
  void drag(const std::vector<Point>& way) const;
  /// Keys by the display's names for them, "ctrl+q", one after another.
  void press(const std::vector<std::string>& keys) const;
  void type(const std::string& text) const;
  void moveTo(Point place) const;

private:
  void xdotool(std::vector<std::string> arguments) const;

  const Desktop& desktop_;
};

} // namespace ventolith::e2e
