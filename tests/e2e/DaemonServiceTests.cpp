// The helper's unit, and a systemd in software that keeps it.
#include "e2e/MockPeer.h"
#include "e2e/PrivateBus.h"
#include "e2e/ServiceLoop.h"
#include "platform/linux/service/SystemdDaemonService.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::e2e {

namespace {

using helper::DaemonStatus;
using platform::statusOfUnitFile;
using namespace std::chrono_literals;
using Error = helper::DaemonService::ErrorText;
using Calls = std::vector<std::string>;

const MockedObject systemdObject{.name = "org.freedesktop.systemd1",
                                 .path = "/org/freedesktop/systemd1",
                                 .interface = "org.freedesktop.systemd1.Manager"};
const std::string jobPath = "/org/freedesktop/systemd1/job/7";
const std::string unit = "ventolith-helper.service";

std::string raise(const std::string& error) {
  return "raise dbus.exceptions.DBusException('because', name='" + error + "')";
}

TEST(SystemdUnitFile, EachStateIsAStatus) {
  const std::vector<std::pair<std::string, DaemonStatus>> expected{
      {"enabled", DaemonStatus::enabled},
      {"enabled-runtime", DaemonStatus::enabled},
      {"alias", DaemonStatus::enabled},
      {"static", DaemonStatus::enabled},
      {"generated", DaemonStatus::enabled},
      {"transient", DaemonStatus::enabled},
      {"disabled", DaemonStatus::notRegistered},
      {"indirect", DaemonStatus::notRegistered},
      {"linked", DaemonStatus::notRegistered},
      {"linked-runtime", DaemonStatus::notRegistered},
      {"masked", DaemonStatus::requiresApproval},
      {"masked-runtime", DaemonStatus::requiresApproval},
      {"bad", DaemonStatus::notFound},
      {"a state of years to come", DaemonStatus::notFound},
      {"", DaemonStatus::notFound},
  };
  for (const auto& [state, status] : expected)
    EXPECT_EQ(statusOfUnitFile(state), status) << state;
}

struct SystemdHelper : testing::Test {
  void startSystemd() {
    systemd = std::make_unique<MockPeer>(privateBus, systemdObject);
    systemd->answer("Subscribe", "", "", "");
    systemd->answer("Reload", "", "", "");
    systemd->answer("EnableUnitFiles", "asbb", "ba(sss)", "self.unit_file = 'enabled'; ret = (True, [])");
    systemd->answer("DisableUnitFiles", "asb", "a(sss)", "self.unit_file = 'disabled'; ret = []");
    unitFileIs("disabled");
    answerByJob("StartUnit");
    answerByJob("StopUnit");
  }
  void unitFileIs(const std::string& state) {
    systemd->answer("GetUnitFileState", "s", "s", "ret = getattr(self, 'unit_file', '" + state + "')");
  }
  /// Leaves the end of the job to the test.
  void answerByJob(const std::string& method) {
    systemd->answer(method, "ss", "o", "ret = '" + jobPath + "'");
  }
  /// The job's end is told before the job.
  void answerByEndOfJob(const std::string& method, const std::string& result) {
    systemd->answer(
        method, "ss", "o",
        fmt::format("self.EmitSignal('', 'JobRemoved', 'uoss', [7, '{0}', args[0], '{1}'])\nret = '{0}'",
                    jobPath, result));
  }
  void tellOfEnd(const std::string& result, const std::string& ofUnit = unit,
                 const std::string& ofJob = jobPath) {
    systemd->emit("JobRemoved", "uoss", std::uint32_t{7}, sdbus::ObjectPath(ofJob), ofUnit, result);
  }
  void untilCalled(const std::string& method, std::size_t count = 1) {
    loop.until(method, [&] { return systemd->count(method) == count; });
  }

  DaemonStatus status() { return loop.await(service.status()); }
  [[nodiscard]] std::size_t questions() const { return systemd->count("GetUnitFileState"); }

