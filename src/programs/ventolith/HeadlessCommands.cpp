#include "programs/ventolith/HeadlessCommands.h"

#include "core/FanControlPlan.h"
#include "core/JSON.h"
#include "runtime/Files.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <locale>
#include <optional>
#include <sstream>
#include <utility>

namespace ventolith::programs {

using app::AppModel;
using core::Fan;

const char* const headlessCommandHelp = R"(  enable                registers and starts the helper
  disable               stops and unregisters it
  restart-helper        restarts one that is stale
  automatic             gives every fan back to the firmware, and forgets curves and rules
  automatic FAN         gives one back
  full-blast [FAN]      runs every fan, or one, at its highest speed
  manual FAN RPM        holds a fan at a speed
  plan FILE             puts a stored plan in force
  preset NAME           activates a preset
  save-preset NAME      keeps what the fans do now as a preset
  auto-switch off       keeps the preset when the power source changes
  auto-switch BATTERY AC  chooses a preset for each power source; - leaves it as it is
  dashboard shown|hidden  reads the sensors as often as an open window asks for
  check-for-updates     looks for a newer build
  quit                  gives the fans back and ends
)";

namespace {

using Target = HeadlessTarget;

/// What is left of the line, without the blanks around it.
std::string rest(std::istringstream& words) {
  std::string text;
  std::getline(words >> std::ws, text);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\r'))
    text.pop_back();
  return text;
}

std::string nextWord(std::istringstream& words, const char* what) {
  std::string word;
  if (!(words >> word)) throw CommandLineError(fmt::format("{} is missing", what));
  return word;
}

void requireEnd(std::istringstream& words) {
  const std::string excess = rest(words);
  if (!excess.empty()) throw CommandLineError(fmt::format("\"{}\" is too much", excess));
}

template <class Number>
std::optional<Number> numberIn(const std::string& word) {
  std::istringstream in(word);
  in.imbue(std::locale::classic());
  Number number{};
  return in >> number && in.peek() == std::istringstream::traits_type::eof() ? std::optional(number)
                                                                             : std::nullopt;
}

Fan fanNamed(const AppModel& model, const std::string& word) {
  const auto& fans = model.snapshot().fans;
  const auto id = numberIn<core::FanID>(word);
  const auto fan = std::ranges::find_if(fans, [&](const Fan& known) { return id && known.id == *id; });
  if (fan == fans.end()) throw CommandLineError(fmt::format("there is no fan {}", word));
  return *fan;
}

core::FanPreset presetNamed(const AppModel& model, const std::string& name) {
  const auto& presets = model.presets();
  const auto preset = std::ranges::find(presets, name, &core::FanPreset::name);
  if (preset == presets.end()) throw CommandLineError(fmt::format("there is no preset \"{}\"", name));
  return *preset;
}

std::optional<core::UUID> presetChosen(const AppModel& model, const std::string& name) {
  return name == "-" ? std::nullopt : std::optional(presetNamed(model, name).id);
}

void startOnMain(const Target& app, std::string name, runtime::Async<void> work) {
  runtime::start(app.mainExecutor, std::move(name), std::move(work));
}

void enable(const Target& app, std::istringstream& words) {
  requireEnd(words);
  app.model.beginHelperOnboarding();
}

helper::HelperManager& managerOf(const AppModel& model) {
  if (!model.helperManager()) throw CommandLineError("the helper's status is not known yet");
  return *model.helperManager();
}

void disable(const Target& app, std::istringstream& words) {
  requireEnd(words);
  startOnMain(app, "the removal of the helper", managerOf(app.model).unregister());
}

void restartHelper(const Target& app, std::istringstream& words) {
  requireEnd(words);
  startOnMain(app, "the helper's restart", managerOf(app.model).recoverFromStaleHelper());
}

void automatic(const Target& app, std::istringstream& words) {
  const std::string fan = rest(words);
  if (fan.empty()) return app.model.activateAutomatic();
  app.model.setFanAutomatic(fanNamed(app.model, fan));
}

void fullBlast(const Target& app, std::istringstream& words) {
  const std::string fan = rest(words);
  if (fan.empty()) return app.model.activateFullBlast();
  app.model.setFanFullBlast(fanNamed(app.model, fan));
}

/// The road of a slider that is dragged to its place and let go.
void manual(const Target& app, std::istringstream& words) {
  const Fan fan = fanNamed(app.model, nextWord(words, "the fan"));
  const std::string speed = nextWord(words, "the speed");
  const auto rpm = numberIn<double>(speed);
  if (!rpm) throw CommandLineError(fmt::format("\"{}\" is no speed", speed));
  requireEnd(words);
  app.model.beginManualDrag(fan);
  app.model.previewSliderRPM(fan, *rpm);
  app.model.commitManualRPM(fan);
}

void plan(const Target& app, std::istringstream& words) {
  const std::string file = rest(words);
  const auto text = runtime::SystemFiles().read(file, core::JSONBounds().bytes);
  if (!text) throw CommandLineError(fmt::format("{}: {}", file, text.error().message()));
  try {
    app.model.applyPlan(core::decodeFanControlPlan(*text));
  } catch (const core::DecodeError& error) {
    throw CommandLineError(fmt::format("{}: {}", file, error.what()));
  }
}

void activatePreset(const Target& app, std::istringstream& words) {
  app.model.activatePreset(presetNamed(app.model, rest(words)));
}

void savePreset(const Target& app, std::istringstream& words) {
  const std::string name = rest(words);
  if (name.empty()) throw CommandLineError("the name is missing");
  app.model.newPresetFromCurrent(name);
}

void autoSwitch(const Target& app, std::istringstream& words) {
  core::AutoSwitchSettings settings = app.model.autoSwitch();
  const std::string onBattery = nextWord(words, "off or a preset");
  settings.enabled = onBattery != "off";
  if (settings.enabled) {
    settings.onBatteryPresetID = presetChosen(app.model, onBattery);
    settings.onACPresetID = presetChosen(app.model, nextWord(words, "the preset on AC power"));
  }
  requireEnd(words);
  app.model.setAutoSwitch(settings);
}

void dashboard(const Target& app, std::istringstream& words) {
  const std::string word = nextWord(words, "shown or hidden");
  if (word != "shown" && word != "hidden")
    throw CommandLineError(fmt::format("\"{}\" is neither shown nor hidden", word));
  requireEnd(words);
  app.model.setDashboardVisible(word == "shown");
}

void checkForUpdates(const Target& app, std::istringstream& words) {
  requireEnd(words);
  app.model.checkForUpdates();
}

using Command = std::pair<std::string_view, void (*)(const Target&, std::istringstream&)>;
constexpr std::array commands = {
    Command{"enable", enable},
    Command{"disable", disable},
    Command{"restart-helper", restartHelper},
    Command{"automatic", automatic},
    Command{"full-blast", fullBlast},
    Command{"manual", manual},
    Command{"plan", plan},
    Command{"preset", activatePreset},
    Command{"save-preset", savePreset},
    Command{"auto-switch", autoSwitch},
    Command{"dashboard", dashboard},
    Command{"check-for-updates", checkForUpdates},
};

} // namespace

void runHeadlessCommand(const HeadlessTarget& app, const std::string& line) {
  std::istringstream words(line);
  std::string name;
  if (!(words >> name)) return;
  const auto command = std::ranges::find(commands, name, &Command::first);
  if (command == commands.end())
    throw CommandLineError(fmt::format("there is no command \"{}\"; \"help\" lists them", name));
  command->second(app, words);
}

} // namespace ventolith::programs
