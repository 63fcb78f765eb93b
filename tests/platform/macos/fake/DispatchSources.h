// What waits for descriptors on the main queue of the fake system.
#pragma once

#include "InForce.h"

#include <dispatch/dispatch.h>

#include <cstddef>
#include <deque>

namespace ventolith::fake {

class DispatchSources : public InForce<DispatchSources> {
public:
  DispatchSources() : InForce(this) {}

  bool givesSources = true; // What the test sets.

  /// One turn of the main thread: calls back for each descriptor that can be read. What was cancelled is let
  /// go of in the next turn of the queue (MainThread).
  void turn();

  /// That are not let go of.
  [[nodiscard]] std::size_t count() const;
  /// Of the newest one.
  [[nodiscard]] int descriptor() const { return sources_.back().descriptor; }

  struct Source {
    int descriptor;
    int references = 1;
    void* context = nullptr;
    dispatch_function_t onEvent = nullptr;
    dispatch_function_t onCancel = nullptr;
    bool isResumed = false;
    bool isCancelled = false;
  };

  Source* create(int descriptor);
  static void cancel(Source& source);
  static void release(Source& source);

private:
  std::deque<Source> sources_; // What is gone stays in memory, so that its use is a complaint and no crash.
};

} // namespace ventolith::fake
