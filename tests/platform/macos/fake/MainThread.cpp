#include "MainThread.h"

#include <algorithm>

namespace ventolith::fake {

namespace {

// Of which the addresses alone count.
Object mainLoop{.type = "run loop", .isConstant = true};
int mainQueue;

} // namespace

void MainThread::notify() {
  for (const Source& source : std::vector<Source>(sources_)) {
    if (std::find(inLoop_.begin(), inLoop_.end(), source.object) != inLoop_.end())
      source.callback(source.context);
  }
}

void MainThread::notifyAllThatEverWere() {
  for (const Source& source : std::vector<Source>(sources_))
    source.callback(source.context);
}

void MainThread::enqueue(void* context, dispatch_function_t work) {
  const std::lock_guard held(mutex_);
  queue_.emplace_back(context, work);
  queued_.notify_one();
}

MainThread::Work MainThread::takeWork() {
  std::unique_lock held(mutex_);
  queued_.wait(held, [&] { return !queue_.empty(); });
  const Work work = queue_.front();
  queue_.pop_front();
  return work;
}

void MainThread::runQueue() {
  std::deque<Work> queue;
  {
    const std::lock_guard held(mutex_);
    queue.swap(queue_);
  }
  for (const auto& [context, work] : queue)
    work(context);
}

void MainThread::runLoop() {
  if (std::this_thread::get_id() != thread_) Objects::get().complain("another thread's loop was run");
  isLoopRunning_ = true;
  while (isLoopRunning_) {
    const auto [context, work] = takeWork();
    work(context);
  }
}

// A loop that does not run hears nothing of it.
void MainThread::stopLoop() {
  if (!isLoopRunning_) Objects::get().complain("a loop was stopped that does not run");
  isLoopRunning_ = false;
}

CFTypeRef MainThread::copySnapshot() {
  if (!Objects::get().hasPool()) Objects::get().complain("the power sources were asked for without a pool");
  if (!givesSnapshot) return nullptr;
  Object& snapshot = Objects::get().make({.type = "snapshot"});
  if (providing) snapshot.parts.push_back(&Objects::get().makeString(*providing));
  return snapshot.as<CFTypeRef>();
}

CFRunLoopSourceRef MainThread::createSource(IOPowerSourceCallbackType callback, void* context) {
  if (!givesSource) return nullptr;
  Object& source = Objects::get().make({.type = "run loop source"});
  sources_.push_back({&source, callback, context});
  return source.as<CFRunLoopSourceRef>();
}

void MainThread::add(Object& source, const Object& mode) {
  if (!isDefault(mode)) return;
  Objects::get().retain(source);
  inLoop_.push_back(&source);
}

void MainThread::remove(Object& source, const Object& mode) {
  if (!isDefault(mode)) return;
  const auto place = std::find(inLoop_.begin(), inLoop_.end(), &source);
  if (place == inLoop_.end()) {
    Objects::get().complain("a source was taken out that is not in the run loop");
    return;
  }
  inLoop_.erase(place);
  Objects::get().release(source);
}

bool MainThread::isDefault(const Object& mode) {
  if (&mode == objectOf(kCFRunLoopDefaultMode)) return true;
  Objects::get().complain("a source is not meant for the default mode");
  return false;
}

} // namespace ventolith::fake

using ventolith::fake::MainThread;
using ventolith::fake::Object;
using ventolith::fake::objectOf;
using ventolith::fake::Objects;

extern "C" {

CFRunLoopRef CFRunLoopGetMain() {
  return ventolith::fake::mainLoop.as<CFRunLoopRef>();
}

void CFRunLoopRun() {
  MainThread::get().runLoop();
}

void CFRunLoopStop(CFRunLoopRef loop) {
  if (loop != CFRunLoopGetMain()) Objects::get().complain("CFRunLoopStop was given another loop");
  MainThread::get().stopLoop();
}

void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  Object* const object = Objects::get().alive(source, "CFRunLoopAddSource", "run loop source");
  if (loop != CFRunLoopGetMain()) Objects::get().complain("CFRunLoopAddSource was given another loop");
  if (object != nullptr) MainThread::get().add(*object, *objectOf(mode));
}

void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  Object* const object = Objects::get().alive(source, "CFRunLoopRemoveSource", "run loop source");
  if (loop != CFRunLoopGetMain()) Objects::get().complain("CFRunLoopRemoveSource was given another loop");
  if (object != nullptr) MainThread::get().remove(*object, *objectOf(mode));
}

dispatch_queue_t dispatch_get_main_queue() {
  return reinterpret_cast<dispatch_queue_t>(&ventolith::fake::mainQueue);
}

void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
  if (queue != dispatch_get_main_queue()) Objects::get().complain("work was sent to another queue");
  MainThread::get().enqueue(context, work);
}

CFTypeRef IOPSCopyPowerSourcesInfo() {
  return MainThread::get().copySnapshot();
}

CFStringRef IOPSGetProvidingPowerSourceType(CFTypeRef snapshot) {
  const Object* const object = Objects::get().alive(snapshot, "IOPSGetProvidingPowerSourceType", "snapshot");
  return object == nullptr || object->parts.empty() ? nullptr : object->parts.front()->as<CFStringRef>();
}

CFRunLoopSourceRef IOPSNotificationCreateRunLoopSource(IOPowerSourceCallbackType callback, void* context) {
  return MainThread::get().createSource(callback, context);
}

} // extern "C"
