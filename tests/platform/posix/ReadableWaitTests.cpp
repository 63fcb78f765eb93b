#include "platform/posix/ReadableWait.h"

#include "platform/posix/Descriptor.h"

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <functional>
#include <memory>
#include <system_error>
#include <utility>

namespace ventolith::platform {
namespace {

struct Pipe {
  Descriptor readEnd;
  Descriptor writeEnd;

  /// The other end can be read from here on.
  void write() const { ASSERT_EQ(::write(writeEnd.get(), "x", 1), 1); }
};

Pipe newPipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

class ReadableWaitTest : public testing::Test {
protected:
  std::unique_ptr<ReadableWait> waitFor(const Pipe& pipe) {
    return waitInAsio(context_.get_executor())(pipe.readEnd.get());
  }
  std::function<void()> count() {
    return [this] { ++called_; };
  }
  void poll() {
    context_.restart();
    context_.poll();
  }

  boost::asio::io_context context_;
  int called_ = 0;
};

TEST_F(ReadableWaitTest, CallsOnceWhenTheDescriptorCanBeRead) {
  const Pipe pipe = newPipe();
  const auto wait = waitFor(pipe);
  wait->begin(count());
  poll();
  EXPECT_EQ(called_, 0);
  pipe.write();
  poll();
  poll();
  EXPECT_EQ(called_, 1);
}

TEST_F(ReadableWaitTest, EachWaitIsCalledAsLongAsTheDescriptorCanBeRead) {
  const Pipe pipe = newPipe();
  const auto wait = waitFor(pipe);
  pipe.write();
  for (int time = 0; time < 3; ++time) {
    wait->begin(count());
    poll();
  }
  EXPECT_EQ(called_, 3);
}

TEST_F(ReadableWaitTest, NextWaitCanBeginWhereOneIsCalled) {
  const Pipe pipe = newPipe();
  const auto wait = waitFor(pipe);
  wait->begin([&] { wait->begin(count()); });
  pipe.write();
  poll();
  EXPECT_EQ(called_, 1);
}

TEST_F(ReadableWaitTest, CancelledWaitIsNotCalledAndKeepsNothingRunning) {
  const Pipe pipe = newPipe();
  const auto wait = waitFor(pipe);
  wait->begin(count());
  wait->cancel();
  pipe.write();
  context_.run();
  EXPECT_EQ(called_, 0);
}

// Where Asio waits by kqueue both have ended before the first is called: the next three are about that.

TEST_F(ReadableWaitTest, WaitThatHasEndedCanStillBeCancelled) {
  const Pipe one = newPipe();
  const Pipe other = newPipe();
  const auto first = waitFor(one);
  const auto second = waitFor(other);
  const auto countAndCancelBoth = [&] {
    ++called_;
    first->cancel();
    second->cancel();
  };
  one.write();
  other.write();
  first->begin(countAndCancelBoth);
  second->begin(countAndCancelBoth);
  poll();
  EXPECT_EQ(called_, 1);
}

TEST_F(ReadableWaitTest, WaitThatHasEndedIsNotCalledOnceItIsGone) {
  const Pipe one = newPipe();
  const Pipe other = newPipe();
  auto first = waitFor(one);
  auto second = waitFor(other);
  one.write();
  other.write();
  first->begin([&] {
    ++called_;
    second.reset();
  });
  second->begin([&] {
    ++called_;
    first.reset();
  });
  poll();
  EXPECT_EQ(called_, 1);
}

TEST_F(ReadableWaitTest, CancelledWaitDoesNotSpeakForTheNextOne) {
  const Pipe one = newPipe();
  const Pipe other = newPipe();
  const auto first = waitFor(one);
  const auto second = waitFor(other);
  bool isFirstCalled = false;
  one.write();
  other.write();
  // Whichever is called first begins the other one anew, whose descriptor can be read: once, not twice.
  const auto beginAnew = [&](ReadableWait& wait) {
    if (std::exchange(isFirstCalled, true)) return;
    wait.cancel();
    wait.begin(count());
  };
  first->begin([&] { beginAnew(*second); });
  second->begin([&] { beginAnew(*first); });
  poll();
  EXPECT_EQ(called_, 1);
}

} // namespace
} // namespace ventolith::platform
