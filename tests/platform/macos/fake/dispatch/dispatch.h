// The main thread's queue of work, and what waits for descriptors on it.
#pragma once

#include <cstdint>

using dispatch_queue_t = struct FakeDispatchQueue*;
using dispatch_source_t = struct FakeDispatchSource*;
using dispatch_source_type_t = const struct FakeDispatchSourceType*;
using dispatch_function_t = void (*)(void* context);

extern "C" {

extern const dispatch_source_type_t DISPATCH_SOURCE_TYPE_READ;

dispatch_queue_t dispatch_get_main_queue();
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, std::uintptr_t handle,
                                         std::uintptr_t mask, dispatch_queue_t queue);
void dispatch_set_context(dispatch_source_t source, void* context);
void dispatch_source_set_event_handler_f(dispatch_source_t source, dispatch_function_t handler);
void dispatch_source_set_cancel_handler_f(dispatch_source_t source, dispatch_function_t handler);
void dispatch_resume(dispatch_source_t source);
void dispatch_source_cancel(dispatch_source_t source);
void dispatch_release(dispatch_source_t source);
}
