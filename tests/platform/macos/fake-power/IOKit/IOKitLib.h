// As much of IOKit as who hears of sleep needs.
#pragma once

#include <dispatch/dispatch.h>

#include <cstdint>

using kern_return_t = int;
using natural_t = unsigned;
using mach_port_t = unsigned;
using io_object_t = mach_port_t;
using io_service_t = io_object_t;
using io_connect_t = io_object_t;

#define MACH_PORT_NULL 0U
#define IO_OBJECT_NULL 0U

struct IONotificationPort;
using IONotificationPortRef = IONotificationPort*;
using IOServiceInterestCallback = void (*)(void* context, io_service_t service, natural_t message,
                                           void* argument);

extern "C" {
kern_return_t IOServiceClose(io_connect_t connect);
void IONotificationPortSetDispatchQueue(IONotificationPortRef port, dispatch_queue_t queue);
void IONotificationPortDestroy(IONotificationPortRef port);
}
