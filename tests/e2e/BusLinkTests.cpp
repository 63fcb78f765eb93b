// The line over the bus while all goes well: messages, replies, order, amounts.
#include "e2e/BusLink.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace ventolith::e2e {

namespace {

using helper::HelperAnswer;
using helper::HelperMessage;
using helper::HelperReply;
using helper::Refusal;
namespace messages = helper::messages;
namespace replies = helper::replies;
using namespace std::chrono_literals;

constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
constexpr auto highest = std::numeric_limits<std::int64_t>::max();
constexpr auto infinity = std::numeric_limits<double>::infinity();

struct Exchange {
  const char* name;
  HelperMessage message;
  HelperReply reply;
};

std::ostream& operator<<(std::ostream& stream, const Exchange& exchange) {
  return stream << exchange.name;
}

std::string everyByte() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte)
    bytes.push_back(static_cast<char>(byte));
  return bytes;
}

const std::string megabyte(std::size_t{1} << 20, 'x');

struct BusLinkExchange : BusLink, testing::WithParamInterface<Exchange> {};

TEST_P(BusLinkExchange, ArrivesWithItsPayloadAndItsReply) {
  serve();
  service.reply = [&](const HelperMessage&) { return GetParam().reply; };
  Client client(loop, bus.address());

  EXPECT_EQ(client.call(GetParam().message), GetParam().reply);
  EXPECT_EQ(service.received, std::vector<HelperMessage>{GetParam().message});
}

INSTANTIATE_TEST_SUITE_P(
    Messages, BusLinkExchange,
    testing::Values(Exchange{"version", messages::HelperVersion(), replies::Version{"1.0.3+6"}},
                    Exchange{"no version", messages::HelperVersion(), replies::Version{""}},
                    Exchange{"upgrade", messages::ShutdownForUpgrade(), replies::Done()},
                    Exchange{"RPM", messages::SetManualRPM{1, 3000}, replies::Code{0}},
                    Exchange{"least RPM", messages::SetManualRPM{lowest, lowest}, replies::Code{lowest}},
                    Exchange{"most RPM", messages::SetManualRPM{highest, highest}, replies::Code{highest}},
                    Exchange{"percent", messages::SetPercent{2, 12.5}, replies::Code{1}},
                    Exchange{"infinite percent", messages::SetPercent{-1, infinity}, replies::Code{2}},
                    Exchange{"negative infinite percent", messages::SetPercent{highest, -infinity},
                             replies::Code{2}},
                    Exchange{"full blast", messages::FullBlast(), replies::Code{-1}},
                    Exchange{"automatic", messages::Automatic(), replies::Code{0}},
                    Exchange{"plan", messages::ApplyConfig{"{}"}, replies::Code{7}},
                    Exchange{"empty plan", messages::ApplyConfig{""}, replies::Code{7}},
                    Exchange{"plan of all bytes", messages::ApplyConfig{everyByte()}, replies::Code{7}},
                    Exchange{"plan of a megabyte", messages::ApplyConfig{megabyte}, replies::Code{0}},
                    Exchange{"release", messages::RestoreAuto(), replies::Done()},
                    Exchange{"state", messages::ReadState(), replies::State{"{\"fans\":[]}"}},
                    Exchange{"empty state", messages::ReadState(), replies::State{""}},
                    Exchange{"state of all bytes", messages::ReadState(), replies::State{everyByte()}},
                    Exchange{"state of a megabyte", messages::ReadState(), replies::State{megabyte}}));

TEST_F(BusLink, PercentageThatIsNoNumberArrivesAsNone) {
  serve();
  service.reply = [](const HelperMessage&) { return HelperReply(replies::Code{2}); };
  Client client(loop, bus.address());

  client.call(messages::SetPercent{0, std::numeric_limits<double>::quiet_NaN()});

  ASSERT_EQ(service.received.size(), 1U);
  EXPECT_TRUE(std::isnan(std::get<messages::SetPercent>(service.received.front()).percent));
}

TEST_F(BusLink, HeartbeatArrivesOneWay) {
  serve();
  Client client(loop, bus.address());

  client.channel->send(messages::Heartbeat());

  loop.until("the heartbeat", [&] { return !service.received.empty(); });
  EXPECT_EQ(service.received, std::vector<HelperMessage>{messages::Heartbeat()});
}

TEST_F(BusLink, CallerWhoWaitsForAHeartbeatsEndGetsIt) {
  serve();
  service.reply = [](const HelperMessage&) { return HelperAnswer(); };
  const auto proxy = foreignProxy();

  EXPECT_EQ(errorOf(*proxy, proxy->createMethodCall(helperInterface, "Heartbeat")), "");
}

TEST_F(BusLink, MessagesArriveInTheOrderInWhichTheyWereSent) {
  serve();
  Client client(loop, bus.address());
  std::vector<HelperMessage> sent;
  std::vector<ServiceLoop::Pending<Client::Reply>> calls;

  for (std::int64_t rpm = 0; rpm < 50; ++rpm) {
    sent.push_back(messages::SetManualRPM{0, rpm});
    calls.push_back(client.begin(sent.back()));
    sent.push_back(messages::Heartbeat());
    client.channel->send(sent.back());
  }

  loop.until("all messages", [&] { return service.received.size() >= sent.size(); });
  EXPECT_EQ(service.received, sent);
}

