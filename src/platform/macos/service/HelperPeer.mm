#include "platform/macos/service/HelperPeer.h"

#include "core/ControlContract.h"
#include "platform/macos/service/FoundationText.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <variant>

using ventolith::core::ControlResult;
using ventolith::helper::HelperReply;
using ventolith::platform::HelperIntake;
namespace messages = ventolith::helper::messages;
namespace platform = ventolith::platform;
namespace replies = ventolith::helper::replies;

namespace {

using Answer = platform::PendingAnswer::Answer;
using Content = std::optional<HelperReply>;

/// The reply's content, if it is of the kind that its message has.
template <class Reply>
const Reply* contentOf(const Content& answer) {
  return answer ? std::get_if<Reply>(&*answer) : nullptr;
}

/// Has `give` call `reply` with the answer. The executor's thread has no pool of its own for what XPC leaves
/// behind; and a client that is none of ours may send a message without anything to reply to.
template <class Block, class Give>
Answer answering(Block reply, Give give) {
  return [reply, give](const Content& answer) {
    @autoreleasepool {
      if (reply != nil) give(reply, answer);
    }
  };
}

Answer coded(void (^reply)(std::int64_t)) {
  return answering(reply, [](auto send, const Content& answer) {
    const auto* const code = contentOf<replies::Code>(answer);
    send(code == nullptr ? ControlResult::failed("refused").xpcCode() : code->value);
  });
}

Answer done(void (^reply)()) {
  return answering(reply, [](auto send, const Content&) { send(); });
}

Answer identified(void (^reply)(NSString*)) {
  return answering(reply, [](auto send, const Content& answer) {
    const auto* const version = contentOf<replies::Version>(answer);
    send(version == nullptr ? nil : platform::nsString(version->identifier));
  });
}

Answer told(void (^reply)(NSData*)) {
  return answering(reply, [](auto send, const Content& answer) {
    const auto* const state = contentOf<replies::State>(answer);
    send(state == nullptr ? nil : platform::dataOf(state->json));
  });
}

} // namespace

@implementation VentolithHelperPeer {
  std::shared_ptr<HelperIntake::Caller> caller_;
}

- (instancetype)initWithCaller:(std::shared_ptr<HelperIntake::Caller>)caller {
  self = [super init];
  if (self) caller_ = std::move(caller);
  return self;
}

- (void)helperVersionWithReply:(void (^)(NSString*))reply {
  caller_->take(messages::HelperVersion(), identified(reply));
}

- (void)shutdownForUpgradeWithReply:(void (^)(void))reply {
  caller_->take(messages::ShutdownForUpgrade(), done(reply));
}

- (void)setManualRPMWithFan:(std::int64_t)fan rpm:(std::int64_t)rpm withReply:(void (^)(std::int64_t))reply {
  caller_->take(messages::SetManualRPM{.fan = fan, .rpm = rpm}, coded(reply));
}

- (void)setPercentWithFan:(std::int64_t)fan percent:(double)percent withReply:(void (^)(std::int64_t))reply {
  caller_->take(messages::SetPercent{.fan = fan, .percent = percent}, coded(reply));
}

- (void)fullBlastWithReply:(void (^)(std::int64_t))reply {
  caller_->take(messages::FullBlast(), coded(reply));
}

- (void)automaticWithReply:(void (^)(std::int64_t))reply {
  caller_->take(messages::Automatic(), coded(reply));
}

- (void)applyConfig:(NSData*)plan withReply:(void (^)(std::int64_t))reply {
  caller_->take(messages::ApplyConfig{platform::bytesOf(plan, HelperIntake::copiedBytes)}, coded(reply));
}

- (void)restoreAutoWithReply:(void (^)(void))reply {
  caller_->take(messages::RestoreAuto(), done(reply));
}

- (void)heartbeat {
  caller_->take(messages::Heartbeat(), nullptr);
}

- (void)readStateWithReply:(void (^)(NSData*))reply {
  caller_->take(messages::ReadState(), told(reply));
}

@end
