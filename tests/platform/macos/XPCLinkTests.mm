// Both ends of the line over XPC itself, within one process: on a Mac alone. What crosses is waited for,
// since XPC has no other time than the real one.
#include "core/ControlContract.h"
#include "platform/macos/service/FanHelperProtocol.h"
#include "platform/macos/service/FoundationText.h"
#include "platform/macos/service/HelperPeer.h"
#include "platform/macos/service/XPCHelperChannel.h"

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace ventolith;
using platform::HelperIntake;
namespace messages = helper::messages;
namespace replies = helper::replies;

@interface VentolithTestDoor : NSObject <NSXPCListenerDelegate>
@property std::shared_ptr<HelperIntake> intake;
@end

@implementation VentolithTestDoor

- (BOOL)listener:(NSXPCListener*)listener shouldAcceptNewConnection:(NSXPCConnection*)connection {
  const auto caller =
      self.intake->admit(connection.processIdentifier, connection.effectiveUserIdentifier, [] {});
  connection.exportedInterface = [NSXPCInterface interfaceWithProtocol:@protocol(FanHelperProtocol)];
  connection.exportedObject = [[VentolithHelperPeer alloc] initWithCaller:caller];
  [connection resume];
  return YES;
}

@end

namespace {

/// Keeps what arrives, and answers it in kind.
struct Service final : helper::HelperService {
  runtime::Async<helper::HelperAnswer> answer(helper::HelperCaller, helper::HelperMessage message) override {
    arrived.push_back(message);
    if (refuses) co_return helper::Refusal{helper::Refusal::Reason::tooManyCalls, "too many"};
    if (std::holds_alternative<messages::Heartbeat>(message)) co_return std::nullopt;
    if (std::holds_alternative<messages::HelperVersion>(message))
      co_return helper::HelperReply(replies::Version{"1.0.3+6"});
    if (std::holds_alternative<messages::ReadState>(message))
      co_return helper::HelperReply(replies::State{"{}"});
    if (std::holds_alternative<messages::RestoreAuto>(message) ||
        std::holds_alternative<messages::ShutdownForUpgrade>(message))
      co_return helper::HelperReply(replies::Done());
    co_return helper::HelperReply(replies::Code{42});
  }
  void callerIsGone(const helper::HelperCaller&) override {}

  bool refuses = false;
  std::vector<helper::HelperMessage> arrived;
};

/// Whether `isDone` comes true while the executor runs, for five seconds at most.
bool runUntil(boost::asio::io_context& context, const std::function<bool()>& isDone) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  const auto work = boost::asio::make_work_guard(context);
  while (!isDone()) {
    if (std::chrono::steady_clock::now() > end) return false;
    context.run_for(std::chrono::milliseconds(5));
  }
  return true;
}

struct XPCLink : testing::Test {
  XPCLink() {
    intake->serve(service);
    door.intake = intake;
    listener.delegate = door;
    [listener resume];
    connection = [[NSXPCConnection alloc] initWithListenerEndpoint:listener.endpoint];
    connection.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(FanHelperProtocol)];
    [connection resume];
  }
  ~XPCLink() override {
    intake->stop();
    [connection invalidate];
    [listener invalidate];
  }

  /// The text of what a call is answered with; "error" where it ends by one.
  std::string answerTo(const std::function<void(id<FanHelperProtocol>, void (^)(std::string))>& call) {
    const auto answer = std::make_shared<std::string>();
    dispatch_semaphore_t const come = dispatch_semaphore_create(0);
    void (^const note)(std::string) = ^(std::string text) {
      *answer = text;
      dispatch_semaphore_signal(come);
    };
    call([connection remoteObjectProxyWithErrorHandler:^(NSError*) {
           note("error");
         }],
         note);
    runUntil(context, [&] { return dispatch_semaphore_wait(come, DISPATCH_TIME_NOW) == 0; });
    return *answer;
  }
  std::string codeOf(const std::function<void(id<FanHelperProtocol>, void (^)(std::int64_t))>& call) {
    return answerTo([&](id<FanHelperProtocol> helper, void (^note)(std::string)) {
      call(helper, ^(std::int64_t code) {
        note(std::to_string(code));
      });
    });
  }

  boost::asio::io_context context;
  Service service;
  std::shared_ptr<HelperIntake> intake =
      std::make_shared<HelperIntake>(context.get_executor(), std::make_shared<platform::PresentCallers>());
  VentolithTestDoor* door = [[VentolithTestDoor alloc] init];
  NSXPCListener* listener = [NSXPCListener anonymousListener];
  NSXPCConnection* connection = nil;
};

