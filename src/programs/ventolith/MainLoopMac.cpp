#include "programs/ventolith/MainLoop.h"

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#include <future>

namespace ventolith::programs {

namespace {

/// The main thread's alone.
struct MainLoop {
  bool isOver = false;

  /// Runs while the loop is there: a loop that is told to stop before it runs does not hear of it.
  static void end(void* loop) {
    static_cast<MainLoop*>(loop)->isOver = true;
    ::CFRunLoopStop(::CFRunLoopGetMain());
  }
};

} // namespace

void runBesideMainLoop(const std::function<void()>& work) {
  MainLoop loop;
  auto ended = std::async(std::launch::async, [&] {
    struct Ending {
      MainLoop& loop;
      ~Ending() { ::dispatch_async_f(::dispatch_get_main_queue(), &loop, MainLoop::end); }
    };
    const Ending atTheEnd{loop};
    work();
  });
  while (!loop.isOver)
    ::CFRunLoopRun();
  ended.get();
}

} // namespace ventolith::programs
