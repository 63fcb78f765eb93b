// What a client sees of the helper: the object at the other end of its connection. For Objective-C++ alone.
#pragma once

#include "platform/macos/service/FanHelperProtocol.h"
#include "platform/macos/service/HelperIntake.h"

#include <memory>

NS_ASSUME_NONNULL_BEGIN

/// Turns each message of one connection into a value, and the answer into its reply. XPC calls it, one
/// message after another.
@interface VentolithHelperPeer : NSObject <FanHelperProtocol>

- (instancetype)initWithCaller:(std::shared_ptr<ventolith::platform::HelperIntake::Caller>)caller
    NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

@end

NS_ASSUME_NONNULL_END
