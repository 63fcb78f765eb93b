// The line over the bus when something is wrong with the helper, the bus, or what somebody sends.
#include "e2e/BusLink.h"

#include <csignal>
#include <cstdint>

namespace ventolith::e2e {

namespace {

using helper::HelperAnswer;
using helper::HelperMessage;
using helper::HelperReply;
using helper::Refusal;
namespace messages = helper::messages;
namespace replies = helper::replies;
using namespace std::chrono_literals;

/// A foreign program in the helper's place, which answers nothing while it lives.
struct MuteHelper {
  explicit MuteHelper(const std::string& address)
      : connection(sdbus::createSessionBusConnectionWithAddress(address)) {
    connection->requestName(BusLink::helperName);
  }
  std::unique_ptr<sdbus::IConnection> connection;
};

TEST_F(BusLink, CallWithoutAHelperEndsWithoutAReply) {
  Client client(loop, bus.address());

  EXPECT_EQ(client.call(messages::HelperVersion()), std::nullopt);
  EXPECT_EQ(client.invalidations, 0);
}

TEST_F(BusLink, HelperThatComesIsAnInterruption) {
  Client client(loop, bus.address());

  serve();

  loop.until("the interruption", [&] { return client.interruptions == 1; });
}

TEST_F(BusLink, HelperThatStopsServingIsOneInterruption) {
  serve();
  Client client(loop, bus.address());
  client.call(messages::RestoreAuto());

  listener.reset();
  loop.until("the interruption", [&] { return client.interruptions > 0; });
  loop.runFor(50ms);

  EXPECT_EQ(client.interruptions, 1);
  EXPECT_EQ(client.invalidations, 0);
}

TEST_F(BusLink, ChannelReachesTheNextHelperByItself) {
  serve();
  Client client(loop, bus.address());
  client.call(messages::RestoreAuto());
  listener.reset();
  loop.until("the interruption", [&] { return client.interruptions == 1; });

  serve();

  EXPECT_EQ(client.call(messages::RestoreAuto()), HelperReply(replies::Done()));
}

TEST_F(BusLink, DeathOfTheHelperEndsTheCallsThatItHasNotAnswered) {
  auto helper = std::make_unique<MuteHelper>(bus.address());
  Client client(loop, bus.address());
  const auto first = client.begin(messages::RestoreAuto());
  const auto second = client.begin(messages::HelperVersion());
  loop.runFor(50ms);
  ASSERT_FALSE(first->has_value());

  helper.reset();

  EXPECT_EQ(loop.end(first), std::nullopt);
  EXPECT_EQ(loop.end(second), std::nullopt);
  EXPECT_EQ(client.interruptions, 1);
}

TEST_F(BusLink, ListenerThatStopsEndsTheCallsThatItHasNotAnswered) {
  serve();
  service.isSilent = true;
  Client client(loop, bus.address());
  const auto call = client.begin(messages::RestoreAuto());
  loop.until("the call", [&] { return service.received.size() == 1; });

  listener.reset();

  EXPECT_EQ(loop.end(call), std::nullopt);
  service.speak(); // An answer that comes too late harms nobody.
  loop.runFor(20ms);
}

TEST_F(BusLink, AnswersGivenBeforeTheListenerStopsAreSent) {
  serve();
  service.reply = [&](const HelperMessage&) {
    boost::asio::post(loop.executor(), [this] { listener->invalidate(); });
    return HelperReply(replies::State{std::string(1U << 20, 'x')});
  };
  Client client(loop, bus.address());

  const Client::Reply reply = client.call(messages::ReadState());

  ASSERT_TRUE(reply.has_value());
  EXPECT_EQ(std::get<replies::State>(*reply).json.size(), 1U << 20);
}

TEST_F(BusLink, DeathOfTheBusEndsAllCallsAndIsToldOnce) {
  serve();
  service.isSilent = true;
  Client client(loop, bus.address());
  const auto first = client.begin(messages::RestoreAuto());
  const auto second = client.begin(messages::ReadState());
  loop.until("the calls", [&] { return service.received.size() == 2; });

  bus.kill();

  EXPECT_EQ(loop.end(first), std::nullopt);
  EXPECT_EQ(loop.end(second), std::nullopt);
  EXPECT_EQ(client.call(messages::HelperVersion()), std::nullopt);
  client.channel->send(messages::Heartbeat());
  loop.until("both ends' notice", [&] { return client.invalidations > 0 && lost; });
  loop.runFor(20ms);
  EXPECT_EQ(client.invalidations, 1);
  EXPECT_EQ(*lost, "The message bus is gone: Connection reset by peer.");
}

TEST_F(BusLink, NewChannelReachesTheBusThatCameBack) {
  serve();
  Client client(loop, bus.address());
  client.call(messages::RestoreAuto());
  bus.kill();
  loop.until("both ends' notice", [&] { return client.invalidations > 0 && lost; });
  listener.reset();
  bus.restart();

  serve();
  client.connect();

  EXPECT_EQ(client.call(messages::RestoreAuto()), HelperReply(replies::Done()));
}

TEST_F(BusLink, BusThatCannotBeReachedIsToldAfterTheFirstUseAndNotBefore) {
  bus.kill();
  Client client(loop, bus.address());
  loop.runFor(20ms);
  EXPECT_EQ(client.invalidations, 0);

  EXPECT_EQ(client.call(messages::HelperVersion()), std::nullopt);
  client.channel->send(messages::Heartbeat());
  loop.until("the notice", [&] { return client.invalidations > 0; });
  loop.runFor(20ms);

  EXPECT_EQ(client.invalidations, 1);
}

TEST_F(BusLink, InvalidatedChannelEndsItsCallsAndTellsNothingAnyMore) {
  serve();
  service.isSilent = true;
  Client client(loop, bus.address());
  const auto call = client.begin(messages::RestoreAuto());
  loop.until("the call", [&] { return service.received.size() == 1; });

  client.channel->invalidate();
  listener.reset();
  bus.kill();

  EXPECT_EQ(loop.end(call), std::nullopt);
  loop.runFor(50ms);
  EXPECT_EQ(client.interruptions + client.invalidations, 0);
}

TEST_F(BusLink, OneChannelsEndLeavesTheOthersAlone) {
  serve();
  platform::SystemServices services(loop.executor(), loop.clock(), {bus.address(), std::nullopt});
  const auto first = services.helperChannels()();
  const auto second = services.helperChannels()();
  first->resume({[] {}, [] {}});
  second->resume({[] {}, [] {}});

  first->invalidate();

  EXPECT_EQ(loop.await(second->call(messages::RestoreAuto())), HelperReply(replies::Done()));
}

TEST_F(BusLink, SecondHelperOfTheMachineIsTurnedAway) {
  serve();
  platform::SystemServices others(loop.executor(), loop.clock(), {bus.address(), std::nullopt});

  EXPECT_THROW(static_cast<void>(others.claimListener()), platform::AnotherHelperError);
  EXPECT_THROW(static_cast<void>(helperServices.claimListener()), platform::AnotherHelperError);
  Client client(loop, bus.address());
  EXPECT_EQ(client.call(messages::RestoreAuto()), HelperReply(replies::Done()));
}

TEST_F(BusLink, ListenerWithoutABusSaysWhy) {
  bus.kill();

  try {
    static_cast<void>(helperServices.claimListener());
    FAIL() << "a listener without a bus";
  } catch (const platform::ServiceError& error) {
    EXPECT_NE(std::string(error.what()).find("The message bus cannot be reached"), std::string::npos);
  }
}

TEST_F(BusLink, NameIsFreeAgainAfterTheListenerStopped) {
  serve();

  listener.reset();

  platform::SystemServices others(loop.executor(), loop.clock(), {bus.address(), std::nullopt});
  EXPECT_NO_THROW(static_cast<void>(others.claimListener()));
}

struct RefusalName {
  Refusal::Reason reason;
  std::string error;
};

TEST_F(BusLink, RefusalsAreErrorsOfTheBusToTheirCallers) {
  serve();
  const auto proxy = foreignProxy();

  for (const auto& [reason, error] :
       {RefusalName{Refusal::Reason::notAuthorized, "org.freedesktop.DBus.Error.AccessDenied"},
        RefusalName{Refusal::Reason::tooManyCalls, "org.freedesktop.DBus.Error.LimitsExceeded"},
        RefusalName{Refusal::Reason::bodyTooLarge, "org.freedesktop.DBus.Error.InvalidArgs"},
        RefusalName{Refusal::Reason::shuttingDown, "org.freedesktop.DBus.Error.Failed"}}) {
    service.reply = [refused = reason](const HelperMessage&) { return Refusal{refused, "No."}; };
    EXPECT_EQ(errorOf(*proxy, proxy->createMethodCall(helperInterface, "RestoreAuto")), error);
  }
}

TEST_F(BusLink, RefusalIsNoReplyToAChannel) {
  serve();
  service.reply = [](const HelperMessage&) { return Refusal{Refusal::Reason::notAuthorized, "No."}; };
  Client client(loop, bus.address());

  EXPECT_EQ(client.call(messages::FullBlast()), std::nullopt);
}

TEST_F(BusLink, BodiesOfAnotherKindAreRefusedAndNeverReachTheService) {
  serve();
  const auto proxy = foreignProxy();
  const auto call = [&](const char* method, const auto&... arguments) {
    auto message = proxy->createMethodCall(helperInterface, method);
    static_cast<void>((message << ... << arguments));
    return errorOf(*proxy, message);
  };
  const std::string invalid = "org.freedesktop.DBus.Error.InvalidArgs";

  EXPECT_EQ(call("HelperVersion", std::string("text")), invalid);
  EXPECT_EQ(call("SetManualRPM", std::string("fan"), std::int64_t{1}), invalid);
  EXPECT_EQ(call("SetManualRPM", std::int64_t{1}), invalid);
  EXPECT_EQ(call("SetManualRPM", std::int32_t{1}, std::int32_t{1}), invalid);
  EXPECT_EQ(call("SetPercent", std::int64_t{1}, std::int64_t{50}), invalid);
  EXPECT_EQ(call("ApplyConfig", std::string("{}")), invalid);
  EXPECT_EQ(call("ApplyConfig", std::vector<std::int32_t>{1, 2}), invalid);
  EXPECT_EQ(call("ReadState", std::vector<std::uint8_t>{1}), invalid);
  EXPECT_EQ(call("Explode"), "org.freedesktop.DBus.Error.UnknownMethod");
  EXPECT_TRUE(service.received.empty());
}

TEST_F(BusLink, RepliesOfAnotherKindAreNone) {
  const auto connection = stranger();
  connection->requestName(helperName);
  const auto object = sdbus::createObject(*connection, helperPath);
  const auto text = [](sdbus::MethodCall call) {
    auto reply = call.createReply();
    reply << "text";
    reply.send();
  };
  const auto number = [](sdbus::MethodCall call) {
    auto reply = call.createReply();
    reply << std::int32_t{1};
    reply.send();
  };
  object->registerMethod(helperInterface, "HelperVersion", "", "i", number);
  object->registerMethod(helperInterface, "SetManualRPM", "xx", "i", number);
  object->registerMethod(helperInterface, "ApplyConfig", "ay", "s", text);
  object->registerMethod(helperInterface, "RestoreAuto", "", "s", text);
  object->registerMethod(helperInterface, "ReadState", "", "s", text);
  object->finishRegistration();
  Client client(loop, bus.address());

  EXPECT_EQ(client.call(messages::HelperVersion()), std::nullopt);
  EXPECT_EQ(client.call(messages::SetManualRPM{0, 0}), std::nullopt);
  EXPECT_EQ(client.call(messages::ApplyConfig{""}), std::nullopt);
  EXPECT_EQ(client.call(messages::RestoreAuto()), std::nullopt);
  EXPECT_EQ(client.call(messages::ReadState()), std::nullopt);
  EXPECT_EQ(client.call(messages::Automatic()), std::nullopt); // Which it does not have.
}

TEST_F(BusLink, AnswerOfAnotherKindEndsTheCallAllTheSame) {
  serve();
  service.reply = [](const HelperMessage&) { return HelperReply(replies::Code{0}); };
  Client client(loop, bus.address());

  EXPECT_EQ(client.call(messages::HelperVersion()), std::nullopt);
  EXPECT_EQ(client.call(messages::RestoreAuto()), std::nullopt);
}

TEST_F(BusLink, AnswerThatNobodyExpectsIsNotSent) {
  serve();
  const auto proxy = foreignProxy();
  auto call = proxy->createMethodCall(helperInterface, "FullBlast");
  call.dontExpectReply();
  static_cast<void>(proxy->callMethod(call));
  loop.until("the message", [&] { return service.received.size() == 1; });

  EXPECT_EQ(errorOf(*proxy, proxy->createMethodCall(helperInterface, "RestoreAuto")), "");
}

TEST_F(BusLink, BusThatStandsStillDoesNotHoldUpItsProcess) {
  serve();
  service.isSilent = true;
  service.reply = [](const HelperMessage&) {
    return HelperReply(replies::State{std::string(1U << 20, 'x')});
  };
  Client client(loop, bus.address());
  std::vector<ServiceLoop::Pending<Client::Reply>> calls;
  for (int call = 0; call < 20; ++call)
    calls.push_back(client.begin(messages::ReadState()));
  loop.until("the calls", [&] { return service.received.size() == calls.size(); });
  bus.signal(SIGSTOP);

  service.speak();
  const auto start = std::chrono::steady_clock::now();
  loop.runFor(50ms);
  client.channel->send(messages::Heartbeat());
  loop.runFor(50ms);

  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s); // Nothing ends a wait for that bus.
  bus.signal(SIGCONT);
  for (const auto& call : calls)
    EXPECT_TRUE(loop.end(call).has_value());
}

} // namespace

} // namespace ventolith::e2e
