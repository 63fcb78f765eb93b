#include "platform/macos/service/HelperPeer.h"

#include "core/ControlContract.h"
#include "platform/macos/service/FoundationText.h"

#include <utility>

using ventolith::core::ControlResult;
using ventolith::helper::HelperReply;
using ventolith::platform::HelperIntake;
namespace messages = ventolith::helper::messages;
namespace platform = ventolith::platform;
namespace replies = ventolith::helper::replies;

namespace {

using Answer = platform::PendingAnswer::Answer;

/// The reply's content, if it is of the kind that its message has.
template <class Reply>
const Reply* contentOf(const std::optional<HelperReply>& answer) {
  return answer ? std::get_if<Reply>(&*answer) : nullptr;
}

Answer coded(void (^reply)(std::int64_t)) {
  return [reply](const std::optional<HelperReply>& answer) {
    const auto* const code = contentOf<replies::Code>(answer);
    reply(code == nullptr ? ControlResult::failed("refused").xpcCode() : code->value);
  };
}

Answer done(void (^reply)()) {
  return [reply](const std::optional<HelperReply>&) { reply(); };
}

} // namespace

@implementation VentolithHelperPeer {
  std::shared_ptr<HelperIntake::Caller> _caller;
}

- (instancetype)initWithCaller:(std::shared_ptr<HelperIntake::Caller>)caller {
  self = [super init];
  if (self) _caller = std::move(caller);
  return self;
}

- (void)helperVersionWithReply:(void (^)(NSString*))reply {
  _caller->take(messages::HelperVersion(), [reply](const std::optional<HelperReply>& answer) {
    @autoreleasepool {
      const auto* const version = contentOf<replies::Version>(answer);
      reply(version == nullptr ? nil : platform::nsString(version->identifier));
    }
  });
}

- (void)shutdownForUpgradeWithReply:(void (^)(void))reply {
  _caller->take(messages::ShutdownForUpgrade(), done(reply));
}

- (void)setManualRPMWithFan:(std::int64_t)fan rpm:(std::int64_t)rpm withReply:(void (^)(std::int64_t))reply {
  _caller->take(messages::SetManualRPM{.fan = fan, .rpm = rpm}, coded(reply));
}

- (void)setPercentWithFan:(std::int64_t)fan percent:(double)percent withReply:(void (^)(std::int64_t))reply {
  _caller->take(messages::SetPercent{.fan = fan, .percent = percent}, coded(reply));
}

- (void)fullBlastWithReply:(void (^)(std::int64_t))reply {
  _caller->take(messages::FullBlast(), coded(reply));
}

- (void)automaticWithReply:(void (^)(std::int64_t))reply {
  _caller->take(messages::Automatic(), coded(reply));
}

- (void)applyConfig:(NSData*)plan withReply:(void (^)(std::int64_t))reply {
  _caller->take(messages::ApplyConfig{platform::bytesOf(plan, HelperIntake::copiedBytes)}, coded(reply));
}

- (void)restoreAutoWithReply:(void (^)(void))reply {
  _caller->take(messages::RestoreAuto(), done(reply));
}

- (void)heartbeat {
  _caller->take(messages::Heartbeat(), nullptr);
}

- (void)readStateWithReply:(void (^)(NSData*))reply {
  _caller->take(messages::ReadState(), [reply](const std::optional<HelperReply>& answer) {
    @autoreleasepool {
      const auto* const state = contentOf<replies::State>(answer);
      reply(state == nullptr ? nil : platform::dataOf(state->json));
    }
  });
}

@end
