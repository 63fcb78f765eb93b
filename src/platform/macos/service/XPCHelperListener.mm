#include "platform/macos/service/XPCHelperListener.h"

#include "platform/macos/service/ClientAdmission.h"
#include "platform/macos/service/FanHelperProtocol.h"
#include "platform/macos/service/FoundationText.h"
#include "platform/macos/service/HelperPeer.h"
#include "platform/macos/service/SystemServices.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

using ventolith::platform::HelperIntake;

/// Lets clients in. XPC calls it, one connection after another.
@interface VentolithHelperDoor : NSObject <NSXPCListenerDelegate>

- (instancetype)initWithIntake:(std::shared_ptr<HelperIntake>)intake
                   onlyOwnUser:(BOOL)isForOwnUser NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

/// Signalled once by each connection that was asked to close, when it has.
@property(readonly) dispatch_semaphore_t closed;

@end

@implementation VentolithHelperDoor {
  std::shared_ptr<HelperIntake> intake_;
  BOOL isForOwnUser_;
}

- (instancetype)initWithIntake:(std::shared_ptr<HelperIntake>)intake onlyOwnUser:(BOOL)isForOwnUser {
  self = [super init];
  if (!self) return nil;
  intake_ = std::move(intake);
  isForOwnUser_ = isForOwnUser;
  _closed = dispatch_semaphore_create(0);
  return self;
}

- (BOOL)listener:(NSXPCListener*)listener shouldAcceptNewConnection:(NSXPCConnection*)connection {
  const uid_t user = connection.effectiveUserIdentifier;
  if (isForOwnUser_ && user != ::geteuid()) return NO;
  const auto caller = intake_->admit(connection.processIdentifier, user, [self closerOf:connection]);
  if (caller == nullptr) return NO;
  connection.exportedInterface = [NSXPCInterface interfaceWithProtocol:@protocol(FanHelperProtocol)];
  connection.exportedObject = [[VentolithHelperPeer alloc] initWithCaller:caller];
  void (^const gone)() = ^{
    caller->gone();
  };
  connection.interruptionHandler = gone;
  connection.invalidationHandler = gone;
  [connection resume];
  return YES;
}

/// Closes the connection once its answers are on their way. XPC keeps it until then.
- (std::function<void()>)closerOf:(NSXPCConnection*)connection {
  __weak NSXPCConnection* const open = connection;
  dispatch_semaphore_t const closed = _closed;
  return [open, closed] {
    NSXPCConnection* const present = open;
    if (present == nil) return static_cast<void>(dispatch_semaphore_signal(closed));
    [present scheduleSendBarrierBlock:^{
      [present invalidate];
      dispatch_semaphore_signal(closed);
    }];
  };
}

@end

namespace ventolith::platform {

namespace {

constexpr std::int64_t longestClosing = 200 * NSEC_PER_MSEC;

} // namespace

bool isJobOf(const MachService& service) {
  // launchd tells each job its label; what a shell starts inherits none, or the terminal's.
  const char* const label = std::getenv("XPC_SERVICE_NAME");
  return label != nullptr && label == std::string_view(service.name);
}

struct XPCHelperListener::Ear {
  VentolithHelperDoor* door;
  NSXPCListener* listener; // Holds its delegate weakly.
};

XPCHelperListener::XPCHelperListener(runtime::Executor executor, MachService service,
                                     std::shared_ptr<PresentCallers> callers)
    : service_(std::move(service)),
      requirement_(requirementForClients()),
      intake_(std::make_shared<HelperIntake>(std::move(executor), std::move(callers))) {
  if (isJobOf(service_)) return;
  throw ServiceError(fmt::format("launchd did not start this process as \"{}\".", service_.name));
}

XPCHelperListener::~XPCHelperListener() {
  invalidate();
}

void XPCHelperListener::resume(helper::HelperService& service, std::function<void(std::string)>) {
  intake_->serve(service);
  @autoreleasepool {
    ear_ = std::make_unique<Ear>(
        Ear{.door = [[VentolithHelperDoor alloc] initWithIntake:intake_ onlyOwnUser:!requirement_],
            .listener = [[NSXPCListener alloc] initWithMachServiceName:nsString(service_.name)]});
    ear_->listener.delegate = ear_->door;
    if (requirement_) [ear_->listener setConnectionCodeSigningRequirement:nsString(*requirement_)];
    [ear_->listener resume];
  }
}

void XPCHelperListener::invalidate() {
  @autoreleasepool {
    const std::size_t closing = intake_->stop();
    const auto ear = std::exchange(ear_, nullptr);
    if (!ear) return;
    [ear->listener invalidate];
    const dispatch_time_t latest = dispatch_time(DISPATCH_TIME_NOW, longestClosing);
    for (std::size_t connection = 0; connection < closing; ++connection)
      dispatch_semaphore_wait(ear->door.closed, latest);
  }
}

} // namespace ventolith::platform
