// The application without its window, with a helper, a simulated Mac and the services of a system, as
// processes on a bus of the test's own.
#include "e2e/CommandPipe.h"
#include "e2e/HelperHouse.h"
#include "e2e/MockSystemd.h"
#include "e2e/MockUPower.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace ventolith::e2e {

namespace {

namespace fs = std::filesystem;

class RunningApplication : public testing::Test {
protected:
  RunningApplication() { fs::create_directories(settings()); }

  [[nodiscard]] fs::path settings() const { return home_.path() / "Ventolith"; }

  /// With a helper that is this application's child once it is enabled.
  void startWithChildHelper() {
    start({{"VENTOLITH_HELPER", (fs::path(VENTOLITH_PROGRAMS) / "ventolith-helper").string()}});
  }
  /// With the system's helper, which somebody else starts.
  void start(const Environment& more = {}) {
    Environment environment = house.environment();
    environment["XDG_CONFIG_HOME"] = home_.path().string();
    environment["VENTOLITH_POWER_SUPPLY"] = (home_.path() / "no-supplies").string();
    environment.insert(more.begin(), more.end());
    application =
        std::make_unique<Program>("ventolith", options, environment, Streams{.in = commands.file()});
    waitUntilLine("snapshot: 2 fans");
  }
  [[nodiscard]] Environment environment(const Environment& more = {}) const {
    Environment environment = house.environment();
    environment["XDG_CONFIG_HOME"] = home_.path().string();
    environment["VENTOLITH_POWER_SUPPLY"] = (home_.path() / "no-supplies").string();
    environment.insert(more.begin(), more.end());
    return environment;
  }
  void say(const std::string& command) const { commands.write(command); }

  void waitUntilLine(const std::string& beginning) const { waitUntilLines(beginning, 1); }
  void waitUntilLines(const std::string& beginning, std::ptrdiff_t count) const {
    waitUntil(beginning, [&] {
      if (!application->isRunning())
        throw std::runtime_error("the application ended: " + application->out() + application->err());
      return linesOf(beginning) >= count;
    });
  }
  [[nodiscard]] std::ptrdiff_t linesOf(const std::string& beginning) const {
    return std::ranges::count_if(application->outLines(),
                                 [&](const auto& line) { return line.starts_with(beginning); });
  }
  /// The latest line of the field.
  [[nodiscard]] std::string published(const std::string& field) const {
    std::string latest;
    for (const auto& line : application->outLines()) {
      if (line.starts_with(field + ": ")) latest = line.substr(field.size() + 2);
    }
    return latest;
  }
  void waitUntilPublished(const std::string& field, const std::string& value) const {
    waitUntil(field + ": " + value, [&] { return published(field) == value; });
  }

  void enableHelper() {
    say("enable");
    waitUntilLine("isHelperActive: yes");
  }
  void holdBothFans() {
    say("manual 0 3000");
    say("manual 1 2500");
    waitUntilHeld();
  }
  /// Until the Mac has it and the helper says so: by then the command is done.
  void waitUntilHeld() const {
    waitUntil("fans that are held", [this] {
      const auto state = nlohmann::json::parse(published("controlState"));
      return house.isEveryFanHeld() && state["isHolding"] && state["perFanMode"].size() == 2;
    });
  }

  static std::string planText(int rpm) {
    return R"({"fans":[{"fanID":0,"mode":{"fixedRPM":{"_0":)" + std::to_string(rpm) +
           R"(}}},{"fanID":1,"mode":{"fixedRPM":{"_0":2500}}}],"rules":[],"tuning":{"emaAlpha":0.3,)"
           R"("hysteresisCelsius":2,"maxDeltaRPMPerTick":400,"minDwellSeconds":3}})";
  }

