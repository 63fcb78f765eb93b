// Kernel queues, as far as one timer in one queue.
#pragma once

#include <cstdint>
#include <ctime>

struct kevent {
  std::uintptr_t ident;
  std::int16_t filter;
  std::uint16_t flags;
  std::uint32_t fflags;
  std::intptr_t data;
  void* udata;
};

inline constexpr std::int16_t EVFILT_TIMER = -7;
inline constexpr std::uint16_t EV_ADD = 0x0001;
inline constexpr std::uint16_t EV_DELETE = 0x0002;
inline constexpr std::uint16_t EV_ONESHOT = 0x0010;
inline constexpr std::uint32_t NOTE_ABSOLUTE = 0x00000008;
inline constexpr std::uint32_t NOTE_CRITICAL = 0x00000020;
inline constexpr std::uint32_t NOTE_MACH_CONTINUOUS_TIME = 0x00000080;
inline constexpr std::uint32_t NOTE_MACHTIME = 0x00000100;

extern "C" {
int kqueue();
int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events, int eventCount,
           const timespec* timeout);
}
