#include "helper/link/HelperManager.h"

#include "helper/link/Completion.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ventolith::helper {
namespace {

using runtime::Async;

/// What the test sees of a system's service, which the manager owns.
struct ServiceRecord {
  DaemonStatus status = DaemonStatus::notRegistered;
  DaemonStatus statusAfterRegistration = DaemonStatus::enabled;
  DaemonService::ErrorText registrationError;
  DaemonService::ErrorText unregistrationError;
  std::vector<std::string> log;
};

/// Answers as its record says, one step later.
class ScriptedService final : public DaemonService {
public:
  explicit ScriptedService(ServiceRecord& record) : record_(record) {}

  Async<DaemonStatus> status() override {
    co_await boost::asio::post(boost::asio::use_awaitable);
    co_return record_.status;
  }
  Async<ErrorText> registerDaemon() override {
    record_.log.emplace_back("register");
    co_await boost::asio::post(boost::asio::use_awaitable);
    if (!record_.registrationError) record_.status = record_.statusAfterRegistration;
    co_return record_.registrationError;
  }
  Async<ErrorText> unregisterDaemon() override {
    record_.log.emplace_back("unregister");
    co_await boost::asio::post(boost::asio::use_awaitable);
    if (!record_.unregistrationError) record_.status = DaemonStatus::notRegistered;
    co_return record_.unregistrationError;
  }
  void openSystemSettings() override { record_.log.emplace_back("settings"); }

private:
  ServiceRecord& record_;
};

class HelperManagerTest : public testing::Test {
protected:
  using Manager = std::shared_ptr<HelperManager>;
  using Field = HelperManagerField;
  using Fields = HelperManager::Fields;

  HelperManagerTest() { HelperManager::reportHelperStale(false); } // Which outlives a manager.
  ~HelperManagerTest() override { HelperManager::reportHelperStale(false); }

  Manager makeManager() {
    return time.clock.run(HelperManager::make(time.executor(), std::make_unique<ScriptedService>(record),
                                              [this](const std::string& text) { printed += text; }));
  }

