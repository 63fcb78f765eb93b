#include "helper/link/HostedDaemonService.h"
#include "support/VirtualTime.h"

#include <boost/asio/strand.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace ventolith::helper {
namespace {

using runtime::Async;
using Strand = boost::asio::strand<runtime::Executor>;

/// Notes each use, and whether it was on the service's own executor.
struct Uses {
  explicit Uses(Strand home) : strand(std::move(home)) {}
  void note(const std::string& what) {
    uses.push_back(what + (strand.running_in_this_thread() ? " at home" : " elsewhere"));
  }

  Strand strand;
  std::vector<std::string> uses;
};

class NotingService final : public DaemonService {
public:
  explicit NotingService(Uses& uses) : uses_(uses) {}
  ~NotingService() override { uses_.note("end"); }

  Async<DaemonStatus> status() override {
    uses_.note("status");
    co_return DaemonStatus::requiresApproval;
  }
  Async<ErrorText> registerDaemon() override {
    uses_.note("register");
    co_return "no room";
  }
  Async<ErrorText> unregisterDaemon() override {
    uses_.note("unregister");
    co_return std::nullopt;
  }
  void openSystemSettings() override { uses_.note("openSystemSettings"); }

private:
  Uses& uses_;
};

class HostedDaemonServiceTest : public testing::Test {
protected:
  ~HostedDaemonServiceTest() override {
    service = nullptr;
    time.clock.settle();
  }

  support::VirtualTime time;
  Strand home = boost::asio::make_strand(time.executor());
  Uses uses{home};
  std::unique_ptr<HostedDaemonService> service =
      std::make_unique<HostedDaemonService>(home, std::make_unique<NotingService>(uses));
};

TEST_F(HostedDaemonServiceTest, OperationsRunAtHomeAndGiveTheirResults) {
  EXPECT_EQ(time.clock.run(service->status()), DaemonStatus::requiresApproval);
  EXPECT_EQ(time.clock.run(service->registerDaemon()), "no room");
  EXPECT_EQ(time.clock.run(service->unregisterDaemon()), std::nullopt);
  EXPECT_EQ(uses.uses,
            (std::vector<std::string>{"status at home", "register at home", "unregister at home"}));
}

TEST_F(HostedDaemonServiceTest, CallerGoesOnOnItsOwnExecutor) {
  const Strand callers = boost::asio::make_strand(time.executor());
  bool isBack = false;
  const auto call = [&]() -> Async<void> {
    co_await service->status();
    isBack = callers.running_in_this_thread();
  };
  runtime::start(callers, "test", call());
  time.clock.settle();
  EXPECT_TRUE(isBack);
}

TEST_F(HostedDaemonServiceTest, SettingsAreOpenedFromHome) {
  service->openSystemSettings();
  EXPECT_TRUE(uses.uses.empty());
  time.clock.settle();
  EXPECT_EQ(uses.uses, std::vector<std::string>{"openSystemSettings at home"});
}

TEST_F(HostedDaemonServiceTest, ServiceGoesAtHomeAfterWhatWasBegun) {
  service->openSystemSettings();
  service = nullptr;
  EXPECT_TRUE(uses.uses.empty());
  time.clock.settle();
  EXPECT_EQ(uses.uses, (std::vector<std::string>{"openSystemSettings at home", "end at home"}));
}

TEST_F(HostedDaemonServiceTest, OperationThatWaitsKeepsTheService) {
  auto status = service->status();
  service = nullptr;
  EXPECT_EQ(time.clock.run(std::move(status)), DaemonStatus::requiresApproval);
  EXPECT_EQ(uses.uses.front(), "status at home");
}

} // namespace
} // namespace ventolith::helper
