// The ten messages as an Objective-C protocol: the whole of what crosses between application and helper. For
// Objective-C++ alone.
#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>
#include <type_traits>

// On the wire integers are "q", as long long is, and the percentage is "d".
static_assert(std::is_same_v<std::int64_t, long long>);

NS_ASSUME_NONNULL_BEGIN

/// The order, the selectors and the types are the protocol: helpers and applications of other builds know
/// them too. Every reply is called exactly once. A helper that refuses replies with nil where there is an
/// object, and with the code of a failure where there is a code.
@protocol FanHelperProtocol

- (void)helperVersionWithReply:(void (^)(NSString* _Nullable identifier))reply;
- (void)shutdownForUpgradeWithReply:(void (^)(void))reply;
- (void)setManualRPMWithFan:(std::int64_t)fan
                        rpm:(std::int64_t)rpm
                  withReply:(void (^)(std::int64_t result))reply;
- (void)setPercentWithFan:(std::int64_t)fan
                  percent:(double)percent
                withReply:(void (^)(std::int64_t result))reply;
- (void)fullBlastWithReply:(void (^)(std::int64_t result))reply;
- (void)automaticWithReply:(void (^)(std::int64_t result))reply;
- (void)applyConfig:(NSData*)plan withReply:(void (^)(std::int64_t result))reply;
- (void)restoreAutoWithReply:(void (^)(void))reply;
- (void)heartbeat;
- (void)readStateWithReply:(void (^)(NSData* _Nullable state))reply;

@end

NS_ASSUME_NONNULL_END
