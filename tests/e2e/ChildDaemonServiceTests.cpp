// The helper as a child, played by shell scripts. What has to wait for seconds waits in virtual time.
#include "e2e/EnvironmentVariable.h"
#include "e2e/Program.h"
#include "e2e/ServiceLoop.h"
#include "platform/linux/service/ChildDaemonService.h"
#include "platform/linux/service/ChildProcess.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace ventolith::e2e {

namespace {

using helper::DaemonStatus;
using platform::ChildDaemonService;
using platform::ChildProcess;
using namespace std::chrono_literals;
using Error = helper::DaemonService::ErrorText;

const std::string sayReady = "systemd-notify --ready --no-block\n";
const std::string live = "exec sleep 60\n";

bool exists(pid_t process) {
  return ::kill(process, 0) == 0;
}

struct ChildHelper : testing::Test {
  /// Writes the helper: a script, which first of all notes its process and its arguments.
  void play(const std::string& script) const {
    folder.write("helper", "#!/bin/sh\necho $$ $* $VENTOLITH_BUS >> " + log() + "\n" + script);
    ASSERT_EQ(::chmod(program().c_str(), 0700), 0);
  }

  [[nodiscard]] std::string program() const { return (folder.path() / "helper").string(); }
  [[nodiscard]] std::string log() const { return (folder.path() / "log").string(); }
  [[nodiscard]] std::vector<std::string> starts() const { return readLines(log()); }
  [[nodiscard]] pid_t lastProcess() const { return std::stoi(starts().back()); }

  void untilStarts(std::size_t count) {
    loop.until("another start", [&] { return starts().size() >= count; });
  }
  void untilSomebodySleeps() {
    loop.until("a wait", [&] { return loop.clock().sleeperCount() > 0; });
  }

  DaemonStatus status() { return loop.await(service->status()); }

  /// Ends the child as a crash does, and waits until the service has noticed.
  void crash() {
    ::kill(lastProcess(), SIGKILL);
    untilSomebodySleeps();
  }

  TemporaryFolder folder;
  ServiceLoop loop;
  std::unique_ptr<ChildDaemonService> service =
      std::make_unique<ChildDaemonService>(loop.executor(), loop.clock(), program());
};

TEST_F(ChildHelper, RegisteringStartsItForThisUserAndOnThisBus) {
  const EnvironmentVariable bus("VENTOLITH_BUS", "unix:path=/a/bus");
  play(sayReady + live);
  EXPECT_EQ(loop.await(service->registerDaemon()), Error());
  EXPECT_EQ(starts(), std::vector{std::to_string(lastProcess()) + " --allow-same-user unix:path=/a/bus"});
  EXPECT_EQ(status(), DaemonStatus::enabled);
}

TEST_F(ChildHelper, IsNotRegisteredAtFirst) {
  play(live);
  EXPECT_EQ(status(), DaemonStatus::notRegistered);
}

TEST_F(ChildHelper, IsNotFoundWithoutItsProgram) {
  EXPECT_EQ(status(), DaemonStatus::notFound);
}

TEST_F(ChildHelper, RegisteringAProgramThatIsNotThereTellsWhy) {
  const Error error = loop.await(service->registerDaemon());
  ASSERT_TRUE(error);
  EXPECT_NE(error->find("No such file"), std::string::npos) << *error;
  EXPECT_EQ(status(), DaemonStatus::notFound);
}

TEST_F(ChildHelper, RegisteringWhatIsNoProgramTellsWhy) {
  folder.write("helper", "no program");
  const Error error = loop.await(service->registerDaemon());
  ASSERT_TRUE(error);
  EXPECT_NE(error->find("Permission denied"), std::string::npos) << *error;
  EXPECT_EQ(status(), DaemonStatus::notRegistered);
}

TEST_F(ChildHelper, RegisteringEndsWhenItIsReady) {
  const std::string sign = (folder.path() / "sign").string();
  play("while [ ! -e " + sign + " ]; do sleep 0.01; done\n" + sayReady + live);
  const auto registering = loop.begin(service->registerDaemon());
  untilStarts(1);
  loop.runFor(50ms);
  EXPECT_FALSE(registering->has_value());
  folder.write("sign", "");
  EXPECT_EQ(loop.end(registering), Error());
}

TEST_F(ChildHelper, NotReadyAfterTenSecondsIsToldAndKept) {
  play(live);
  const auto registering = loop.begin(service->registerDaemon());
  loop.clock().advance(9900ms);
  EXPECT_FALSE(registering->has_value());
  loop.clock().advance(100ms);
  ASSERT_TRUE(loop.end(registering));
  EXPECT_EQ(status(), DaemonStatus::enabled);
}

TEST_F(ChildHelper, RegisteringTwiceStartsOne) {
  play(sayReady + live);
  loop.await(service->registerDaemon());
  EXPECT_EQ(loop.await(service->registerDaemon()), Error());
  EXPECT_EQ(starts().size(), 1U);
}

TEST_F(ChildHelper, AfterACrashItIsStartedAgainInASecond) {
  play(sayReady + live);
  loop.await(service->registerDaemon());
  crash();
  loop.clock().advance(999ms);
  loop.runFor(50ms);
  EXPECT_EQ(starts().size(), 1U);
  EXPECT_EQ(status(), DaemonStatus::enabled);
  loop.clock().advance(1ms);
  untilStarts(2);
}

TEST_F(ChildHelper, ThreeShortLivesInARowEndIt) {
  play("exit 3\n");
  testing::internal::CaptureStderr();
  const auto registering = loop.begin(service->registerDaemon());
  for (std::size_t start = 1; start < 3; ++start) {
    loop.until("the wait before another start", [&] { return loop.clock().sleeperCount() == 2; });
    loop.clock().advance(1s);
    untilStarts(start + 1);
  }
  EXPECT_TRUE(loop.end(registering));
  loop.clock().advance(10min);
  loop.runFor(50ms);
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("status 3, for the third time in a row"), std::string::npos) << said;
  EXPECT_EQ(starts().size(), 3U);
  EXPECT_EQ(status(), DaemonStatus::notRegistered);
}

