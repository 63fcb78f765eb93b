// Timers of the system.
#pragma once

#include <cstdint>

using dispatch_queue_t = struct DispatchQueue*;
using dispatch_source_t = struct DispatchSource*;
using dispatch_source_type_t = const struct DispatchSourceType*;
using dispatch_time_t = std::uint64_t;
using dispatch_function_t = void (*)(void* context);

#define DISPATCH_TIME_NOW 0ULL
#define DISPATCH_TIME_FOREVER (~0ULL)
#define QOS_CLASS_USER_INITIATED 0x19

extern "C" {
extern const dispatch_source_type_t DISPATCH_SOURCE_TYPE_TIMER;

dispatch_queue_t dispatch_get_global_queue(std::intptr_t quality, std::uintptr_t flags);
dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds);
dispatch_source_t dispatch_source_create(dispatch_source_type_t type, std::uintptr_t handle,
                                         std::uintptr_t mask, dispatch_queue_t queue);
void dispatch_source_set_event_handler_f(dispatch_source_t source, dispatch_function_t handler);
void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, std::uint64_t interval,
                               std::uint64_t leeway);
void dispatch_resume(dispatch_source_t source);
void dispatch_source_cancel(dispatch_source_t source);
void dispatch_release(dispatch_source_t source);
}
