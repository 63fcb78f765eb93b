// The main thread's queue of work.
#pragma once

using dispatch_queue_t = struct FakeDispatchQueue*;
using dispatch_function_t = void (*)(void* context);

extern "C" {
dispatch_queue_t dispatch_get_main_queue();
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);
}
