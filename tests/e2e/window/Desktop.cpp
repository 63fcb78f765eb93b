#include "e2e/window/Desktop.h"

#include "e2e/MockPeer.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace ventolith::e2e {

namespace fs = std::filesystem;

namespace {

/// Starts what a desktop consists of, and waits until it says that it is there.
std::unique_ptr<Program> started(const std::string& program, std::vector<std::string> arguments,
                                 const Environment& environment,
                                 const std::function<bool(const Program&)>& isThere) {
  auto running = std::make_unique<Program>(program, std::move(arguments), environment);
  waitUntil(program, [&] {
    if (!running->isRunning()) {
      throw std::runtime_error(program +
                               ", which this test needs, does not run (scripts/install-packages test "
                               "installs it): " +
                               running->err());
    }
    return isThere(*running);
  });
  return running;
}

/// By a signal that it can heed: it takes what it has started along, and leaves nothing behind. What does not
/// end in time is killed with its object.
void end(std::unique_ptr<Program> program) {
  if (!program) return;
  try {
    program->signal(SIGTERM);
    static_cast<void>(program->wait());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
}

/// A little time for whoever follows the pointer, as a hand takes it.
constexpr const char* handsPause = "0.02";

void appendMove(std::vector<std::string>& arguments, Point place) {
  for (const std::string& word : {std::string("mousemove"), std::to_string(place.x), std::to_string(place.y)})
    arguments.push_back(word);
}

} // namespace

Desktop::Desktop() {
  fs::create_directory(folder_.path() / "run");
  fs::permissions(folder_.path() / "run", fs::perms::owner_all);
  startDisplay();
  startWindowManager();
  startAccessibility();
}

Desktop::~Desktop() {
  end(std::move(accessibility_));
  end(std::move(windowManager_));
  endDisplay();
}

void Desktop::endDisplay() {
  end(std::move(display_));
}

Environment Desktop::environment() const {
  return {{"DISPLAY", displayName_},
          {"DBUS_SESSION_BUS_ADDRESS", session_.address()},
          {"XDG_RUNTIME_DIR", (folder_.path() / "run").string()},
          {"HOME", folder_.path().string()},
          {"LANG", "C.UTF-8"},
          {"GSETTINGS_BACKEND", "memory"},
          {"QT_QPA_PLATFORM", "xcb"},
          {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"}};
}

void Desktop::startDisplay() {
  const std::string size = fmt::format("{}x{}x24", width, height);
  display_ = started("/usr/bin/Xvfb",
                     {"-displayfd", "1", "-screen", "0", size, "-dpi", "96", "-nolisten", "tcp", "-noreset"},
                     {{"HOME", folder_.path().string()}},
                     [](const Program& display) { return !display.outLines().empty(); });
  displayName_ = ":" + display_->outLines().front();
}

void Desktop::startWindowManager() {
  windowManager_ = started("/usr/bin/openbox", {"--sm-disable"}, environment(), [this](const Program&) {
    return run("/usr/bin/xdotool", {"get_num_desktops"}, environment()).status == 0;
  });
}

void Desktop::startAccessibility() {
  accessibility_ = started("/usr/libexec/at-spi-bus-launcher", {"--launch-immediately"}, environment(),
                           [](const Program&) { return true; });
  waitUntilOwned(session_, "org.a11y.Bus", true);
}

std::string Desktop::activeWindow() const {
  const std::string title = run("/usr/bin/xdotool", {"getactivewindow", "getwindowname"}, environment()).out;
  return title.substr(0, title.find('\n'));
}

void Desktop::minimise() const {
  const Ended ended = run("/usr/bin/xdotool", {"getactivewindow", "windowminimize"}, environment());
  if (ended.status != 0) throw std::runtime_error("no window to minimise: " + ended.err);
}

Colour Desktop::colourAt(Point place) const {
  const std::string piece = fmt::format("1x1+{}+{}", place.x, place.y);
  const Ended ended =
      run("/usr/bin/import", {"-window", "root", "-crop", piece, "-depth", "8", "txt:-"}, environment());
  Colour colour{};
  const auto hash = ended.out.rfind('#'); // "0,0: (1,2,3)  #010203  srgb(1,2,3)"
  if (hash == std::string::npos ||
      std::sscanf(ended.out.c_str() + hash, "#%2x%2x%2x", reinterpret_cast<unsigned*>(&colour[0]),
                  reinterpret_cast<unsigned*>(&colour[1]), reinterpret_cast<unsigned*>(&colour[2])) != 3)
    throw std::runtime_error("import, which this test needs, tells no colour: " + ended.out + ended.err);
  return colour;
}

void Desktop::photograph(const fs::path& file) const {
  const Ended ended = run("/usr/bin/import", {"-window", "root", file.string()}, environment());
  if (ended.status != 0) throw std::runtime_error("no picture: " + ended.err);
}

void Hands::click(Point place) const {
  std::vector<std::string> arguments;
  appendMove(arguments, place);
  arguments.insert(arguments.end(), {"sleep", handsPause, "click", "1"});
  xdotool(std::move(arguments));
}

void Hands::drag(const std::vector<Point>& way) const {
  std::vector<std::string> arguments;
  appendMove(arguments, way.front());
  arguments.insert(arguments.end(), {"sleep", handsPause, "mousedown", "1"});
  for (const Point place : way) {
    appendMove(arguments, place);
    arguments.insert(arguments.end(), {"sleep", handsPause});
  }
  arguments.insert(arguments.end(), {"mouseup", "1"});
  xdotool(std::move(arguments));
}

void Hands::press(const std::vector<std::string>& keys) const {
  std::vector<std::string> arguments = {"key", "--delay", "15"};
  arguments.insert(arguments.end(), keys.begin(), keys.end());
  xdotool(std::move(arguments));
}

void Hands::type(const std::string& text) const {
  xdotool({"type", "--delay", "15", text});
}

void Hands::moveTo(Point place) const {
  std::vector<std::string> arguments;
  appendMove(arguments, place);
  xdotool(std::move(arguments));
}

void Hands::xdotool(std::vector<std::string> arguments) const {
  const Ended ended = run("/usr/bin/xdotool", std::move(arguments), desktop_.environment());
  if (ended.status != 0) throw std::runtime_error("xdotool, which this test needs: " + ended.err);
}

} // namespace ventolith::e2e
