// What a model keeps in memory, over a week and beyond its end.
#include "ModelFixture.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> liveAllocations = 0;

} // namespace

// In place of the library's own. The frames of coroutines come from elsewhere, but all work that is let go
// has a name, which comes from here.

void* operator new(std::size_t size) {
  void* const memory = std::malloc(size > 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  ++liveAllocations;
  return memory;
}

void operator delete(void* memory) noexcept {
  if (memory == nullptr) return;
  --liveAllocations;
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}

namespace ventolith::app {
namespace {

class ModelWeekTest : public AppModelTest {
protected:
  /// Lets hours pass with a state of the controller in each minute, and forgets what the doubles note down.
  void passHours(int hours) {
    for (int minute = 0; minute < hours * 60; ++minute) {
      controller().states.yield({.lastError = "in minute " + std::to_string(minute)});
      pass(60);
      readings.times.clear();
      controllers.heartbeats.clear();
      controllers.heartbeatTimes.clear();
    }
  }

  /// What is alive after a week is what was alive after its first hour.
  void expectAFlatWeek() {
    constexpr double spareBlocks = 2; // Which a queue may keep or not.
    passHours(1);
    const auto files = disk.files();
    const std::size_t sleepers = time.clock.sleeperCount();
    const auto afterAnHour = static_cast<double>(liveAllocations);
    passHours(7 * 24 - 1);
    EXPECT_NEAR(static_cast<double>(liveAllocations), afterAnHour, spareBlocks);
    EXPECT_EQ(time.clock.sleeperCount(), sleepers);
    EXPECT_EQ(disk.files(), files);
    EXPECT_EQ(controllers.alive(), 1U);
  }
};

TEST_F(ModelWeekTest, AnIdleWeekKeepsNothingThatGrows) {
  startWithHelper();
  expectAFlatWeek();
  EXPECT_EQ(sentCount(), 0U);
}

TEST_F(ModelWeekTest, AWeekOfHoldingAFanKeepsNothingThatGrows) {
  store.savePlan(fixed({{0, 3000}}));
  startWithHelper();
  expectAFlatWeek();
  EXPECT_EQ(sentCount(), 1U);
}

TEST_F(ModelWeekTest, AnOnboardingThatNeverCameToItsStatusEndsWithTheModel) {
  const auto liveAfterARound = [this] {
    registration->answers.isClosed = true;
    start();
    model->beginHelperOnboarding();
    settle();
    release();
    registration->answers.open();
    settle();
    controllers.controllers.clear(); // Which are gone, but known.
    return liveAllocations.load();
  };
  liveAfterARound(); // The first one is of things that stay.
  const long before = liveAfterARound();
  EXPECT_EQ(liveAfterARound(), before);
}

} // namespace
} // namespace ventolith::app
