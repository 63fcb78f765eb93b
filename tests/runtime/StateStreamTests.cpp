#include "runtime/StateStream.h"

#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace ventolith::runtime {
namespace {

using support::VirtualTime;

struct Reader {
  explicit Reader(StateStream<int>& source) : stream(source) {}

  Async<void> readAll(StopToken stop) {
    while (const auto value = co_await stream.next(stop))
      values.push_back(*value);
    ended = true;
  }

  StateStream<int>& stream;
  std::vector<int> values;
  bool ended = false;
};
using Values = std::vector<int>;

TEST(StateStream, LateReaderReceivesEveryValueInOrder) {
  StateStream<int> stream;
  Reader reader(stream);
  VirtualTime time;
  for (int value = 0; value < 1000; ++value)
    stream.yield(value);
  time.start(reader.readAll(StopToken()));
  ASSERT_EQ(reader.values.size(), 1000U);
  for (int value = 0; value < 1000; ++value)
    EXPECT_EQ(reader.values[static_cast<std::size_t>(value)], value);
}

TEST(StateStream, WaitingReaderReceivesAValueAsItComes) {
  StateStream<int> stream;
  Reader reader(stream);
  VirtualTime time;
  time.start(reader.readAll(StopToken()));
  EXPECT_TRUE(reader.values.empty());
  stream.yield(1);
  time.clock.settle();
  EXPECT_EQ(reader.values, Values{1});
}

TEST(StateStream, ValuesYieldedBeforeTheReaderRunsAreAllKept) {
  StateStream<int> stream;
  Reader reader(stream);
  VirtualTime time;
  time.start(reader.readAll(StopToken()));
  stream.yield(1);
  stream.yield(2);
  stream.yield(3);
  time.clock.settle();
  EXPECT_EQ(reader.values, (Values{1, 2, 3}));
}

TEST(StateStream, EqualValuesAreNotMerged) {
  StateStream<int> stream;
  stream.yield(7);
  stream.yield(7);
  EXPECT_EQ(stream.tryNext(), 7);
  EXPECT_EQ(stream.tryNext(), 7);
  EXPECT_EQ(stream.tryNext(), std::nullopt);
}

TEST(StateStream, StopEndsAWaitingReader) {
  StateStream<int> stream;
  Reader reader(stream);
  StopSource source;
  VirtualTime time;
  time.start(reader.readAll(source.token()));
  EXPECT_FALSE(reader.ended);
  source.requestStop();
  time.clock.settle();
  EXPECT_TRUE(reader.ended);
}

TEST(StateStream, StoppedReaderStillReceivesWhatIsBuffered) {
  StateStream<int> stream;
  Reader reader(stream);
  StopSource source;
  VirtualTime time;
  stream.yield(1);
  stream.yield(2);
  source.requestStop();
  time.start(reader.readAll(source.token()));
  EXPECT_EQ(reader.values, (Values{1, 2}));
  EXPECT_TRUE(reader.ended);
}

TEST(StateStream, ValueThatComesWithTheStopIsNotLost) {
  StateStream<int> stream;
  Reader reader(stream);
  StopSource source;
  VirtualTime time;
  time.start(reader.readAll(source.token()));
  source.requestStop();
  stream.yield(1);
  time.clock.settle();
  EXPECT_EQ(reader.values, Values{1});
  EXPECT_TRUE(reader.ended);
}

TEST(StateStream, SecondReaderGoesOnAfterTheFirstWasStopped) {
  StateStream<int> stream;
  Reader first(stream);
  Reader second(stream);
  StopSource source;
  VirtualTime time;
  time.start(first.readAll(source.token()));
  stream.yield(1);
  time.clock.settle();
  source.requestStop();
  time.clock.settle();
  stream.yield(2);
  time.start(second.readAll(StopToken()));
  stream.yield(3);
  time.clock.settle();
  EXPECT_EQ(first.values, Values{1});
  EXPECT_EQ(second.values, (Values{2, 3}));
}

TEST(StateStream, TryNextTakesTheOldestOrNothing) {
  StateStream<int> stream;
  EXPECT_EQ(stream.tryNext(), std::nullopt);
  stream.yield(1);
  stream.yield(2);
  EXPECT_EQ(stream.tryNext(), 1);
  EXPECT_EQ(stream.tryNext(), 2);
  EXPECT_EQ(stream.tryNext(), std::nullopt);
}

TEST(StateStream, ValuesMayBeMoveOnly) {
  StateStream<std::unique_ptr<int>> stream;
  stream.yield(std::make_unique<int>(5));
  const auto value = stream.tryNext();
  ASSERT_TRUE(value);
  EXPECT_EQ(**value, 5);
}

} // namespace
} // namespace ventolith::runtime
