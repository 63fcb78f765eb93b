// What a service manager hears from the helper. A datagram of this kind is there as soon as it was sent.
#include "e2e/EnvironmentVariable.h"
#include "e2e/Program.h"
#include "platform/linux/service/SystemdSupervisor.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace ventolith::e2e {

namespace {

using platform::SystemdSupervisor;
using namespace std::chrono_literals;
using Heard = std::vector<std::string>;

/// The service manager's end.
class NotifySocket {
public:
  NotifySocket() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path().c_str(), sizeof address.sun_path - 1);
    if (::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
      throw std::runtime_error("a socket for notifications cannot be bound");
  }
  NotifySocket(const NotifySocket&) = delete;
  NotifySocket& operator=(const NotifySocket&) = delete;
  ~NotifySocket() { ::close(socket_); }

  [[nodiscard]] std::string path() const { return (folder_.path() / "notify").string(); }

  /// All that came since the last call.
  [[nodiscard]] Heard heard() const {
    Heard all;
    std::array<char, 1024> bytes{};
    for (;;) {
      const ssize_t size = ::recv(socket_, bytes.data(), bytes.size(), MSG_DONTWAIT);
      if (size < 0) return all;
      all.emplace_back(bytes.data(), static_cast<std::size_t>(size));
    }
  }

private:
  TemporaryFolder folder_;
  int socket_ = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

/// A service without a watchdog, until a test says otherwise.
struct SystemdSupervision : testing::Test {
  NotifySocket socket;
  EnvironmentVariable address{"NOTIFY_SOCKET", socket.path()};
  EnvironmentVariable interval{"WATCHDOG_USEC", std::nullopt};
  EnvironmentVariable process{"WATCHDOG_PID", std::nullopt};
};

struct SystemdWatch : SystemdSupervision {
  EnvironmentVariable tenSeconds{"WATCHDOG_USEC", "10000000"};
  EnvironmentVariable ours{"WATCHDOG_PID", std::to_string(::getpid())};
  SystemdSupervisor supervisor;
};

TEST_F(SystemdSupervision, WithoutAWatchdogReadyIsAllThatIsSaid) {
  SystemdSupervisor supervisor;
  supervisor.ready();
  supervisor.setWatched(true);
  supervisor.alive();
  supervisor.setWatched(false);
  EXPECT_EQ(supervisor.watchdogInterval(), 0s);
  EXPECT_EQ(socket.heard(), Heard{"READY=1"});
}

TEST_F(SystemdSupervision, StoppingIsSaid) {
  SystemdSupervisor supervisor;
  supervisor.stopping();
  EXPECT_EQ(socket.heard(), Heard{"STOPPING=1"});
}

TEST_F(SystemdSupervision, AnotherProcesssWatchdogIsNotOurs) {
  const EnvironmentVariable tenSeconds("WATCHDOG_USEC", "10000000");
  const EnvironmentVariable another("WATCHDOG_PID", "1");
  EXPECT_EQ(SystemdSupervisor().watchdogInterval(), 0s);
}

TEST_F(SystemdSupervision, WithoutAServiceManagerNothingIsSent) {
  const EnvironmentVariable nobody("NOTIFY_SOCKET", std::nullopt);
  const EnvironmentVariable tenSeconds("WATCHDOG_USEC", "10000000");
  SystemdSupervisor supervisor;
  supervisor.ready();
  supervisor.setWatched(true);
  supervisor.alive();
  supervisor.stopping();
  EXPECT_EQ(socket.heard(), Heard{});
}

TEST_F(SystemdSupervision, AServiceManagerThatIsGoneIsNoTrouble) {
  const EnvironmentVariable gone("NOTIFY_SOCKET", socket.path() + ".gone");
  SystemdSupervisor supervisor;
  EXPECT_NO_THROW(supervisor.ready());
}

TEST_F(SystemdWatch, IntervalIsTheServiceManagers) {
  EXPECT_EQ(supervisor.watchdogInterval(), 10s);
}

TEST_F(SystemdWatch, ReadyComesWithTheWatchdogStopped) {
  supervisor.ready();
  EXPECT_EQ(socket.heard(), Heard{"READY=1\nWATCHDOG_USEC=0"});
}

TEST_F(SystemdWatch, WatchStartsWithTheInterval) {
  supervisor.setWatched(true);
  EXPECT_EQ(socket.heard(), Heard{"WATCHDOG_USEC=10000000\nWATCHDOG=1"});
}

TEST_F(SystemdWatch, WatchEndsWithTheServiceManagersTimer) {
  supervisor.setWatched(true);
  static_cast<void>(socket.heard());
  supervisor.setWatched(false);
  EXPECT_EQ(socket.heard(), Heard{"WATCHDOG_USEC=0"});
}

TEST_F(SystemdWatch, AliveFeedsTheWatchdog) {
  supervisor.alive();
  EXPECT_EQ(socket.heard(), Heard{"WATCHDOG=1"});
}

} // namespace

} // namespace ventolith::e2e