  TemporaryFolder home_;
  HelperHouse house;
  std::vector<std::string> options{"--headless", "--engine-thread"}; // As below a window.
  CommandPipe commands{home_.path() / "commands"};
  std::unique_ptr<Program> application;
};

TEST_F(RunningApplication, StoredPlanReachesAHelperThatIsEnabledAlready) {
  std::ofstream(settings() / "plan.json") << planText(3000);
  MockSystemd systemd(house.bus());
  systemd.unitIs("enabled");
  const auto helper = house.startHelper();
  start();
  waitUntilHeld();
  EXPECT_EQ(published("isHelperActive"), "yes");
  EXPECT_EQ(published("activePlan"), planText(3000));
}

TEST_F(RunningApplication, HelperThatIsEnabledLaterGetsThePlan) {
  MockSystemd systemd(house.bus());
  systemd.unitIs("disabled");
  const auto helper = house.startHelper();
  start();
  say("manual 0 3000");
  say("manual 1 2500");
  waitUntilPublished("activePlan", planText(3000));
  EXPECT_FALSE(house.isEveryFanHeld());
  systemd.unitIs("enabled");
  waitUntilLine("isHelperActive: yes");
  waitUntilHeld();
}

TEST_F(RunningApplication, HelperIsEnabledHoldsAndIsTakenAwayAndComesBack) {
  startWithChildHelper();
  EXPECT_EQ(published("helper"), "not registered");
  enableHelper();
  holdBothFans();
  say("disable");
  waitUntilLines("isHelperActive: no", 2);
  house.waitUntilBack();
  EXPECT_EQ(published("activePlan"), planText(3000)); // It is what the user wants, helper or not.
  say("enable");
  waitUntilLines("isHelperActive: yes", 2);
  waitUntil("fans that are held again", [this] { return house.isEveryFanHeld(); });
}

TEST_F(RunningApplication, KilledHelperLeavesNoFanHeldAndServesAgain) {
  startWithChildHelper();
  enableHelper();
  holdBothFans();
  const pid_t killed = house.helperProcess();
  ::kill(killed, SIGKILL);
  house.waitUntilBack();
  waitUntil("another helper", [&] {
    try {
      return house.helperProcess() != killed;
    } catch (const sdbus::Error&) {
      return false;
    }
  });
  say("manual 0 3500");
  waitUntil("fans that are held again", [this] { return house.isEveryFanHeld(); });
}

TEST_F(RunningApplication, PowerSourceChoosesThePreset) {
  const auto upower = startUPowerOn(house.bus(), R"({"OnBattery": false})");
  const auto setOnBattery = [&](bool isOnBattery) {
    upower->control("UpdateProperties", upowerObject.interface,
                    Properties{{"OnBattery", sdbus::Variant(isOnBattery)}});
  };
  startWithChildHelper();
  waitUntilPublished("powerSource", "ac");
  say("auto-switch Quiet Max");
  waitUntilPublished("activePreset", "Max");
  setOnBattery(true);
  waitUntilPublished("powerSource", "battery");
  waitUntilPublished("activePreset", "Quiet");
  setOnBattery(false);
  waitUntilPublished("activePreset", "Max");
  say("auto-switch off");
  waitUntil("switching off", [this] { return published("autoSwitch").find("false") != std::string::npos; });
  setOnBattery(true);
  waitUntilPublished("powerSource", "battery");
  EXPECT_EQ(published("activePreset"), "Max");
}

struct WayToQuit {
  const char* name;
  std::function<void(const Program&, const CommandPipe&)> quit;
};

using Options = std::vector<std::string>;

class QuittingApplication : public RunningApplication,
                            public testing::WithParamInterface<std::tuple<WayToQuit, Options>> {
protected:
  QuittingApplication() { options = std::get<Options>(GetParam()); }
};

TEST_P(QuittingApplication, GivesTheFansBackAndKeepsWhatTheUserWants) {
  MockSystemd systemd(house.bus()); // A helper that stays when the application goes.
  systemd.unitIs("enabled");
  const auto helper = house.startHelper();
  start();
  holdBothFans();
  std::get<WayToQuit>(GetParam()).quit(*application, commands);
  const Ended ended = application->wait();
  EXPECT_EQ(ended.status, 0);
  house.waitUntilBack();
  // Asked for, not by the watchdog: that one would have left its reason.
  EXPECT_FALSE(Peer(house.bus().address()).state().contains("lastError"));
  start();
  EXPECT_EQ(published("activePlan"), planText(3000));
  waitUntil("fans that are held again", [this] { return house.isEveryFanHeld(); });
}

std::string nameOfWay(const testing::TestParamInfo<std::tuple<WayToQuit, Options>>& combination) {
  const auto& [way, options] = combination.param;
  return std::string(way.name) + (options.size() > 1 ? "WithTwoThreads" : "WithOneThread");
}

INSTANTIATE_TEST_SUITE_P(
    Ways, QuittingApplication,
    testing::Combine(
        testing::Values(WayToQuit{"Word",
                                  [](const Program&, const CommandPipe& pipe) { pipe.write(" quit "); }},
                        WayToQuit{"Terminate", [](const Program& program,
                                                  const CommandPipe&) { program.signal(SIGTERM); }},
                        WayToQuit{"EndOfTheSession", [](const Program& program,
                                                        const CommandPipe&) { program.signal(SIGHUP); }}),
        testing::Values(Options{"--headless"}, Options{"--headless", "--engine-thread"})),
    nameOfWay);

TEST_F(RunningApplication, LinesThatNobodyReadsAreLostAndNothingElse) {
  std::ofstream(settings() / "plan.json") << planText(3000);
  MockSystemd systemd(house.bus());
  systemd.unitIs("enabled");
  const auto helper = house.startHelper();
  Program deafened("ventolith", options, environment(), {.in = commands.file(), .isOutBroken = true});
  waitUntil("fans that are held", [this] { return house.isEveryFanHeld(); });
  deafened.signal(SIGTERM);
  EXPECT_EQ(deafened.wait().status, 0);
  house.waitUntilBack();
}

TEST_F(RunningApplication, BusThatStandsStillHoldsUpNeitherReadingsNorTheEnd) {
  house.bus().signal(SIGSTOP);
  start(); // Waits for a reading.
  say("quit");
  EXPECT_EQ(application->wait().status, 0);
  house.bus().signal(SIGCONT);
}

TEST_F(RunningApplication, KilledApplicationTakesItsChildAlongAndItsFansBack) {
  startWithChildHelper();
  enableHelper();
  holdBothFans();
  application->signal(SIGKILL);
  EXPECT_EQ(application->wait().status, 128 + SIGKILL);
  house.waitUntilBack();
}

TEST_F(RunningApplication, WrongCommandsAreAnsweredAndChangeNothing) {
  start();
  const std::vector<std::pair<std::string, std::string>> answers{
      {"dance", "error: there is no command \"dance\"; \"help\" lists them"},
      {"enable now", "error: \"now\" is too much"},
      {"manual 7 3000", "error: there is no fan 7"},
      {"manual 0 fast", "error: \"fast\" is no speed"},
      {"preset Arctic", "error: there is no preset \"Arctic\""},
      {"plan " + home_.path().string() + "/none.json",
       "error: " + home_.path().string() + "/none.json: No such file or directory"},
  };
  for (const auto& [command, answer] : answers) {
    say(command);
    waitUntilLine(answer);
  }
  EXPECT_EQ(linesOf("activePlan: "), 1);
}

TEST_F(RunningApplication, LineThatIsTooLongIsRefusedAndTheNextOneObeyed) {
  start();
  say(std::string(5000, 'x'));
  waitUntilLine("error: a line has more than 4096 bytes");
  say("dashboard shown");
  waitUntilLine("isDashboardVisible: yes");
}

TEST_F(RunningApplication, StartsWithDamagedFilesAndLeavesTheRest) {
  std::ofstream(settings() / "plan.json") << planText(3000);
  std::ofstream(settings() / "presets.json") << "[{]";
  std::ofstream(settings() / "autoswitch.json") << std::string(1 << 16, '[');
  ASSERT_EQ(::mkfifo((settings() / "active.json").c_str(), 0600), 0);
  start();
  EXPECT_EQ(published("activePlan"), planText(3000));
  EXPECT_EQ(published("activePreset"), "none");
  waitUntilPublished("presets", "Quiet, Balanced, Max"); // Seeded anew.
}

} // namespace

} // namespace ventolith::e2e
