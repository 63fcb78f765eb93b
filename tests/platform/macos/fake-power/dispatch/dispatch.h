// A queue that runs what it is given at once.
#pragma once

struct DispatchQueue;
using dispatch_queue_t = DispatchQueue*;

#define DISPATCH_QUEUE_SERIAL nullptr

extern "C" {
dispatch_queue_t dispatch_queue_create(const char* label, const void* attributes);
void dispatch_release(dispatch_queue_t queue);
void dispatch_sync_f(dispatch_queue_t queue, void* context, void (*work)(void* context));
}