TEST_F(ChildHelper, ALongLifeForgivesShortOnes) {
  play(sayReady + live);
  loop.await(service->registerDaemon());
  std::size_t count = 1;
  for (const auto life : {0s, 0s, 5s, 0s, 0s}) {
    loop.clock().advance(life);
    crash();
    loop.clock().advance(1s);
    untilStarts(++count);
  }
  EXPECT_EQ(status(), DaemonStatus::enabled);
}

TEST_F(ChildHelper, CanBeRegisteredAfterItGaveUp) {
  play("exit 3\n");
  const auto registering = loop.begin(service->registerDaemon());
  while (!registering->has_value()) {
    loop.runFor(10ms);
    loop.clock().advance(100ms);
  }
  play(sayReady + live);
  EXPECT_EQ(loop.await(service->registerDaemon()), Error());
  EXPECT_EQ(status(), DaemonStatus::enabled);
}

TEST_F(ChildHelper, UnregisteringEndsItFirst) {
  play(sayReady + live);
  loop.await(service->registerDaemon());
  const pid_t process = lastProcess();
  EXPECT_EQ(loop.await(service->unregisterDaemon()), Error());
  EXPECT_FALSE(exists(process));
  EXPECT_EQ(status(), DaemonStatus::notRegistered);
  EXPECT_EQ(loop.clock().sleeperCount(), 0U) << "it must not be started again";
}

TEST_F(ChildHelper, UnregisteringWhatIsNotRegisteredIsNothing) {
  play(live);
  EXPECT_EQ(loop.await(service->unregisterDaemon()), Error());
  EXPECT_EQ(starts().size(), 0U);
}

TEST_F(ChildHelper, OneThatDoesNotListenIsKilledAfterTenSeconds) {
  play("trap '' TERM\n" + sayReady + live);
  loop.await(service->registerDaemon());
  const pid_t process = lastProcess();
  const auto unregistering = loop.begin(service->unregisterDaemon());
  loop.clock().advance(9900ms);
  loop.runFor(50ms);
  EXPECT_TRUE(exists(process));
  loop.clock().advance(100ms);
  EXPECT_EQ(loop.end(unregistering), Error());
  EXPECT_FALSE(exists(process));
}

TEST_F(ChildHelper, UnregisteringBeforeARestartPreventsIt) {
  play(sayReady + live);
  loop.await(service->registerDaemon());
  crash();
  loop.await(service->unregisterDaemon());
  loop.clock().advance(1h);
  loop.runFor(50ms);
  EXPECT_EQ(starts().size(), 1U);
}

TEST_F(ChildHelper, AnotherIsStartedOnlyWhenTheFirstHasEnded) {
  play("trap '' TERM\n" + sayReady + live);
  loop.await(service->registerDaemon());
  const pid_t first = lastProcess();
  const auto unregistering = loop.begin(service->unregisterDaemon());
  const auto registering = loop.begin(service->registerDaemon());
  loop.runFor(50ms);
  EXPECT_EQ(starts().size(), 1U);
  loop.clock().advance(10s);
  EXPECT_EQ(loop.end(registering), Error());
  EXPECT_FALSE(exists(first));
  EXPECT_EQ(starts().size(), 2U);
  ::kill(lastProcess(), SIGKILL); // It listens to nothing else.
}

TEST_F(ChildHelper, EndsWithTheService) {
  play(sayReady + live);
  loop.await(service->registerDaemon());
  const pid_t process = lastProcess();
  service.reset();
  loop.until("the child's end", [&] { return !exists(process); });
}

TEST_F(ChildHelper, EndsWithTheThreadThatStartedIt) {
  play(live);
  std::optional<ChildProcess> child;
  std::thread([&] { child.emplace(loop.executor(), ChildProcess::Launch{.arguments = {program()}}); }).join();
  EXPECT_EQ(loop.await(child->ended()), "was ended by signal 15");
}

} // namespace

} // namespace ventolith::e2e