  PrivateBus privateBus;
  ServiceLoop loop;
  platform::Bus bus{loop.executor(), privateBus.address()};
  platform::SystemdDaemonService service{loop.executor(), bus, loop.clock()};
  std::unique_ptr<MockPeer> systemd;
};

TEST_F(SystemdHelper, StatusIsTheUnitFiles) {
  startSystemd();
  unitFileIs("masked");
  EXPECT_EQ(status(), DaemonStatus::requiresApproval);
  EXPECT_EQ(systemd->calls().back(), "GetUnitFileState \"" + unit + "\"");
}

TEST_F(SystemdHelper, AUnitThatIsNotInstalledIsNotFound) {
  startSystemd();
  systemd->answer("GetUnitFileState", "s", "s", raise("org.freedesktop.DBus.Error.FileNotFound"));
  EXPECT_EQ(status(), DaemonStatus::notFound);
  EXPECT_EQ(status(), DaemonStatus::notFound);
  EXPECT_EQ(questions(), 1U);
}

TEST_F(SystemdHelper, WithoutSystemdItIsNotFound) {
  EXPECT_EQ(status(), DaemonStatus::notFound);
}

TEST_F(SystemdHelper, WithoutABusItIsNotFound) {
  privateBus.kill();
  EXPECT_EQ(status(), DaemonStatus::notFound);
  EXPECT_TRUE(loop.await(service.registerDaemon()));
  EXPECT_TRUE(loop.await(service.unregisterDaemon()));
}

TEST_F(SystemdHelper, ASystemdThatComesLaterIsAsked) {
  EXPECT_EQ(status(), DaemonStatus::notFound);
  startSystemd();
  loop.until("its word", [&] { return status() == DaemonStatus::notRegistered; });
}

TEST_F(SystemdHelper, StatusIsAskedForOnce) {
  startSystemd();
  for (int question = 0; question < 5; ++question)
    EXPECT_EQ(status(), DaemonStatus::notRegistered);
  EXPECT_EQ(questions(), 1U);
  EXPECT_EQ(systemd->count("Subscribe"), 1U);
}

TEST_F(SystemdHelper, AFailureIsNotKept) {
  startSystemd();
  systemd->answer("GetUnitFileState", "s", "s", raise("org.freedesktop.DBus.Error.NoMemory"));
  EXPECT_EQ(status(), DaemonStatus::notFound);
  unitFileIs("enabled");
  EXPECT_EQ(status(), DaemonStatus::enabled);
}

TEST_F(SystemdHelper, StatusIsAskedAgainWhenUnitFilesChanged) {
  startSystemd();
  status();
  unitFileIs("enabled");
  systemd->emit("UnitFilesChanged", "");
  loop.until("the change", [&] { return status() == DaemonStatus::enabled; });
  EXPECT_EQ(questions(), 2U);
}

TEST_F(SystemdHelper, StatusIsAskedAgainWhenSystemdReloaded) {
  startSystemd();
  status();
  unitFileIs("enabled");
  systemd->emit("Reloading", "b", false);
  loop.until("the change", [&] { return status() == DaemonStatus::enabled; });
  EXPECT_EQ(questions(), 2U);
}

TEST_F(SystemdHelper, AnotherSystemdIsAskedAndSubscribedToAgain) {
  startSystemd();
  status();
  systemd.reset();
  waitUntilOwned(privateBus, systemdObject.name, false);
  startSystemd();
  unitFileIs("enabled");
  loop.until("the other one's word", [&] { return status() == DaemonStatus::enabled; });
  EXPECT_EQ(systemd->count("Subscribe"), 1U);
}

TEST_F(SystemdHelper, AnotherBusIsAsked) {
  startSystemd();
  status();
  privateBus.restart();
  startSystemd();
  unitFileIs("enabled");
  loop.until("the other one's word", [&] { return status() == DaemonStatus::enabled; });
}

TEST_F(SystemdHelper, RegisteringEnablesAndStartsAndWaitsUntilItRuns) {
  startSystemd();
  EXPECT_EQ(status(), DaemonStatus::notRegistered);
  const auto registering = loop.begin(service.registerDaemon());
  untilCalled("StartUnit");
  loop.runFor(50ms);
  EXPECT_FALSE(registering->has_value());
  tellOfEnd("done");
  EXPECT_EQ(loop.end(registering), Error());

  const Calls calls = systemd->calls();
  ASSERT_GE(calls.size(), 3U);
  EXPECT_EQ(Calls(calls.end() - 4, calls.end() - 1),
            (Calls{"EnableUnitFiles [\"" + unit + "\"] False False", "Reload",
                   "StartUnit \"" + unit + "\" \"replace\""}));
  EXPECT_EQ(status(), DaemonStatus::enabled);
}

TEST_F(SystemdHelper, AStartThatEndedBeforeItWasToldIsNotMissed) {
  startSystemd();
  answerByEndOfJob("StartUnit", "done");
  EXPECT_EQ(loop.await(service.registerDaemon()), Error());
}

TEST_F(SystemdHelper, OtherJobsEndNothing) {
  startSystemd();
  const auto registering = loop.begin(service.registerDaemon());
  untilCalled("StartUnit");
  tellOfEnd("done", "another.service", "/org/freedesktop/systemd1/job/8");
  tellOfEnd("canceled", unit, "/org/freedesktop/systemd1/job/6");
  loop.runFor(50ms);
  EXPECT_FALSE(registering->has_value());
  tellOfEnd("done");
  EXPECT_EQ(loop.end(registering), Error());
}

TEST_F(SystemdHelper, AStartThatFailsIsTold) {
  startSystemd();
  answerByEndOfJob("StartUnit", "failed");
  const Error error = loop.await(service.registerDaemon());
  ASSERT_TRUE(error);
  EXPECT_NE(error->find("failed"), std::string::npos) << *error;
  EXPECT_EQ(status(), DaemonStatus::enabled) << "it is registered all the same";
}

TEST_F(SystemdHelper, AStartThatTakesThirtySecondsIsToldAndLeft) {
  startSystemd();
  const auto registering = loop.begin(service.registerDaemon());
  untilCalled("StartUnit");
  loop.until("the wait", [&] { return loop.clock().sleeperCount() == 1; });
  loop.clock().advance(29s);
  EXPECT_FALSE(registering->has_value());
  loop.clock().advance(1s);
  EXPECT_TRUE(loop.end(registering));
}

TEST_F(SystemdHelper, ABusThatGoesEndsTheWait) {
  startSystemd();
  const auto registering = loop.begin(service.registerDaemon());
  untilCalled("StartUnit");
  loop.until("the wait", [&] { return loop.clock().sleeperCount() == 1; });
  privateBus.kill();
  EXPECT_TRUE(loop.end(registering));
}

struct EachRefusal : SystemdHelper, testing::WithParamInterface<std::string> {};

TEST_P(EachRefusal, RequiresApprovalUntilARegistrationSucceeds) {
  startSystemd();
  systemd->answer("EnableUnitFiles", "asbb", "ba(sss)", raise(GetParam()));
  const Error error = loop.await(service.registerDaemon());
  ASSERT_TRUE(error);
  EXPECT_NE(error->find("because"), std::string::npos) << *error;
  EXPECT_EQ(status(), DaemonStatus::requiresApproval);
  EXPECT_EQ(status(), DaemonStatus::requiresApproval);
  EXPECT_EQ(systemd->count("StartUnit"), 0U);

  systemd->answer("EnableUnitFiles", "asbb", "ba(sss)", "ret = (True, [])");
  answerByEndOfJob("StartUnit", "done");
  answerByEndOfJob("StopUnit", "done");
  EXPECT_EQ(loop.await(service.registerDaemon()), Error());
  EXPECT_EQ(loop.await(service.unregisterDaemon()), Error());
  EXPECT_EQ(status(), DaemonStatus::notRegistered) << "an earlier refusal says nothing any more";
}

INSTANTIATE_TEST_SUITE_P(SystemdHelper, EachRefusal,
                         testing::Values("org.freedesktop.DBus.Error.InteractiveAuthorizationRequired",
                                         "org.freedesktop.DBus.Error.AccessDenied",
                                         "org.freedesktop.PolicyKit1.Error.Cancelled",
                                         "org.freedesktop.PolicyKit1.Error.NotAuthorized"),
                         [](const auto& refusal) {
                           return refusal.param.substr(refusal.param.rfind('.') + 1);
                         });

TEST_F(SystemdHelper, AFailureToRegisterIsNoRefusal) {
  startSystemd();
  systemd->answer("EnableUnitFiles", "asbb", "ba(sss)", raise("org.freedesktop.DBus.Error.FileNotFound"));
  EXPECT_TRUE(loop.await(service.registerDaemon()));
  EXPECT_EQ(status(), DaemonStatus::notRegistered);
}

TEST_F(SystemdHelper, AfterARefusalAnAdministratorCanEnableIt) {
  startSystemd();
  systemd->answer("EnableUnitFiles", "asbb", "ba(sss)", raise("org.freedesktop.DBus.Error.AccessDenied"));
  loop.await(service.registerDaemon());
  EXPECT_EQ(status(), DaemonStatus::requiresApproval);
  unitFileIs("enabled");
  systemd->emit("UnitFilesChanged", "");
  loop.until("the change", [&] { return status() == DaemonStatus::enabled; });
}

TEST_F(SystemdHelper, RegisteringWhatIsRegisteredLeavesItEnabled) {
  startSystemd();
  answerByEndOfJob("StartUnit", "done");
  unitFileIs("enabled");
  EXPECT_EQ(loop.await(service.registerDaemon()), Error());
  EXPECT_EQ(status(), DaemonStatus::enabled);
}

TEST_F(SystemdHelper, UnregisteringDisablesAndStopsAndWaitsUntilItIsGone) {
  startSystemd();
  unitFileIs("enabled");
  const auto unregistering = loop.begin(service.unregisterDaemon());
  untilCalled("StopUnit");
  const Calls calls = systemd->calls();
  EXPECT_EQ(Calls(calls.end() - 3, calls.end() - 1),
            (Calls{"DisableUnitFiles [\"" + unit + "\"] False", "Reload"}));
  loop.runFor(50ms);
  EXPECT_FALSE(unregistering->has_value());
  tellOfEnd("done");
  EXPECT_EQ(loop.end(unregistering), Error());
  EXPECT_EQ(status(), DaemonStatus::notRegistered);
}

TEST_F(SystemdHelper, AHelperThatDoesNotRunIsDisabled) {
  startSystemd();
  systemd->answer("StopUnit", "ss", "o", raise("org.freedesktop.systemd1.NoSuchUnit"));
  EXPECT_EQ(loop.await(service.unregisterDaemon()), Error());
  EXPECT_EQ(systemd->count("DisableUnitFiles"), 1U);
}

TEST_F(SystemdHelper, ARefusedDisablingIsToldAndStopsNothing) {
  startSystemd();
  unitFileIs("enabled");
  systemd->answer("DisableUnitFiles", "asb", "a(sss)", raise("org.freedesktop.DBus.Error.AccessDenied"));
  EXPECT_TRUE(loop.await(service.unregisterDaemon()));
  EXPECT_EQ(systemd->count("StopUnit"), 0U);
  EXPECT_EQ(status(), DaemonStatus::enabled);
}

TEST_F(SystemdHelper, EveryChangeLetsAPersonBeAsked) {
  startSystemd();
  answerByEndOfJob("StartUnit", "done");
  answerByEndOfJob("StopUnit", "done");
  Program monitor("/usr/bin/busctl",
                  {"--address=" + privateBus.address(), "monitor", "--json=short", systemdObject.name},
                  Environment());
  const auto callOf = [&](const std::string& method) {
    for (const std::string& line : monitor.outLines()) {
      if (line.find("method_call") != line.npos && line.find('"' + method + '"') != line.npos) return line;
    }
    return std::string();
  };
  loop.until("the monitor", [&] {
    loop.await(service.status());
    systemd->emit("UnitFilesChanged", "");
    return !callOf("GetUnitFileState").empty();
  });
  loop.await(service.registerDaemon());
  loop.await(service.unregisterDaemon());
  for (const std::string method :
       {"EnableUnitFiles", "Reload", "StartUnit", "StopUnit", "DisableUnitFiles"}) {
    loop.until(method, [&] { return !callOf(method).empty(); });
    EXPECT_NE(callOf(method).find("\"flags\":4"), std::string::npos) << callOf(method);
  }
}

TEST_F(SystemdHelper, TheUserIsToldHowItIsEnabled) {
  testing::internal::CaptureStderr();
  service.openSystemSettings();
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("systemctl enable --now ventolith-helper\n"), std::string::npos) << said;
}

} // namespace

} // namespace ventolith::e2e
