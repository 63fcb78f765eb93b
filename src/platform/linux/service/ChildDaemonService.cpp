#include "platform/linux/service/ChildDaemonService.h"

#include "platform/linux/service/ChildProcess.h"
#include "platform/linux/service/ErrorLine.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/local/datagram_protocol.hpp>
#include <boost/asio/redirect_error.hpp>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace ventolith::platform {

namespace {

using Datagrams = boost::asio::local::datagram_protocol;

constexpr std::chrono::seconds pauseBeforeRestart{1};
constexpr std::chrono::seconds shortLife{5};
constexpr int shortLivesInARow = 3;
constexpr std::chrono::seconds timeToBeReady{10};
constexpr std::chrono::seconds timeToEnd{10};

void report(const std::string& what) {
  sayOnStandardError("[ChildDaemonService] " + what);
}

/// This process's environment, with another address for "I am ready" and without a watchdog.
std::vector<std::string> environmentWith(const std::string& notifySocket) {
  std::vector<std::string> environment;
  for (char* const* entry = environ; *entry != nullptr; ++entry) {
    const std::string_view variable = *entry;
    const auto isOf = [&](std::string_view name) { return variable.substr(0, name.size()) == name; };
    if (isOf("NOTIFY_SOCKET=") || isOf("WATCHDOG_USEC=") || isOf("WATCHDOG_PID=")) continue;
    environment.emplace_back(variable);
  }
  environment.push_back("NOTIFY_SOCKET=" + notifySocket);
  return environment;
}

/// The address of a socket that was bound to none in particular: a name in no folder, which environment
/// variables write with an @ for its leading null.
std::string nameOf(const Datagrams::socket& socket) {
  std::string name = socket.local_endpoint().path();
  if (!name.empty()) name[0] = '@';
  return name;
}

bool saysReady(std::string_view notification) {
  constexpr std::string_view ready = "READY=1";
  return notification.substr(0, ready.size()) == ready || notification.find("\nREADY=1") != notification.npos;
}

} // namespace

/// One registration, from the helper's first start to the end of its last one.
struct ChildDaemonService::Keeping {
  Keeping(runtime::Executor onExecutor, runtime::Clock& byClock, const std::string& program)
      : executor(std::move(onExecutor)),
        clock(byClock),
        notifications(executor, Datagrams::endpoint()),
        launch{.arguments = {program, "--allow-same-user"},
               .environment = environmentWith(nameOf(notifications))} {}

  /// Throws std::system_error.
  void startChild() { child.emplace(executor, launch); }

  void signal(int number) const {
    if (child) child->signal(number);
  }

  [[nodiscard]] bool isKept() const { return !unregistered.stopRequested() && !over.stopRequested(); }

  static runtime::Async<void> keepAlive(std::shared_ptr<Keeping> keeping);
  static runtime::Async<void> awaitReadiness(std::shared_ptr<Keeping> keeping);

  runtime::Executor executor;
  runtime::Clock& clock;
  Datagrams::socket notifications;
  ChildProcess::Launch launch;
  std::optional<ChildProcess> child;
  bool isReady = false;
  runtime::StopSource unregistered; // No child is started any more.
  runtime::StopSource settled;      // The child is ready, or all is over.
  runtime::StopSource over;         // The last child is gone.

private:
  runtime::Async<void> keepStarting();
};

runtime::Async<void> ChildDaemonService::Keeping::keepAlive(std::shared_ptr<Keeping> keeping) {
  try {
    co_await keeping->keepStarting();
  } catch (const std::system_error& error) {
    report(fmt::format("the helper cannot be started again: {}", error.what()));
  }
  keeping->notifications.close();
  keeping->over.requestStop();
  keeping->settled.requestStop();
}

runtime::Async<void> ChildDaemonService::Keeping::keepStarting() {
  for (int shortLives = 0;; startChild()) {
    const runtime::Instant start = clock.now();
    const std::string end = co_await child->ended();
    child.reset();
    if (unregistered.stopRequested()) co_return;

    shortLives = clock.now() - start < shortLife ? shortLives + 1 : 0;
    if (shortLives == shortLivesInARow) {
      report(fmt::format(
          "the helper {}, for the third time in a row soon after its start; it is not started again", end));
      co_return;
    }
    report(fmt::format("the helper {}; it is started again", end));
    co_await clock.sleep(pauseBeforeRestart, unregistered.token());
    if (unregistered.stopRequested()) co_return;
  }
}

