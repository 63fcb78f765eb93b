// The power management of a Mac, as far as who hears of sleep meets it.
#pragma once

#include <IOKit/pwr_mgt/IOPMLib.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace fake {

using Log = std::vector<std::string>;

/// The one in force, from its making to its end. Keeps a log of what it was asked. Any thread, but for what a
/// test sets before.
class PowerRoot {
public:
  PowerRoot();
  PowerRoot(const PowerRoot&) = delete;
  PowerRoot& operator=(const PowerRoot&) = delete;
  ~PowerRoot();

  // What the test sets.
  bool takesRegistrations = true;

  /// A notice to whoever is registered and has said on which queue, on that queue: nothing else runs there
  /// meanwhile. False if there is nobody.
  bool tell(natural_t message, std::intptr_t change = 0);
  /// Time passes: on the queue happens what was put off for up to `seconds`.
  void pass(int seconds);

  void note(std::string entry);
  [[nodiscard]] Log log() const;
  /// How many queues were made and not released.
  [[nodiscard]] int queues() const { return queues_; }

  // The system's functions.
  void enlist(void* context, IOServiceInterestCallback callback);
  void delist();
  void setQueue(dispatch_queue_t queue);
  void countQueue(int difference) { queues_ += difference; }
  void runOnQueue(void* context, void (*work)(void* context));
  void putOff(std::int64_t nanoseconds, void* context, void (*work)(void* context));

private:
  struct Registration {
    void* context = nullptr;
    IOServiceInterestCallback callback = nullptr;
    dispatch_queue_t queue = nullptr;
  };
  struct Timer {
    std::int64_t nanoseconds;
    void* context;
    void (*work)(void* context);
  };

  std::mutex queueRuns_; // Held while something runs on the queue.
  mutable std::mutex mutex_;
  Registration registration_;
  std::vector<Timer> timers_;
  Log log_;
  int queues_ = 0; // Of the test's thread.
};

} // namespace fake
