// The main thread of the fake system: its run loop, its queue, and the power sources that speak through it.
#pragma once

#include "InForce.h"
#include "Objects.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/ps/IOPowerSources.h>
#include <dispatch/dispatch.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ventolith::fake {

class MainThread : public InForce<MainThread> {
public:
  MainThread() : InForce(this) {}

  // What the test sets.
  bool givesSnapshot = true;
  bool givesSource = true;
  std::optional<std::string> providing = "AC Power"; // None is no answer.

  /// The system notifies of power supplies: the sources in the run loop, in its default mode.
  void notify();
  /// As if the callbacks had begun just before their sources were taken out.
  void notifyAllThatEverWere();
  /// Does what waits in the queue.
  void runQueue();

  [[nodiscard]] std::size_t sourcesInLoop() const { return inLoop_.size(); }

  // The system's functions.
  CFTypeRef copySnapshot();
  CFRunLoopSourceRef createSource(IOPowerSourceCallbackType callback, void* context);
  void add(Object& source, const Object& mode);
  void remove(Object& source, const Object& mode);
  void enqueue(void* context, dispatch_function_t work); // Any thread.
  void runLoop();
  void stopLoop();

private:
  struct Source {
    Object* object;
    IOPowerSourceCallbackType callback;
    void* context;
  };

  using Work = std::pair<void*, dispatch_function_t>;

  [[nodiscard]] bool isDefault(const Object& mode);
  [[nodiscard]] Work takeWork();

  std::vector<Source> sources_; // All that were created.
  std::vector<Object*> inLoop_;
  bool isLoopRunning_ = false;
  const std::thread::id thread_ = std::this_thread::get_id();
  std::mutex mutex_; // Of the queue.
  std::condition_variable queued_;
  std::deque<Work> queue_;
};

} // namespace ventolith::fake
