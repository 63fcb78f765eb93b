// The round trip of a message between two processes over a private bus: the line to the helper, with a
// service behind it that answers at once, beside a bare service and a bare client of sdbus-c++ on the same
// bus.
#include "e2e/PrivateBus.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/service/SystemServices.h"

#include <boost/asio/io_context.hpp>
#include <fmt/format.h>
#include <sdbus-c++/sdbus-c++.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace ventolith {

namespace {

using helper::HelperAnswer;
using helper::HelperMessage;
using helper::HelperReply;
namespace messages = helper::messages;
namespace replies = helper::replies;

constexpr int warmUps = 500;
constexpr int rounds = 5000;
constexpr const char* echoName = "com.ventolith.echo";
constexpr const char* echoPath = "/com/ventolith/echo";

/// Answers at once, as an engine with nothing to do would.
class PromptService final : public helper::HelperService {
public:
  runtime::Async<HelperAnswer> answer(helper::HelperCaller, HelperMessage message) override {
    if (std::holds_alternative<messages::HelperVersion>(message)) {
      co_return HelperReply(replies::Version{"1.0.3+6"});
    }
    if (std::holds_alternative<messages::ReadState>(message)) {
      co_return HelperReply(replies::State{std::string(2000, 'x')});
    }
    co_return HelperReply(replies::Code{0});
  }
  void callerIsGone(const helper::HelperCaller&) override {}
};

struct Services {
  explicit Services(const std::string& address)
      : services(context.get_executor(), clock, {address, std::nullopt}) {}

  boost::asio::io_context context{1};
  platform::SystemClock clock{context.get_executor()};
  platform::SystemServices services;
};

void serveHelper(const std::string& address) {
  Services helper(address);
  PromptService service;
  const auto listener = helper.services.claimListener();
  listener->resume(service, [&](const std::string&) { helper.context.stop(); });
  helper.context.run();
}

void serveEcho(const std::string& address) {
  const auto connection = sdbus::createSessionBusConnectionWithAddress(address);
  connection->requestName(echoName);
  const auto object = sdbus::createObject(*connection, echoPath);
  object->registerMethod("Echo").onInterface(echoName).implementedAs(
      [](std::int64_t number) { return number; });
  object->finishRegistration();
  connection->enterEventLoop();
}

/// A process of its own, which ends with this one or with this object.
class Child {
public:
  explicit Child(const std::function<void()>& work) : process_(::fork()) {
    if (process_ != 0) return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    work();
    std::_Exit(0);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }

private:
  pid_t process_;
};

using Microseconds = std::chrono::duration<double, std::micro>;

class Samples {
public:
  void add(Microseconds sample) { samples_.push_back(sample.count()); }

  void report(const std::string& name) {
    std::sort(samples_.begin(), samples_.end());
    fmt::print("{:<44} {:>10.0f} {:>10.0f}\n", name, samples_[samples_.size() / 2],
               samples_[samples_.size() * 99 / 100]);
  }

private:
  std::vector<double> samples_;
};

template <class Work>
Microseconds timed(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::steady_clock::now() - start;
}

void measureEcho(const std::string& address) {
  const auto proxy =
      sdbus::createProxy(sdbus::createSessionBusConnectionWithAddress(address), echoName, echoPath);
  Samples samples;
  for (int round = -warmUps; round < rounds; ++round) {
    const Microseconds sample = timed([&] {
      std::int64_t result = 0;
      proxy->callMethod("Echo")
          .onInterface(echoName)
          .withArguments(std::int64_t{round})
          .storeResultsTo(result);
    });
    if (round >= 0) samples.add(sample);
  }
  samples.report("bare echo");
}

runtime::Async<void> measure(helper::HelperChannel& channel, std::string name, HelperMessage message) {
  Samples samples;
  for (int round = -warmUps; round < rounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    const auto reply = co_await channel.call(message);
    const Microseconds sample = std::chrono::steady_clock::now() - start;
    if (!reply) throw std::runtime_error("no reply to " + name);
    if (round >= 0) samples.add(sample);
  }
  samples.report(name);
}

runtime::Async<void> measureAll(std::unique_ptr<helper::HelperChannel> channel,
                                boost::asio::io_context& context) {
  co_await measure(*channel, "HelperVersion", messages::HelperVersion());
  co_await measure(*channel, "SetManualRPM", messages::SetManualRPM{0, 3000});
  co_await measure(*channel, "ReadState, 2 kB of state", messages::ReadState());
  co_await measure(*channel, "ApplyConfig, 4 kB of plan", messages::ApplyConfig{std::string(4000, 'x')});
  context.stop();
}

void measureHelper(const std::string& address) {
  Services client(address);
  auto channel = client.services.helperChannels()();
  channel->resume({[] {}, [] {}});
  runtime::start(client.context.get_executor(), "the benchmark",
                 measureAll(std::move(channel), client.context));
  client.context.run();
}

void waitForName(const std::string& address, const std::string& name) {
  const auto bus = sdbus::createProxy(sdbus::createSessionBusConnectionWithAddress(address),
                                      "org.freedesktop.DBus", "/org/freedesktop/DBus");
  e2e::waitUntil(name, [&] {
    bool isThere = false;
    bus->callMethod("NameHasOwner")
        .onInterface("org.freedesktop.DBus")
        .withArguments(name)
        .storeResultsTo(isThere);
    return isThere;
  });
}

void run() {
  const e2e::PrivateBus bus;
  const Child echo([&] { serveEcho(bus.address()); });
  const Child helper([&] { serveHelper(bus.address()); });
  waitForName(bus.address(), echoName);
  waitForName(bus.address(), "com.ventolith.helper");
  fmt::print("{:<44} {:>10} {:>10}\n", "round trip over a private bus, microseconds", "median", "99th %");
  measureEcho(bus.address());
  measureHelper(bus.address());
}

} // namespace

} // namespace ventolith

int main() {
  try {
    ventolith::run();
    return 0;
  } catch (const std::exception& error) {
    fmt::print(stderr, "ventolith-bus-bench: {}\n", error.what());
    return 1;
  }
}
