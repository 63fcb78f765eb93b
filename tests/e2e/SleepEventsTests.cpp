// Sleep and wake-up as logind tells them.
#include "e2e/FullStandardError.h"
#include "e2e/MockPeer.h"
#include "e2e/PrivateBus.h"
#include "e2e/ServiceLoop.h"
#include "platform/linux/service/LogindSleepEvents.h"
#include "runtime/StopToken.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::e2e {

namespace {

using namespace std::chrono_literals;
using Log = std::vector<std::string>;

const MockedObject logindObject{.name = "org.freedesktop.login1",
                                .path = "/org/freedesktop/login1",
                                .interface = "org.freedesktop.login1.Manager"};

/// What, who, why, mode, user, process.
using Inhibitor =
    sdbus::Struct<std::string, std::string, std::string, std::string, std::uint32_t, std::uint32_t>;

/// logind's: an inhibitor is on its list until the descriptor that it gave for it is closed everywhere.
std::vector<Inhibitor> inhibitors(const MockPeer& logind) {
  std::vector<Inhibitor> all;
  logind.proxy().callMethod("ListInhibitors").onInterface(logindObject.interface).storeResultsTo(all);
  return all;
}

/// Takes every question for leave to delay sleep, and answers none.
class HangingLogind {
public:
  explicit HangingLogind(const PrivateBus& bus)
      : connection_(connectTo(bus)), object_(sdbus::createObject(*connection_, logindObject.path)) {
    object_->registerMethod("Inhibit")
        .onInterface(logindObject.interface)
        .implementedAs([this](sdbus::Result<sdbus::UnixFd>&& answer, const std::string&, const std::string&,
                              const std::string&, const std::string&) {
          questions_.push_back(std::move(answer));
          ++timesAsked_;
        });
    object_->registerSignal("PrepareForSleep").onInterface(logindObject.interface).withParameters<bool>();
    object_->finishRegistration();
    connection_->requestName(logindObject.name);
    connection_->enterEventLoopAsync();
  }
  ~HangingLogind() { connection_->leaveEventLoop(); }
  HangingLogind(const HangingLogind&) = delete;
  HangingLogind& operator=(const HangingLogind&) = delete;

  [[nodiscard]] int timesAsked() const { return timesAsked_; }
  void tellOfSleep(bool begins) {
    object_->emitSignal("PrepareForSleep").onInterface(logindObject.interface).withArguments(begins);
  }

private:
  std::atomic<int> timesAsked_ = 0; // Counted in the connection's own thread.
  std::unique_ptr<sdbus::IConnection> connection_;
  std::unique_ptr<sdbus::IObject> object_;
  std::vector<sdbus::Result<sdbus::UnixFd>> questions_; // Go before the connection.
};

struct SleepEvents : testing::Test {
  void startLogind() { logind = std::make_unique<MockPeer>(privateBus, logindObject, "logind"); }
  /// One that is in the middle of it, as its property says.
  void startLogindThatSleeps() {
    logind = std::make_unique<MockPeer>(
        privateBus, logindObject, "logind",
        std::vector<std::string>{"--parameters", R"({"PreparingForSleep": true})"});
  }
  void restartLogind() {
    logind.reset();
    waitUntilOwned(privateBus, logindObject.name, false);
    startLogind();
  }

  void observe() {
    events = std::make_unique<platform::LogindSleepEvents>(loop.executor(), bus);
    events->observe(
        {.willSleep = [this] { return willSleep(); }, .didWake = [this] { log.push_back("awake"); }});
  }

  runtime::Async<void> willSleep() {
    log.push_back("going to sleep");
    while (isFanStillHeld)
      co_await loop.clock().sleep(100ms, {});
    log.push_back("ready to sleep");
  }

  void tellOfSleep(bool begins) const { logind->emit("PrepareForSleep", "b", begins); }
  void untilInhibitors(std::size_t count) {
    loop.until("so many inhibitors", [&] { return inhibitors(*logind).size() == count; });
  }
  void untilLogged(const Log& expected) {
    loop.until("the events", [&] { return log.size() >= expected.size(); });
    EXPECT_EQ(log, expected);
  }

