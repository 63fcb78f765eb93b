#include "runtime/WaitingRow.h"

#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ventolith::runtime {
namespace {

class WaitingRowTest : public testing::Test {
protected:
  /// Enters the row now, and says so when its turn has come.
  WaitingRow::Place enter(std::string name) {
    const auto place = row->enter();
    time.start(takeTurn(std::move(name), place));
    return place;
  }
  void leave(WaitingRow::Place place) {
    row->leave(place);
    time.clock.settle();
  }

  support::VirtualTime time;
  std::shared_ptr<WaitingRow> row = std::make_shared<WaitingRow>();
  std::vector<std::string> turns;

private:
  Async<void> takeTurn(std::string name, WaitingRow::Place place) {
    co_await WaitingRow::turn(row, place);
    turns.push_back(std::move(name));
  }
};

using Names = std::vector<std::string>;

TEST_F(WaitingRowTest, WhoIsAloneDoesNotWait) {
  enter("a");
  EXPECT_EQ(turns, Names({"a"}));
}

TEST_F(WaitingRowTest, OneAtATimeGoesOn) {
  const auto a = enter("a");
  const auto b = enter("b");
  enter("c");
  EXPECT_EQ(turns, Names({"a"}));
  leave(a);
  EXPECT_EQ(turns, Names({"a", "b"}));
  leave(b);
  EXPECT_EQ(turns, Names({"a", "b", "c"}));
}

TEST_F(WaitingRowTest, WhoLeavesBeforeItsTurnLetsNobodyPass) {
  const auto a = enter("a");
  const auto b = row->enter();
  enter("c");
  leave(b);
  EXPECT_EQ(turns, Names({"a"}));
  leave(a);
  EXPECT_EQ(turns, Names({"a", "c"}));
}

TEST_F(WaitingRowTest, WhoIsNotReadyIsWaitedFor) {
  const auto a = row->enter();
  const auto b = enter("b");
  EXPECT_EQ(turns, Names());
  leave(a);
  EXPECT_EQ(turns, Names({"b"}));
  leave(b);
  EXPECT_EQ(row->size(), 0U);
}

TEST_F(WaitingRowTest, WhoEntersAfterAllHaveLeftDoesNotWait) {
  leave(enter("a"));
  enter("b");
  EXPECT_EQ(turns, Names({"a", "b"}));
}

} // namespace
} // namespace ventolith::runtime