  support::VirtualTime time;
  ServiceRecord record;
  std::string printed;
};
using Log = std::vector<std::string>;

TEST_F(HelperManagerTest, StartsWithTheStatusOfTheSystem) {
  record.status = DaemonStatus::requiresApproval;
  EXPECT_EQ(makeManager()->status(), DaemonStatus::requiresApproval);
}

TEST_F(HelperManagerTest, StartsWithTheStaleFlagThatWasReportedLast) {
  EXPECT_FALSE(makeManager()->isHelperStale());
  HelperManager::reportHelperStale(true);
  EXPECT_TRUE(makeManager()->isHelperStale());
  HelperManager::reportHelperStale(false);
  EXPECT_FALSE(makeManager()->isHelperStale());
}

TEST_F(HelperManagerTest, AReportReachesEveryManagerThatLives) {
  const auto one = makeManager();
  const auto other = makeManager();
  makeManager().reset();
  HelperManager::reportHelperStale(true);
  EXPECT_TRUE(one->isHelperStale());
  EXPECT_TRUE(other->isHelperStale());
}

TEST_F(HelperManagerTest, NothingButItsOwnerKeepsAManager) {
  auto manager = makeManager();
  const std::weak_ptr<HelperManager> observed = manager;
  manager.reset();
  time.clock.settle();
  EXPECT_TRUE(observed.expired());
}

TEST_F(HelperManagerTest, TheStatusIsReadAnewOnDemandAlone) {
  const auto manager = makeManager();
  record.status = DaemonStatus::enabled;
  time.clock.settle();
  EXPECT_EQ(manager->status(), DaemonStatus::notRegistered);
  time.clock.run(manager->refreshStatus());
  EXPECT_EQ(manager->status(), DaemonStatus::enabled);
}

TEST_F(HelperManagerTest, RegistersAndReadsTheStatus) {
  const auto manager = makeManager();
  time.clock.run(manager->registerDaemon());
  EXPECT_EQ(manager->status(), DaemonStatus::enabled);
  EXPECT_EQ(record.log, (Log{"register"}));
  EXPECT_EQ(printed, "");
}

TEST_F(HelperManagerTest, ARegistrationMayWaitForApproval) {
  record.statusAfterRegistration = DaemonStatus::requiresApproval;
  const auto manager = makeManager();
  time.clock.run(manager->registerDaemon());
  EXPECT_EQ(manager->status(), DaemonStatus::requiresApproval);
}

TEST_F(HelperManagerTest, ToRegisterWhatIsRegisteredLeavesItEnabled) {
  record.status = DaemonStatus::enabled;
  const auto manager = makeManager();
  time.clock.run(manager->registerDaemon());
  EXPECT_EQ(manager->status(), DaemonStatus::enabled);
}

TEST_F(HelperManagerTest, AFailedRegistrationIsWrittenAndTheStatusReadAllTheSame) {
  const auto manager = makeManager();
  record.registrationError = "no such unit";
  record.status = DaemonStatus::notFound;
  time.clock.run(manager->registerDaemon());
  EXPECT_EQ(printed, "[HelperManager] register() failed: no such unit\n");
  EXPECT_EQ(manager->status(), DaemonStatus::notFound);
}

TEST_F(HelperManagerTest, UnregistersAndReadsTheStatus) {
  record.status = DaemonStatus::enabled;
  const auto manager = makeManager();
  time.clock.run(manager->unregister());
  EXPECT_EQ(manager->status(), DaemonStatus::notRegistered);
  EXPECT_EQ(record.log, (Log{"unregister"}));
}

TEST_F(HelperManagerTest, AFailedUnregistrationIsSilent) {
  record.status = DaemonStatus::enabled;
  record.unregistrationError = "busy";
  const auto manager = makeManager();
  time.clock.run(manager->unregister());
  EXPECT_EQ(printed, "");
  EXPECT_EQ(manager->status(), DaemonStatus::enabled);
}

TEST_F(HelperManagerTest, ARecoveryUnregistersAndThenRegisters) {
  record.status = DaemonStatus::enabled;
  const auto manager = makeManager();
  time.clock.run(manager->recoverFromStaleHelper());
  EXPECT_EQ(record.log, (Log{"unregister", "register"}));
  EXPECT_EQ(manager->status(), DaemonStatus::enabled);
  EXPECT_FALSE(manager->isAttemptingStaleRecovery());
}

TEST_F(HelperManagerTest, ASecondPressStartsNoSecondRecovery) {
  const auto manager = makeManager();
  runtime::start(time.executor(), "test", manager->recoverFromStaleHelper());
  runtime::start(time.executor(), "test", manager->recoverFromStaleHelper());
  time.clock.settle();
  EXPECT_EQ(record.log, (Log{"unregister", "register"}));
}

TEST_F(HelperManagerTest, ARecoveryMayFollowAnother) {
  const auto manager = makeManager();
  time.clock.run(manager->recoverFromStaleHelper());
  time.clock.run(manager->recoverFromStaleHelper());
  EXPECT_EQ(record.log, (Log{"unregister", "register", "unregister", "register"}));
}

TEST_F(HelperManagerTest, AFailedUnregistrationDoesNotStopARecovery) {
  record.status = DaemonStatus::enabled;
  record.unregistrationError = "busy";
  const auto manager = makeManager();
  time.clock.run(manager->recoverFromStaleHelper());
  EXPECT_EQ(record.log, (Log{"unregister", "register"}));
  EXPECT_FALSE(manager->isAttemptingStaleRecovery());
  EXPECT_EQ(printed, "");
}

TEST_F(HelperManagerTest, AFailedRecoveryIsWrittenAndEnds) {
  const auto manager = makeManager();
  record.registrationError = "refused";
  time.clock.run(manager->recoverFromStaleHelper());
  EXPECT_EQ(printed, "[HelperManager] recoverFromStaleHelper register() failed: refused\n");
  EXPECT_EQ(manager->status(), DaemonStatus::notRegistered);
  EXPECT_FALSE(manager->isAttemptingStaleRecovery());
}

TEST_F(HelperManagerTest, ARecoveryLeavesTheStaleFlag) {
  const auto manager = makeManager();
  HelperManager::reportHelperStale(true);
  time.clock.run(manager->recoverFromStaleHelper());
  EXPECT_TRUE(manager->isHelperStale());
}

TEST_F(HelperManagerTest, ARecoveryPublishesThatItIsUnderWayAndWhatCameOfIt) {
  const auto manager = makeManager();
  std::vector<Fields> changes;
  const auto observation = manager->observe([&](Fields changing) { changes.push_back(changing); });
  time.clock.run(manager->recoverFromStaleHelper());
  EXPECT_EQ(changes, (std::vector{Fields{Field::isAttemptingStaleRecovery}, Fields{Field::status},
                                  Fields{Field::isAttemptingStaleRecovery}}));
}

TEST_F(HelperManagerTest, AReportIsPublishedWhenItIsNews) {
  const auto manager = makeManager();
  std::vector<Fields> changes;
  const auto observation = manager->observe([&](Fields changing) { changes.push_back(changing); });
  HelperManager::reportHelperStale(false);
  HelperManager::reportHelperStale(true);
  HelperManager::reportHelperStale(true);
  EXPECT_EQ(changes, (std::vector{Fields{Field::isHelperStale}}));
}

TEST_F(HelperManagerTest, AnOperationKeepsItsManagerUntilItIsDone) {
  auto manager = makeManager();
  auto registration = manager->registerDaemon();
  manager.reset();
  time.clock.run(std::move(registration));
  EXPECT_EQ(record.log, (Log{"register"}));
}

TEST_F(HelperManagerTest, OperationsRunOnTheMainExecutor) {
  boost::asio::io_context mainLoop;
  const auto result = std::make_shared<Manager>();
  boost::asio::co_spawn(
      time.context, HelperManager::make(mainLoop.get_executor(), std::make_unique<ScriptedService>(record)),
      [result](const std::exception_ptr&, Manager made) { *result = std::move(made); });
  time.clock.settle();
  EXPECT_EQ(*result, nullptr);
  mainLoop.run();
  time.clock.settle();
  ASSERT_NE(*result, nullptr);

  time.start((*result)->registerDaemon());
  EXPECT_EQ(record.log, Log());
  mainLoop.restart();
  mainLoop.run();
  EXPECT_EQ(record.log, (Log{"register"}));
}

TEST_F(HelperManagerTest, LeadsToTheSystemsSettings) {
  makeManager()->openSystemSettings();
  EXPECT_EQ(record.log, (Log{"settings"}));
}

/// Whose status comes when a test says so.
class AskedService final : public DaemonService {
public:
  using Answer = std::shared_ptr<Completion<DaemonStatus>>;