TEST_F(BusLink, ThousandCallsInFlightAreAnsweredEachWithItsOwn) {
  serve();
  service.isSilent = true;
  service.reply = [](const HelperMessage& message) {
    return HelperReply(replies::Code{std::get<messages::SetManualRPM>(message).rpm});
  };
  Client client(loop, bus.address());
  std::vector<ServiceLoop::Pending<Client::Reply>> calls;
  for (std::int64_t rpm = 0; rpm < 1000; ++rpm)
    calls.push_back(client.begin(messages::SetManualRPM{0, rpm}));
  loop.until("all calls", [&] { return service.received.size() == calls.size(); });

  service.speak();

  for (std::size_t call = 0; call < calls.size(); ++call)
    ASSERT_EQ(loop.end(calls[call]), HelperReply(replies::Code{static_cast<std::int64_t>(call)}));
}

TEST_F(BusLink, NoMoreOfABodyIsTakenThanTellsThatItIsTooLong) {
  serve();
  service.reply = [](const HelperMessage&) { return HelperReply(replies::Code{0}); };
  Client client(loop, bus.address());

  client.call(messages::ApplyConfig{std::string(3'000'000, 'x')});

  ASSERT_EQ(service.received.size(), 1U);
  EXPECT_EQ(std::get<messages::ApplyConfig>(service.received.front()).plan.size(), (1U << 20) + 1);
}

TEST_F(BusLink, EachClientHasANameOfItsOwn) {
  serve();
  Client first(loop, bus.address());
  Client second(loop, bus.address());

  first.call(messages::RestoreAuto());
  second.call(messages::RestoreAuto());
  first.call(messages::RestoreAuto());

  ASSERT_EQ(service.callers.size(), 3U);
  EXPECT_EQ(service.callers[0], service.callers[2]);
  EXPECT_NE(service.callers[0], service.callers[1]);
}

TEST_F(BusLink, MessagesWaitUntilTheListenerIsResumed) {
  listener = helperServices.claimListener();
  Client client(loop, bus.address());
  const auto call = client.begin(messages::RestoreAuto());
  loop.runFor(50ms);
  EXPECT_TRUE(service.received.empty());

  listener->resume(service, [](const std::string&) {});

  EXPECT_EQ(loop.end(call), HelperReply(replies::Done()));
}

TEST_F(BusLink, WatchedCallerThatGoesAwayIsTold) {
  serve();
  auto client = std::make_unique<Client>(loop, bus.address());
  client->call(messages::RestoreAuto());
  const helper::HelperCaller caller = service.callers.front();
  listener->watch(caller);

  client.reset();

  loop.until("the caller's end", [&] { return !service.gone.empty(); });
  EXPECT_EQ(service.gone, std::vector<helper::HelperCaller>{caller});
}

TEST_F(BusLink, CallerThatIsNoLongerWatchedGoesUnnoticed) {
  serve();
  auto client = std::make_unique<Client>(loop, bus.address());
  Client other(loop, bus.address());
  client->call(messages::RestoreAuto());
  other.call(messages::RestoreAuto());
  listener->watch(service.callers[0]);
  listener->watch(service.callers[1]);
  listener->unwatch(service.callers[0]);

  client.reset();
  loop.runFor(50ms);

  EXPECT_TRUE(service.gone.empty());
}

TEST_F(BusLink, OtherClientsThatComeAndGoWakeNobody) {
  serve();
  Client client(loop, bus.address());
  client.call(messages::RestoreAuto());
  listener->watch(service.callers[0]);
  loop.untilAsleep();
  const std::size_t wakeUps = loop.handledCount();

  stranger()->requestName("com.ventolith.stranger");
  loop.runFor(50ms);

  EXPECT_EQ(loop.handledCount(), wakeUps);
}

TEST_F(BusLink, IntrospectionNamesTheMethodsAndTheirArguments) {
  serve();
  const auto proxy = foreignProxy();
  auto call = proxy->createMethodCall("org.freedesktop.DBus.Introspectable", "Introspect");
  std::optional<std::string> text;
  const auto pending = proxy->callMethod(call, [&](sdbus::MethodReply& reply, const sdbus::Error*) {
    std::string xml;
    reply >> xml;
    boost::asio::post(loop.executor(), [&text, xml] { text = xml; });
  });
  loop.until("the introspection", [&] { return text.has_value(); });

  for (const char* expected : {R"(<method name="HelperVersion">
   <arg type="s" name="identifier" direction="out"/>)",
                               R"(<method name="ShutdownForUpgrade">)",
                               R"(<method name="SetManualRPM">
   <arg type="x" name="fan" direction="in"/>
   <arg type="x" name="rpm" direction="in"/>
   <arg type="x" name="result" direction="out"/>)",
                               R"(<method name="SetPercent">
   <arg type="x" name="fan" direction="in"/>
   <arg type="d" name="percent" direction="in"/>
   <arg type="x" name="result" direction="out"/>)",
                               R"(<method name="FullBlast">)", R"(<method name="Automatic">)",
                               R"(<method name="ApplyConfig">
   <arg type="ay" name="plan" direction="in"/>
   <arg type="x" name="result" direction="out"/>)",
                               R"(<method name="RestoreAuto">)",
                               R"(<method name="Heartbeat">
   <annotation name="org.freedesktop.DBus.Method.NoReply" value="true"/>)",
                               R"(<method name="ReadState">
   <arg type="ay" name="state" direction="out"/>)"}) {
    EXPECT_NE(text->find(expected), std::string::npos) << expected << "\nin\n" << *text;
  }
}

} // namespace

} // namespace ventolith::e2e
