// As much of IOKit as a user client's caller needs.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <cstdint>

using kern_return_t = int;
using mach_port_t = unsigned;
using task_port_t = mach_port_t;
using io_object_t = mach_port_t;
using io_service_t = io_object_t;
using io_connect_t = io_object_t;

#define kIOReturnNotPrivileged 0xE00002C1U

extern "C" {

extern const mach_port_t kIOMainPortDefault;
extern mach_port_t mach_task_self_;

CFMutableDictionaryRef IOServiceMatching(const char* name);
io_service_t IOServiceGetMatchingService(mach_port_t mainPort, CFDictionaryRef matching);
kern_return_t IOServiceOpen(io_service_t service, task_port_t owner, std::uint32_t type,
                            io_connect_t* connect);
kern_return_t IOServiceClose(io_connect_t connect);
kern_return_t IOObjectRelease(io_object_t object);
kern_return_t IOConnectCallStructMethod(mach_port_t connection, std::uint32_t selector, const void* input,
                                        std::size_t inputSize, void* output, std::size_t* outputSize);
}
