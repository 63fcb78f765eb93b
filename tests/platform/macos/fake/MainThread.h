// The main thread of the fake system: its run loop, its queue, and the power sources that speak through it.
#pragma once

#include "InForce.h"
#include "Objects.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/ps/IOPowerSources.h>
#include <dispatch/dispatch.h>

#include <optional>
#include <string>
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
  void enqueue(void* context, dispatch_function_t work) { queue_.emplace_back(context, work); }

private:
  struct Source {
    Object* object;
    IOPowerSourceCallbackType callback;
    void* context;
  };

  [[nodiscard]] bool isDefault(const Object& mode);

  std::vector<Source> sources_; // All that were created.
  std::vector<Object*> inLoop_;
  std::vector<std::pair<void*, dispatch_function_t>> queue_;
};

} // namespace ventolith::fake
