// The registration for sleep and wake-up.
#pragma once

#include <IOKit/IOKitLib.h>

#include <cstdint>

extern "C" {
io_connect_t IORegisterForSystemPower(void* context, IONotificationPortRef* port,
                                      IOServiceInterestCallback callback, io_object_t* notifier);
kern_return_t IODeregisterForSystemPower(io_object_t* notifier);
kern_return_t IOAllowPowerChange(io_connect_t root, std::intptr_t change);
}
