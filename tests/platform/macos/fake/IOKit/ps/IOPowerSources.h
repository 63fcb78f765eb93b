// What the system says of its power supplies.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

using IOPowerSourceCallbackType = void (*)(void* context);

extern "C" {
CFTypeRef IOPSCopyPowerSourcesInfo();
CFStringRef IOPSGetProvidingPowerSourceType(CFTypeRef snapshot);
CFRunLoopSourceRef IOPSNotificationCreateRunLoopSource(IOPowerSourceCallbackType callback, void* context);
}
