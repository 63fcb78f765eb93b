#include "runtime/StopToken.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace ventolith::runtime {
namespace {

TEST(StopToken, TokenWithoutSourceIsNeverStopped) {
  const StopToken token;
  bool called = false;
  const auto observation = token.onStop([&] { called = true; });
  EXPECT_FALSE(token.stopRequested());
  EXPECT_FALSE(called);
}

TEST(StopToken, EveryTokenOfASourceSeesTheRequest) {
  StopSource source;
  const StopToken first = source.token();
  const StopToken second = source.token();
  EXPECT_FALSE(first.stopRequested());
  source.requestStop();
  EXPECT_TRUE(source.stopRequested());
  EXPECT_TRUE(first.stopRequested());
  EXPECT_TRUE(second.stopRequested());
  EXPECT_TRUE(source.token().stopRequested());
}

TEST(StopToken, SourcesAreIndependent) {
  StopSource stopped;
  const StopSource other;
  stopped.requestStop();
  EXPECT_FALSE(other.stopRequested());
}

TEST(StopToken, TokenOutlivesItsSource) {
  std::optional<StopSource> source(std::in_place);
  const StopToken token = source->token();
  source.reset();
  EXPECT_FALSE(token.stopRequested());
}

TEST(StopToken, TokenRemembersTheRequestOfASourceThatIsGone) {
  std::optional<StopSource> source(std::in_place);
  const StopToken token = source->token();
  source->requestStop();
  source.reset();
  EXPECT_TRUE(token.stopRequested());
}

TEST(StopToken, ObservationOutlivesSourceAndToken) {
  std::optional<StopSource> source(std::in_place);
  int calls = 0;
  const auto observation = source->token().onStop([&] { ++calls; });
  source.reset();
  EXPECT_EQ(calls, 0);
}

TEST(StopToken, ObserverIsCalledAtTheMomentOfTheRequest) {
  StopSource source;
  bool seen = false;
  const auto observation = source.token().onStop([&] { seen = source.stopRequested(); });
  source.requestStop();
  EXPECT_TRUE(seen);
}

TEST(StopToken, SecondRequestTellsNobodyAgain) {
  StopSource source;
  int calls = 0;
  const auto observation = source.token().onStop([&] { ++calls; });
  source.requestStop();
  source.requestStop();
  EXPECT_EQ(calls, 1);
}

TEST(StopToken, RequestInsideAnObserverTellsNobodyAgain) {
  StopSource source;
  int calls = 0;
  const auto observation = source.token().onStop([&] {
    ++calls;
    source.requestStop();
  });
  source.requestStop();
  EXPECT_EQ(calls, 1);
}

TEST(StopToken, ObserversAreToldInTheOrderOfTheirArrival) {
  StopSource source;
  std::string order;
  const auto a = source.token().onStop([&] { order += 'a'; });
  const auto b = source.token().onStop([&] { order += 'b'; });
  const auto c = source.token().onStop([&] { order += 'c'; });
  source.requestStop();
  EXPECT_EQ(order, "abc");
}

TEST(StopToken, ObserverIsNotToldOnceItsObservationHasEnded) {
  StopSource source;
  int calls = 0;
  {
    const auto observation = source.token().onStop([&] { ++calls; });
  }
  source.requestStop();
  EXPECT_EQ(calls, 0);
}

TEST(StopToken, ObserverThatComesAfterTheRequestIsNotTold) {
  StopSource source;
  source.requestStop();
  int calls = 0;
  const auto observation = source.token().onStop([&] { ++calls; });
  source.requestStop();
  EXPECT_EQ(calls, 0);
}

TEST(StopToken, ObserverThatComesDuringTheRequestIsNotTold) {
  StopSource source;
  int calls = 0;
  StopObservation late;
  const auto adding = source.token().onStop([&] { late = source.token().onStop([&] { ++calls; }); });
  const auto last = source.token().onStop([] {});
  source.requestStop();
  EXPECT_EQ(calls, 0);
}

TEST(StopToken, ObserverMayEndItsOwnObservation) {
  StopSource source;
  int calls = 0;
  StopObservation own;
  own = source.token().onStop([&] {
    own = StopObservation();
    ++calls;
  });
  const auto next = source.token().onStop([&] { ++calls; });
  source.requestStop();
  EXPECT_EQ(calls, 2);
}

TEST(StopToken, ObserverMayEndTheObservationOfTheNext) {
  StopSource source;
  std::string told;
  StopObservation second;
  const auto first = source.token().onStop([&] { second = StopObservation(); });
  second = source.token().onStop([&] { told += '2'; });
  const auto third = source.token().onStop([&] { told += '3'; });
  source.requestStop();
  EXPECT_EQ(told, "3");
}

TEST(StopToken, ObserverMayEndTheObservationOfOneBefore) {
  StopSource source;
  std::string told;
  StopObservation first = source.token().onStop([&] { told += '1'; });
  const auto second = source.token().onStop([&] {
    first = StopObservation();
    told += '2';
  });
  const auto third = source.token().onStop([&] { told += '3'; });
  source.requestStop();
  EXPECT_EQ(told, "123");
}

TEST(StopToken, ObserverMayDestroyTheSource) {
  std::optional<StopSource> source(std::in_place);
  int calls = 0;
  const auto first = source->token().onStop([&] { source.reset(); });
  const auto second = source->token().onStop([&] { ++calls; });
  source->requestStop();
  EXPECT_EQ(calls, 1);
}

TEST(StopToken, MovedObservationGoesOn) {
  StopSource source;
  int calls = 0;
  StopObservation kept;
  {
    StopObservation observation = source.token().onStop([&] { ++calls; });
    const StopObservation moved(std::move(observation));
    kept = source.token().onStop([&] { calls += 10; });
  }
  source.requestStop();
  EXPECT_EQ(calls, 10);
}

TEST(StopToken, AssignedObservationEndsTheFormer) {
  StopSource source;
  std::string told;
  StopObservation observation = source.token().onStop([&] { told += 'a'; });
  observation = source.token().onStop([&] { told += 'b'; });
  source.requestStop();
  EXPECT_EQ(told, "b");
}

TEST(StopToken, ObservationAssignedToItselfGoesOn) {
  StopSource source;
  int calls = 0;
  StopObservation observation = source.token().onStop([&] { ++calls; });
  StopObservation& same = observation;
  observation = std::move(same);
  source.requestStop();
  EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace ventolith::runtime
