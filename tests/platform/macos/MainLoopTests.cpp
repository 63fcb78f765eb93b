#include "programs/ventolith/MainLoop.h"

#include "MacTest.h"
#include "fake/MainThread.h"
#include "platform/macos/desktop/IOPowerSource.h"

#include <boost/asio/executor_work_guard.hpp>

#include <stdexcept>
#include <thread>

namespace ventolith::programs {
namespace {

using platform::IOPowerSource;

class MainLoopTest : public platform::MacTest {
protected:
  /// From the thread of the work.
  void postToMain(void (*work)(void*), void* context) {
    ::dispatch_async_f(::dispatch_get_main_queue(), context, work);
  }

  fake::MainThread main_;
  const std::thread::id mainThread_ = std::this_thread::get_id();
};

TEST_F(MainLoopTest, WorkRunsOnAThreadOfItsOwn) {
  std::thread::id thread = mainThread_;
  runBesideMainLoop([&] { thread = std::this_thread::get_id(); });
  EXPECT_NE(thread, mainThread_);
}

TEST_F(MainLoopTest, WhatIsSentToTheMainQueueRunsOnTheMainThreadBeforeTheEnd) {
  std::thread::id thread;
  runBesideMainLoop([&] {
    postToMain([](void* seen) { *static_cast<std::thread::id*>(seen) = std::this_thread::get_id(); },
               &thread);
  });
  EXPECT_EQ(thread, mainThread_);
}

TEST_F(MainLoopTest, WhatTheWorkThrowsIsThrownOnTheMainThread) {
  EXPECT_THROW(runBesideMainLoop([] { throw std::runtime_error("no machine"); }), std::runtime_error);
}

TEST_F(MainLoopTest, LoopThatSomebodyElseStopsGoesOn) {
  bool isTold = false;
  runBesideMainLoop([&] {
    postToMain([](void*) { ::CFRunLoopStop(::CFRunLoopGetMain()); }, nullptr);
    postToMain([](void* told) { *static_cast<bool*>(told) = true; }, &isTold);
  });
  EXPECT_TRUE(isTold);
}

TEST_F(MainLoopTest, ChangesOfThePowerSourceAreHeardBesideTheWork) {
  auto provider = std::make_unique<IOPowerSource>(time_.executor());
  int told = 0;
  runBesideMainLoop([&] {
    auto untilTold = boost::asio::make_work_guard(time_.context);
    provider->start([&] {
      ++told;
      untilTold.reset();
    });
    postToMain([](void*) { fake::MainThread::get().notify(); }, nullptr);
    time_.context.run();
    provider.reset();
  });
  EXPECT_EQ(told, 1);
  EXPECT_EQ(main_.sourcesInLoop(), 0U);
}

} // namespace
} // namespace ventolith::programs
