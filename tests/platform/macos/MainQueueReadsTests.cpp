#include "programs/ventolith/window/MainQueueReads.h"

#include "MacTest.h"
#include "fake/DispatchSources.h"
#include "fake/MainThread.h"
#include "platform/macos/Descriptor.h"
#include "programs/ventolith/window/QtWait.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <optional>
#include <system_error>

namespace ventolith::programs {
namespace {

bool isOpen(int descriptor) {
  return ::fcntl(descriptor, F_GETFD) >= 0;
}

class MainQueueTest : public platform::MacTest {
protected:
  MainQueueTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    reading_ = platform::Descriptor(ends[0]);
    writing_ = platform::Descriptor(ends[1]);
  }
  ~MainQueueTest() override {
    main_.runQueue();
    EXPECT_EQ(sources_.count(), 0U);
  }

  void write() { EXPECT_EQ(::write(writing_.get(), "1", 1), 1); }

  fake::MainThread main_;
  fake::DispatchSources sources_;
  platform::Descriptor reading_{-1};
  platform::Descriptor writing_{-1};
  int told_ = 0;
};

// Reading

class MainQueueReadsTest : public MainQueueTest {
protected:
  void begin() {
    reads_.emplace(reading_.get(), [this] { ++told_; });
  }

  std::optional<MainQueueReads> reads_;
};

TEST_F(MainQueueReadsTest, TellsInEachTurnForAsLongAsThereIsSomethingToRead) {
  begin();
  sources_.turn();
  EXPECT_EQ(told_, 0);
  write();
  sources_.turn();
  sources_.turn();
  EXPECT_EQ(told_, 2);
}

TEST_F(MainQueueReadsTest, DescriptorMayBeClosedMeanwhile) {
  begin();
  reading_ = platform::Descriptor(-1);
  write();
  sources_.turn();
  EXPECT_EQ(told_, 1);
}

TEST_F(MainQueueReadsTest, TellsNothingOnceItIsGone) {
  begin();
  write();
  reads_.reset();
  sources_.turn();
  EXPECT_EQ(told_, 0);
}

TEST_F(MainQueueReadsTest, KeepsItsCopyOpenUntilTheQueueHasLetGoOfIt) {
  begin();
  const int copy = sources_.descriptor();
  EXPECT_NE(copy, reading_.get());
  reads_.reset();
  EXPECT_TRUE(isOpen(copy));
  main_.runQueue();
  EXPECT_FALSE(isOpen(copy));
  EXPECT_TRUE(isOpen(reading_.get()));
}

TEST_F(MainQueueReadsTest, WhoIsToldMayLetGoOfIt) {
  reads_.emplace(reading_.get(), [this] {
    reads_.reset();
    ++told_;
  });
  write();
  sources_.turn();
  sources_.turn();
  EXPECT_EQ(told_, 1);
}

TEST_F(MainQueueReadsTest, FailsForWhatIsNoDescriptorAndWhereThereIsNoSource) {
  EXPECT_THROW(MainQueueReads(-1, [] {}), std::system_error);
  sources_.givesSources = false;
  EXPECT_THROW(MainQueueReads(reading_.get(), [] {}), std::system_error);
}

// Waiting

class QtWaitTest : public MainQueueTest {
protected:
  void begin() {
    wait_->begin([this] { ++told_; });
  }

  std::unique_ptr<platform::ReadableWait> wait_ = waitInQt()(reading_.get());
};

TEST_F(QtWaitTest, EndsOnce) {
  begin();
  write();
  sources_.turn();
  sources_.turn();
  EXPECT_EQ(told_, 1);
}

TEST_F(QtWaitTest, WaitsForNothingUntilItBegins) {
  write();
  sources_.turn();
  EXPECT_EQ(told_, 0);
}

TEST_F(QtWaitTest, ItsEndMayBeginTheNextWait) {
  wait_->begin([this] {
    ++told_;
    begin();
  });
  write();
  sources_.turn();
  EXPECT_EQ(told_, 1);
  sources_.turn();
  EXPECT_EQ(told_, 2);
}

TEST_F(QtWaitTest, CancelledWaitIsNotTold) {
  begin();
  write();
  wait_->cancel();
  sources_.turn();
  EXPECT_EQ(told_, 0);
}

TEST_F(QtWaitTest, MayBeginAgainAfterItWasCancelled) {
  begin();
  wait_->cancel();
  begin();
  write();
  sources_.turn();
  EXPECT_EQ(told_, 1);
}

} // namespace
} // namespace ventolith::programs
