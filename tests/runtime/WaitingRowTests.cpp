#include "runtime/WaitingRow.h"

#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ventolith::runtime {
namespace {

using Names = std::vector<std::string>;

class WaitingRowTest : public testing::Test {
protected:
  /// Takes the turn of a place, and says so when it has come.
  void take(WaitingRow::Place place, std::string name) { time.start(takeTurn(place, std::move(name))); }

  support::VirtualTime time;
  std::shared_ptr<WaitingRow> row = std::make_shared<WaitingRow>();
  Names turns;

private:
  Async<void> takeTurn(WaitingRow::Place place, std::string name) {
    co_await WaitingRow::turn(row, place);
    turns.push_back(std::move(name));
  }
};

TEST_F(WaitingRowTest, WhoIsAloneDoesNotWait) {
  take(row->enter(), "a");
  EXPECT_EQ(turns, Names({"a"}));
}

TEST_F(WaitingRowTest, WhoIsReadyFirstWaitsForThoseBeforeIt) {
  const auto a = row->enter();
  const auto b = row->enter();
  const auto c = row->enter();
  take(c, "c");
  take(b, "b");
  EXPECT_EQ(turns, Names());
  take(a, "a");
  EXPECT_EQ(turns, Names({"a", "b", "c"}));
}

TEST_F(WaitingRowTest, OneThatIsNotReadyHoldsUpThoseBehindItAlone) {
  const auto a = row->enter();
  const auto b = row->enter();
  const auto c = row->enter();
  take(c, "c");
  take(a, "a");
  EXPECT_EQ(turns, Names({"a"}));
  take(b, "b");
  EXPECT_EQ(turns, Names({"a", "b", "c"}));
}

TEST_F(WaitingRowTest, WhoHasItsTurnGoesOnBeforeTheNext) {
  const auto a = row->enter();
  take(row->enter(), "b");
  const auto first = [this, a]() -> Async<void> {
    co_await WaitingRow::turn(row, a);
    turns.emplace_back("a has its turn");
    turns.emplace_back("a is done");
  };
  time.start(first());
  EXPECT_EQ(turns, Names({"a has its turn", "a is done", "b"}));
}

TEST_F(WaitingRowTest, NobodyIsLeftInItWhenAllHaveHadTheirTurns) {
  const auto a = row->enter();
  take(row->enter(), "b");
  EXPECT_EQ(row->size(), 2U);
  take(a, "a");
  EXPECT_EQ(row->size(), 0U);
  take(row->enter(), "c");
  EXPECT_EQ(turns, Names({"a", "b", "c"}));
}

} // namespace
} // namespace ventolith::runtime
