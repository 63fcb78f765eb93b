// The helper's object behind a connection of XPC's own, within one process: on a Mac alone. What crosses is
// waited for, since XPC has no other time than the real one.
#include "core/ControlContract.h"
#include "platform/macos/service/FanHelperProtocol.h"
#include "platform/macos/service/FoundationText.h"
#include "platform/macos/service/HelperPeer.h"

#import <objc/runtime.h>

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
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

  /// Runs the service's executor until `isDone`, for five seconds at most.
  bool await(const std::function<bool()>& isDone) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    const auto work = boost::asio::make_work_guard(context);
    while (!isDone() && std::chrono::steady_clock::now() < end)
      context.run_for(std::chrono::milliseconds(5));
    return isDone();
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
    await([&] { return dispatch_semaphore_wait(come, DISPATCH_TIME_NOW) == 0; });
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

TEST(FanHelperProtocol, HasItsSelectorsAndTypes) {
  const std::map<std::string, std::string> types = {
      {"helperVersionWithReply:", "v24@0:8@?16"},
      {"shutdownForUpgradeWithReply:", "v24@0:8@?16"},
      {"setManualRPMWithFan:rpm:withReply:", "v40@0:8q16q24@?32"},
      {"setPercentWithFan:percent:withReply:", "v40@0:8q16d24@?32"},
      {"fullBlastWithReply:", "v24@0:8@?16"},
      {"automaticWithReply:", "v24@0:8@?16"},
      {"applyConfig:withReply:", "v32@0:8@16@?24"},
      {"restoreAutoWithReply:", "v24@0:8@?16"},
      {"heartbeat", "v16@0:8"},
      {"readStateWithReply:", "v24@0:8@?16"},
  };
  for (const auto& [selector, type] : types) {
    const auto method = protocol_getMethodDescription(@protocol(FanHelperProtocol),
                                                      sel_registerName(selector.c_str()), YES, YES);
    EXPECT_STREQ(method.types, type.c_str()) << selector;
  }
  unsigned count = 0;
  free(protocol_copyMethodDescriptionList(@protocol(FanHelperProtocol), YES, YES, &count));
  EXPECT_EQ(count, types.size());
}

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

} // namespace