  explicit AskedService(std::vector<Answer>& questions) : questions_(questions) {}

  Async<DaemonStatus> status() override {
    const auto answer = std::make_shared<Completion<DaemonStatus>>(co_await boost::asio::this_coro::executor);
    questions_.push_back(answer);
    co_return co_await Completion<DaemonStatus>::valueOf(answer);
  }
  Async<ErrorText> registerDaemon() override { co_return std::nullopt; }
  Async<ErrorText> unregisterDaemon() override { co_return std::nullopt; }
  void openSystemSettings() override {}

private:
  std::vector<Answer>& questions_;
};

TEST_F(HelperManagerTest, AnOlderStatusDoesNotReplaceANewerOne) {
  std::vector<AskedService::Answer> questions;
  Manager manager;
  const auto make = [&]() -> Async<void> {
    manager = co_await HelperManager::make(time.executor(), std::make_unique<AskedService>(questions));
  };
  time.start(make());
  questions.at(0)->complete(DaemonStatus::notRegistered);
  time.clock.settle();
  time.start(manager->refreshStatus());
  time.start(manager->registerDaemon());
  questions.at(2)->complete(DaemonStatus::enabled);
  time.clock.settle();
  EXPECT_EQ(manager->status(), DaemonStatus::enabled);
  questions.at(1)->complete(DaemonStatus::notRegistered); // Asked before the registration.
  time.clock.settle();
  EXPECT_EQ(manager->status(), DaemonStatus::enabled);
}

} // namespace
} // namespace ventolith::helper
