// What the protocol's header uses of Foundation, for the compiler alone: nothing of it is ever linked.
#pragma once

#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")

@class NSData;
@class NSString;
