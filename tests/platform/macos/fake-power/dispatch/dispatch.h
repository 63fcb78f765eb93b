// A queue on which one thing runs at a time, on the thread of whoever has something for it.
#pragma once

#include <cstdint>

struct DispatchQueue;
using dispatch_queue_t = DispatchQueue*;
using dispatch_time_t = std::uint64_t;

#define DISPATCH_QUEUE_SERIAL nullptr
#define DISPATCH_TIME_NOW 0ULL

extern "C" {
dispatch_queue_t dispatch_queue_create(const char* label, const void* attributes);
void dispatch_release(dispatch_queue_t queue);
void dispatch_sync_f(dispatch_queue_t queue, void* context, void (*work)(void* context));
dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds);
void dispatch_after_f(dispatch_time_t when, dispatch_queue_t queue, void* context,
                      void (*work)(void* context));
}