runtime::Async<void> ChildDaemonService::Keeping::awaitReadiness(std::shared_ptr<Keeping> keeping) {
  std::array<char, 4096> bytes{};
  while (!keeping->isReady) {
    boost::system::error_code error;
    const std::size_t size = co_await keeping->notifications.async_receive(
        boost::asio::buffer(bytes), boost::asio::redirect_error(boost::asio::use_awaitable, error));
    if (error) co_return; // The socket was closed: all is over.
    keeping->isReady = saysReady({bytes.data(), size});
  }
  keeping->notifications.close(); // What follows is of no interest, and must not pile up.
  keeping->settled.requestStop();
}

ChildDaemonService::ChildDaemonService(const runtime::Executor& executor, runtime::Clock& clock,
                                       std::string program)
    : serial_(executor), clock_(clock), program_(std::move(program)) {}

ChildDaemonService::~ChildDaemonService() {
  if (!keeping_) return;
  keeping_->unregistered.requestStop();
  keeping_->signal(SIGTERM);
}

helper::DaemonStatus ChildDaemonService::statusNow() const {
  if (keeping_ && keeping_->isKept()) return helper::DaemonStatus::enabled;
  std::error_code ignored;
  return std::filesystem::is_regular_file(program_, ignored) ? helper::DaemonStatus::notRegistered
                                                             : helper::DaemonStatus::notFound;
}

runtime::Async<helper::DaemonStatus> ChildDaemonService::status() {
  co_return co_await serial_.run([](const ChildDaemonService& self) -> runtime::Async<helper::DaemonStatus> {
    co_return self.statusNow();
  }(*this));
}

runtime::Async<helper::DaemonService::ErrorText> ChildDaemonService::registerDaemon() {
  co_return co_await serial_.run(beginKeeping());
}

runtime::Async<helper::DaemonService::ErrorText> ChildDaemonService::unregisterDaemon() {
  co_await serial_.run(endKeeping());
  co_return std::nullopt;
}

runtime::Async<helper::DaemonService::ErrorText> ChildDaemonService::beginKeeping() {
  // Two helpers at once would take the fans from each other.
  while (keeping_ && keeping_->unregistered.stopRequested() && !keeping_->over.stopRequested())
    co_await clock_.sleepUntil(runtime::Instant::max(), keeping_->over.token());

  if (!keeping_ || !keeping_->isKept()) {
    try {
      auto keeping = std::make_shared<Keeping>(serial_.executor(), clock_, program_);
      keeping->startChild();
      keeping_ = std::move(keeping);
    } catch (const std::system_error& error) {
      co_return error.what();
    }
    runtime::start(serial_.executor(), "the helper's restarts", Keeping::keepAlive(keeping_));
    runtime::start(serial_.executor(), "the helper's readiness", Keeping::awaitReadiness(keeping_));
  }

  const auto keeping = keeping_;
  co_await clock_.sleep(timeToBeReady, keeping->settled.token());
  if (keeping->isReady || keeping->unregistered.stopRequested()) co_return std::nullopt;
  co_return keeping->over.stopRequested() ? "the helper ends as soon as it is started"
                                          : "the helper was started, but is not ready";
}

runtime::Async<void> ChildDaemonService::endKeeping() {
  const auto keeping = keeping_;
  if (!keeping) co_return;
  keeping->unregistered.requestStop();
  keeping->signal(SIGTERM);
  co_await clock_.sleep(timeToEnd, keeping->over.token());
  if (keeping->over.stopRequested()) co_return;
  keeping->signal(SIGKILL);
  co_await clock_.sleepUntil(runtime::Instant::max(), keeping->over.token());
}

void ChildDaemonService::openSystemSettings() {
  report("the helper is a child of this program: there is nothing to allow");
}

} // namespace ventolith::platform
