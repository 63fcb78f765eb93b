// The messages of power management, in IOKit's numbers.
#pragma once

#define kIOMessageSystemWillPowerOff 0xE0000250U
#define kIOMessageCanSystemSleep 0xE0000270U
#define kIOMessageSystemWillSleep 0xE0000280U
#define kIOMessageSystemWillNotSleep 0xE0000290U
#define kIOMessageSystemHasPoweredOn 0xE0000300U
#define kIOMessageSystemWillRestart 0xE0000310U
#define kIOMessageSystemWillPowerOn 0xE0000320U