TEST_F(XPCLink, CarriesTheCommandsAndTheirCodes) {
  EXPECT_EQ(codeOf([](auto helper, auto reply) { [helper setManualRPMWithFan:1 rpm:2500 withReply:reply]; }),
            "42");
  EXPECT_EQ(
      codeOf([](auto helper, auto reply) { [helper setPercentWithFan:1 percent:62.5 withReply:reply]; }),
      "42");
  EXPECT_EQ(codeOf([](auto helper, auto reply) { [helper fullBlastWithReply:reply]; }), "42");
  EXPECT_EQ(codeOf([](auto helper, auto reply) { [helper automaticWithReply:reply]; }), "42");
  EXPECT_EQ(codeOf([](auto helper, auto reply) {
              [helper applyConfig:platform::dataOf("{\"fans\":[]}") withReply:reply];
            }),
            "42");
  const std::vector<helper::HelperMessage> sent = {
      messages::SetManualRPM{.fan = 1, .rpm = 2500}, messages::SetPercent{.fan = 1, .percent = 62.5},
      messages::FullBlast(), messages::Automatic(), messages::ApplyConfig{"{\"fans\":[]}"}};
  EXPECT_EQ(service.arrived, sent);
}

TEST_F(XPCLink, CarriesTheBuildAndTheState) {
  EXPECT_EQ(answerTo([](auto helper, auto note) {
              [helper helperVersionWithReply:^(NSString* identifier) {
                note(platform::textOf(identifier));
              }];
            }),
            "1.0.3+6");
  EXPECT_EQ(answerTo([](auto helper, auto note) {
              [helper readStateWithReply:^(NSData* state) {
                note(platform::bytesOf(state));
              }];
            }),
            "{}");
}

TEST_F(XPCLink, CarriesWhatHasNoAnswerOrNoneToSpeakOf) {
  [connection.remoteObjectProxy heartbeat];
  EXPECT_EQ(answerTo([](auto helper, auto note) {
              [helper restoreAutoWithReply:^{
                note("done");
              }];
            }),
            "done");
  EXPECT_EQ(service.arrived,
            (std::vector<helper::HelperMessage>{messages::Heartbeat(), messages::RestoreAuto()}));
}

TEST_F(XPCLink, ARefusalIsTheCodeOfAFailureAndNoObject) {
  service.refuses = true;
  EXPECT_EQ(codeOf([](auto helper, auto reply) { [helper fullBlastWithReply:reply]; }),
            std::to_string(core::ControlResult::failed("").xpcCode()));
  EXPECT_EQ(answerTo([](auto helper, auto note) {
              [helper readStateWithReply:^(NSData* state) {
                note(state == nil ? "none" : "some");
              }];
            }),
            "none");
}

TEST_F(XPCLink, OfAPlanThatIsTooLongNoMoreArrivesThanTheServiceRefuses) {
  codeOf([](auto helper, auto reply) {
    [helper applyConfig:platform::dataOf(std::string(std::size_t{3} << 20, ' ')) withReply:reply];
  });
  ASSERT_EQ(service.arrived.size(), 1U);
  EXPECT_EQ(std::get<messages::ApplyConfig>(service.arrived[0]).plan.size(), HelperIntake::copiedBytes);
}

TEST_F(XPCLink, ACallThatIsUnderWayWhenTheHelperStopsIsRefused) {
  EXPECT_EQ(answerTo([this](auto helper, auto note) {
              [helper fullBlastWithReply:^(std::int64_t code) {
                note(std::to_string(code));
              }];
              intake->stop();
            }),
            std::to_string(core::ControlResult::failed("").xpcCode()));
  EXPECT_TRUE(service.arrived.empty());
}

struct ChannelToNobody : testing::Test {
  ChannelToNobody() {
    channel.resume({.interrupted = [] {}, .invalidated = [this] { ++losses; }});
  }

  boost::asio::io_context context;
  int losses = 0;
  platform::XPCHelperChannel channel{context.get_executor(),
                                     {"com.ventolith.tests.nobody", platform::MachService::Domain::user}};
};

TEST_F(ChannelToNobody, ACallEndsWithoutAReplyAndTheLossIsToldOnce) {
  std::vector<std::optional<helper::HelperReply>> ends;
  const auto call = [this, &ends](helper::HelperMessage message) -> runtime::Async<void> {
    ends.push_back(co_await channel.call(std::move(message)));
  };
  runtime::start(context.get_executor(), "the first call", call(messages::FullBlast()));
  EXPECT_TRUE(runUntil(context, [&] { return ends.size() == 1 && losses == 1; }));
  runtime::start(context.get_executor(), "the second call", call(messages::ReadState()));
  EXPECT_TRUE(runUntil(context, [&] { return ends.size() == 2; }));
  EXPECT_EQ(ends[0], std::nullopt);
  EXPECT_EQ(ends[1], std::nullopt);
  EXPECT_EQ(losses, 1);
}

TEST_F(ChannelToNobody, AHeartbeatIsLostAndSoIsTheChannel) {
  channel.send(messages::Heartbeat());
  EXPECT_TRUE(runUntil(context, [&] { return losses == 1; }));
}

TEST_F(ChannelToNobody, ACallThatIsUnderWayWhenItIsInvalidatedEnds) {
  bool hasEnded = false;
  const auto call = [this, &hasEnded]() -> runtime::Async<void> {
    hasEnded = !(co_await channel.call(messages::FullBlast())).has_value();
  };
  runtime::start(context.get_executor(), "the call", call());
  channel.invalidate();
  EXPECT_TRUE(runUntil(context, [&] { return hasEnded; }));
  EXPECT_EQ(losses, 0);
}

} // namespace
