#include "platform/macos/service/XPCHelperChannel.h"

#include "core/Visitor.h"
#include "platform/macos/service/FanHelperProtocol.h"
#include "platform/macos/service/FoundationText.h"
#include "platform/macos/service/HelperCalls.h"

#include <utility>

namespace ventolith::platform {

using core::Visitor;
using helper::HelperMessage;
using Reply = HelperCalls::Reply;
namespace messages = helper::messages;
namespace replies = helper::replies;

namespace {

using Proxy = NSObject<FanHelperProtocol>;
using ReplyHandler = void (^)(Reply reply);

/// Sends the message. `ended` is called with its reply, on a thread of XPC's.
void sendMessage(Proxy* helper, const HelperMessage& message, ReplyHandler ended) {
  void (^const done)() = ^{
    ended(replies::Done());
  };
  void (^const coded)(std::int64_t) = ^(std::int64_t result) {
    ended(replies::Code{result});
  };
  void (^const identified)(NSString*) = ^(NSString* identifier) {
    ended(identifier == nil ? Reply() : Reply(replies::Version{textOf(identifier)}));
  };
  void (^const told)(NSData*) = ^(NSData* state) {
    ended(state == nil ? Reply() : Reply(replies::State{bytesOf(state)}));
  };
  std::visit(
      Visitor{
          [&](const messages::HelperVersion&) { [helper helperVersionWithReply:identified]; },
          [&](const messages::ShutdownForUpgrade&) { [helper shutdownForUpgradeWithReply:done]; },
          [&](const messages::SetManualRPM& its) {
            [helper setManualRPMWithFan:its.fan rpm:its.rpm withReply:coded];
          },
          [&](const messages::SetPercent& its) {
            [helper setPercentWithFan:its.fan percent:its.percent withReply:coded];
          },
          [&](const messages::FullBlast&) { [helper fullBlastWithReply:coded]; },
          [&](const messages::Automatic&) { [helper automaticWithReply:coded]; },
          [&](const messages::ApplyConfig& its) { [helper applyConfig:dataOf(its.plan) withReply:coded]; },
          [&](const messages::RestoreAuto&) { [helper restoreAutoWithReply:done]; },
          [&](const messages::Heartbeat&) { [helper heartbeat]; },
          [&](const messages::ReadState&) { [helper readStateWithReply:told]; },
      },
      message);
}

/// None where the connection offers no helper.
Proxy* helperBehind(id proxy) {
  return [proxy conformsToProtocol:@protocol(FanHelperProtocol)] ? proxy : nil;
}

// What every helper's application has asked for.
static_assert(NSXPCConnectionPrivileged == 4096);

NSXPCConnection* connectionTo(const MachService& service) {
  const bool isPrivileged = service.domain == MachService::Domain::system;
  const NSXPCConnectionOptions none = 0;
  NSXPCConnection* const connection =
      [[NSXPCConnection alloc] initWithMachServiceName:nsString(service.name)
                                               options:isPrivileged ? NSXPCConnectionPrivileged : none];
  connection.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(FanHelperProtocol)];
  return connection;
}

} // namespace

/// One connection, from its opening to its end. On the executor; XPC holds it weakly.
struct XPCHelperChannel::Line {
  Line(const runtime::Executor& executor, Handlers toCall) : handlers(std::move(toCall)), calls(executor) {}

  /// What blocks capture is handed over by value: a reference would outlive what it refers to.
  void open(const MachService& service, std::shared_ptr<Doorway> doorway, std::weak_ptr<Line> self);
  void close();
  void wasLost();
  void noteUse();

  const Handlers handlers;
  HelperCalls calls;
  NSXPCConnection* connection = nil;
  bool isUsed = false;
  bool isLost = false;
  bool isLossTold = false;
};

void XPCHelperChannel::Line::open(const MachService& service, std::shared_ptr<Doorway> doorway,
                                  std::weak_ptr<Line> self) {
  connection = connectionTo(service);
  connection.interruptionHandler = ^{
    doorway->post([self] {
      if (const auto line = self.lock()) line->handlers.interrupted();
    });
  };
  connection.invalidationHandler = ^{
    doorway->post([self] {
      if (const auto line = self.lock()) line->wasLost();
    });
  };
  [connection resume];
}

void XPCHelperChannel::Line::close() {
  connection.interruptionHandler = nil;
  connection.invalidationHandler = nil;
  [connection invalidate];
  calls.endAll();
}

/// A name that launchd does not know is lost as soon as it is opened: that is told after the first use.
void XPCHelperChannel::Line::wasLost() {
  isLost = true;
  if (isUsed && !std::exchange(isLossTold, true)) handlers.invalidated();
}

void XPCHelperChannel::Line::noteUse() {
  isUsed = true;
  if (isLost) wasLost();
}

XPCHelperChannel::XPCHelperChannel(runtime::Executor executor, MachService service)
    : executor_(std::move(executor)),
      service_(std::move(service)),
      doorway_(std::make_shared<Doorway>(executor_)) {}

XPCHelperChannel::~XPCHelperChannel() {
  invalidate();
}

void XPCHelperChannel::resume(Handlers handlers) {
  @autoreleasepool {
    line_ = std::make_shared<Line>(executor_, std::move(handlers));
    line_->open(service_, doorway_, line_);
  }
}

runtime::Async<Reply> XPCHelperChannel::call(HelperMessage message) {
  if (!line_) return [](Reply none) -> runtime::Async<Reply> { co_return none; }(std::nullopt);
  line_->noteUse();
  auto call = line_->calls.begin();
  @autoreleasepool {
    const ReplyHandler ended = [doorway = doorway_, line = std::weak_ptr(line_),
                                number = call.number](Reply reply) {
      doorway->post([line, number, reply = std::move(reply)]() mutable {
        if (const auto open = line.lock()) open->calls.end(number, std::move(reply));
      });
    };
    Proxy* const helper =
        line_->isLost ? nil : helperBehind([line_->connection remoteObjectProxyWithErrorHandler:^(NSError*) {
          ended(std::nullopt);
        }]);
    if (helper == nil) {
      line_->calls.end(call.number, std::nullopt);
    } else {
      sendMessage(helper, message, ended);
    }
  }
  return std::move(call.reply);
}

void XPCHelperChannel::send(HelperMessage message) {
  if (!line_) return;
  line_->noteUse();
  if (line_->isLost) return;
  @autoreleasepool {
    Proxy* const helper = helperBehind([line_->connection remoteObjectProxy]);
    if (helper != nil)
      sendMessage(helper, message,
                  ^(Reply){
                  });
  }
}

void XPCHelperChannel::invalidate() {
  doorway_->shut();
  const auto line = std::exchange(line_, nullptr);
  if (!line) return;
  @autoreleasepool {
    line->close();
  }
}

} // namespace ventolith::platform
