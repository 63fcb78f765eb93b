// Both ends of the line in one process, each with a connection of its own to a private bus.
#pragma once

#include "e2e/PrivateBus.h"
#include "e2e/ServiceLoop.h"
#include "helper/link/HelperChannel.h"
#include "helper/link/HelperListener.h"
#include "platform/linux/service/SystemServices.h"
#include "runtime/StopToken.h"

#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::e2e {

/// Answers with what it is told to; keeps what it was asked.
class ScriptedService final : public helper::HelperService {
public:
  explicit ScriptedService(runtime::Clock& clock) : clock_(clock) {}

  runtime::Async<helper::HelperAnswer> answer(helper::HelperCaller caller,
                                              helper::HelperMessage message) override {
    callers.push_back(caller);
    received.push_back(message);
    if (isSilent) co_await clock_.sleep(runtime::Duration::max(), ended_.token());
    co_return reply(message);
  }
  void callerIsGone(const helper::HelperCaller& caller) override { gone.push_back(caller); }

  /// Ends the silence: who was not answered is answered now.
  void speak() {
    isSilent = false;
    ended_.requestStop();
  }

  std::vector<helper::HelperMessage> received;
  std::vector<helper::HelperCaller> callers;
  std::vector<helper::HelperCaller> gone;
  bool isSilent = false;
  std::function<helper::HelperAnswer(const helper::HelperMessage&)> reply = [](const helper::HelperMessage&) {
    return helper::HelperReply(helper::replies::Done());
  };

private:
  runtime::Clock& clock_;
  runtime::StopSource ended_;
};

/// An application's end, and what it was told.
class Client {
public:
  using Reply = std::optional<helper::HelperReply>;

  Client(ServiceLoop& loop, const std::string& address)
      : loop_(loop), services_(loop.executor(), loop.clock(), {address, std::nullopt}) {
    connect();
  }

  /// Makes a channel in place of the one before.
  void connect() {
    interruptions = 0;
    invalidations = 0;
    channel = services_.helperChannels()();
    channel->resume({[this] { ++interruptions; }, [this] { ++invalidations; }});
  }

  ServiceLoop::Pending<Reply> begin(helper::HelperMessage message) {
    return loop_.begin(channel->call(std::move(message)));
  }
  Reply call(helper::HelperMessage message) { return loop_.await(channel->call(std::move(message))); }

  int interruptions = 0;
  int invalidations = 0;
  std::unique_ptr<helper::HelperChannel> channel;

private:
  ServiceLoop& loop_;
  platform::SystemServices services_;
};

struct BusLink : testing::Test {
  /// A connection to the bus with nothing of this project's in it, and a thread of its own.
  [[nodiscard]] std::unique_ptr<sdbus::IConnection> stranger() const {
    auto connection = sdbus::createSessionBusConnectionWithAddress(bus.address());
    connection->enterEventLoopAsync();
    return connection;
  }
  /// A stranger's view of the helper.
  [[nodiscard]] std::unique_ptr<sdbus::IProxy> foreignProxy() const {
    return sdbus::createProxy(sdbus::createSessionBusConnectionWithAddress(bus.address()), helperName,
                              helperPath);
  }

  void serve() {
    listener = helperServices.claimListener();
    listener->resume(service, [this](const std::string& reason) { lost = reason; });
  }

  /// The name of the error that a stranger's call ends with; empty when it is answered.
  std::string errorOf(sdbus::IProxy& proxy, const sdbus::MethodCall& call) {
    std::optional<std::string> ended;
    const auto pending = proxy.callMethod(call, [&](sdbus::MethodReply&, const sdbus::Error* error) {
      const std::string name = error == nullptr ? std::string() : error->getName();
      boost::asio::post(loop.executor(), [&ended, name] { ended = name; }); // From the stranger's thread.
    });
    loop.until("the stranger's answer", [&] { return ended.has_value(); });
    return *ended;
  }

  static constexpr const char* helperName = "com.ventolith.helper";
  static constexpr const char* helperPath = "/com/ventolith/helper";
  static constexpr const char* helperInterface = "com.ventolith.FanHelperProtocol";

  ServiceLoop loop;
  PrivateBus bus;
  ScriptedService service{loop.clock()};
  platform::SystemServices helperServices{loop.executor(), loop.clock(), {bus.address(), std::nullopt}};
  std::unique_ptr<helper::HelperListener> listener;
  std::optional<std::string> lost;
};

} // namespace ventolith::e2e