  PrivateBus privateBus;
  ServiceLoop loop;
  platform::Bus bus{loop.executor(), privateBus.address()};
  std::unique_ptr<MockPeer> logind;
  std::unique_ptr<platform::LogindSleepEvents> events;
  Log log;
  bool isFanStillHeld = false;
};

TEST_F(SleepEvents, SleepIsAskedToWaitFromTheStart) {
  startLogind();
  observe();
  untilInhibitors(1);
  const Inhibitor taken = inhibitors(*logind).front();
  EXPECT_EQ(std::get<0>(taken), "sleep");
  EXPECT_EQ(std::get<1>(taken), "Ventolith");
  EXPECT_EQ(std::get<3>(taken), "delay");
}

TEST_F(SleepEvents, SleepWaitsUntilTheFansAreBack) {
  startLogind();
  observe();
  untilInhibitors(1);
  isFanStillHeld = true;
  tellOfSleep(true);
  untilLogged({"going to sleep"});
  loop.runFor(50ms);
  EXPECT_EQ(inhibitors(*logind).size(), 1U);

  isFanStillHeld = false;
  loop.clock().advance(100ms);
  untilInhibitors(0);
  EXPECT_EQ(log, (Log{"going to sleep", "ready to sleep"}));
}

TEST_F(SleepEvents, TheNextSleepIsAskedToWaitToo) {
  startLogind();
  observe();
  untilInhibitors(1);
  tellOfSleep(true);
  untilInhibitors(0);
  tellOfSleep(false);
  untilLogged({"going to sleep", "ready to sleep", "awake"});
  untilInhibitors(1);
  tellOfSleep(true);
  untilInhibitors(0);
}

TEST_F(SleepEvents, ALogindThatNeverGivesLeaveHoldsUpNoEvent) {
  HangingLogind hanging(privateBus);
  observe();
  loop.until("the question for leave", [&] { return hanging.timesAsked() == 1; });
  hanging.tellOfSleep(true);
  untilLogged({"going to sleep", "ready to sleep"});
  hanging.tellOfSleep(false);
  untilLogged({"going to sleep", "ready to sleep", "awake"});
  hanging.tellOfSleep(true);
  untilLogged({"going to sleep", "ready to sleep", "awake", "going to sleep", "ready to sleep"});
}

TEST_F(SleepEvents, AWakeUpThatLogindDidNotLiveToTellIsToldByTheNext) {
  startLogind();
  observe();
  untilInhibitors(1);
  tellOfSleep(true);
  untilLogged({"going to sleep", "ready to sleep"});
  restartLogind();
  untilLogged({"going to sleep", "ready to sleep", "awake"});
  untilInhibitors(1);
}

TEST_F(SleepEvents, ALogindThatComesBackDuringTheSleepIsNoWakeUp) {
  startLogind();
  observe();
  untilInhibitors(1);
  tellOfSleep(true);
  untilLogged({"going to sleep", "ready to sleep"});
  logind.reset();
  waitUntilOwned(privateBus, logindObject.name, false);
  startLogindThatSleeps();
  loop.runFor(100ms);
  EXPECT_EQ(log, (Log{"going to sleep", "ready to sleep"}));
  tellOfSleep(false);
  untilLogged({"going to sleep", "ready to sleep", "awake"});
}

TEST_F(SleepEvents, WhoStartsWhileTheMachineGoesToSleepGoesToSleepToo) {
  startLogindThatSleeps();
  observe();
  untilLogged({"going to sleep", "ready to sleep"});
  untilInhibitors(0);
}

TEST_F(SleepEvents, AWakeUpWaitsForWhatIsDoneBeforeSleep) {
  startLogind();
  observe();
  untilInhibitors(1);
  isFanStillHeld = true;
  tellOfSleep(true);
  tellOfSleep(false);
  untilLogged({"going to sleep"});
  loop.runFor(50ms);
  isFanStillHeld = false;
  loop.clock().advance(100ms);
  untilLogged({"going to sleep", "ready to sleep", "awake"});
}

TEST_F(SleepEvents, AnotherLogindIsAskedAgain) {
  startLogind();
  observe();
  untilInhibitors(1);
  restartLogind();
  untilInhibitors(1);
  tellOfSleep(true);
  untilLogged({"going to sleep", "ready to sleep"});
  untilInhibitors(0);
}

TEST_F(SleepEvents, ALogindThatComesLaterIsFound) {
  observe();
  loop.runFor(50ms);
  startLogind();
  untilInhibitors(1);
}

TEST_F(SleepEvents, WithoutLogindNothingHappensAndNothingIsSaid) {
  testing::internal::CaptureStderr();
  observe();
  loop.runFor(100ms);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(log, Log{});
}

TEST_F(SleepEvents, WithoutABusNothingHappens) {
  privateBus.kill();
  EXPECT_NO_THROW(observe());
}

TEST_F(SleepEvents, ARefusalThatCannotBeReportedEndsNothing) {
  logind = std::make_unique<MockPeer>(privateBus, logindObject);
  logind->answer("Inhibit", "ssss", "h",
                 "raise dbus.exceptions.DBusException('no', name='org.freedesktop.DBus.Error.AccessDenied')");
  const FullStandardError full;
  observe();
  loop.until("the refusal", [&] { return logind->count("Inhibit") == 1; });
  tellOfSleep(true);
  untilLogged({"going to sleep", "ready to sleep"});
}

TEST_F(SleepEvents, ARefusalIsReportedAndSleepStillTold) {
  logind = std::make_unique<MockPeer>(privateBus, logindObject);
  logind->answer("Inhibit", "ssss", "h",
                 "raise dbus.exceptions.DBusException('no', name='org.freedesktop.DBus.Error.AccessDenied')");
  testing::internal::CaptureStderr();
  observe();
  loop.until("the refusal", [&] { return logind->count("Inhibit") == 1; });
  tellOfSleep(true);
  untilLogged({"going to sleep", "ready to sleep"});
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("sleep will not wait for the fans"), std::string::npos) << said;
}

TEST_F(SleepEvents, NobodyIsToldAndSleepIsFreeWhenTheyAreGone) {
  startLogind();
  observe();
  untilInhibitors(1);
  events.reset();
  untilInhibitors(0);
  tellOfSleep(true);
  loop.runFor(50ms);
  EXPECT_EQ(log, Log{});
}

} // namespace

} // namespace ventolith::e2e
