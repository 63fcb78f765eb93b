// A plan whose claims take long: what is claimed already is watched and driven meanwhile.
#include "helper/engine/EngineFixture.h"

namespace ventolith::helper {
namespace {

class LongClaimTest : public EngineTest {
protected:
  /// Fan 0 is taken at once, and fan 1 never.
  LongClaimTest() { smc.refuseForEver("F1Md=1", 0x82); }

  std::shared_ptr<std::optional<ControlResult>> beginBoth() {
    return begin(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  }
  void expectGivenBack(const std::string& reason) {
    EXPECT_EQ(lastError(), reason);
    EXPECT_FALSE(controller->isPlanInForce());
    EXPECT_EQ(smc.count("F0Md=0"), 1);
    EXPECT_EQ(state().perFanMode.size(), 0U);
  }
};

TEST_F(LongClaimTest, AFanThatIsListedOftenAndRefusesIsTriedOnce) {
  FanControlPlan plan;
  plan.fans = {{0, FanControlModePlan::fixedPercent(0)}};
  for (int entry = 0; entry < 2000; ++entry)
    plan.fans.push_back({1, FanControlModePlan::fixedRPM(3000)});
  const auto result = begin(controller->applyPlan(plan));
  for (int second = 0; second < 11 && !result->has_value(); ++second)
    passAlive(1);
  EXPECT_FALSE(result->has_value()); // The first pass tries the fan anew.
  passAlive(10);
  ASSERT_TRUE(result->has_value());
  EXPECT_EQ(**result, ControlResult::timedOut);
}

TEST_F(LongClaimTest, AFanThatIsClaimedIsDrivenWhileAnotherIsStillBeingClaimed) {
  const auto result = beginBoth();
  pass(1.5);
  EXPECT_FALSE(result->has_value());
  EXPECT_EQ(smc.count("F0Tg=3000"), 1);
  pass(1.5);
  EXPECT_EQ(smc.count("F0Tg=3000"), 2);
}

TEST_F(LongClaimTest, TheCeilingIsWatchedDuringAClaim) {
  const auto result = beginBoth();
  pass(2);
  sensors.setCelsius(96);
  pass(1.5);
  expectGivenBack("thermal ceiling 96°C exceeded — released to Auto");
  pass(1);
  EXPECT_EQ(**result, ControlResult::reclaimed);
}

TEST_F(LongClaimTest, LostTemperaturesAreNoticedDuringAClaim) {
  beginBoth();
  pass(2);
  sensors.setCelsius(std::nullopt);
  pass(3);
  expectGivenBack("temperature data unavailable — released to Auto");
}

TEST_F(LongClaimTest, TheHeartbeatCountsFromThePlansArrival) {
  smc.setNumber("F2Md", 0);
  smc.answer = [](const std::string& write) {
    return Written(write == "F1Md=1" || write == "F2Md=1" ? std::uint8_t{0x82} : std::uint8_t{0});
  };
  begin(controller->applyPlan(fixed({{0, 3000}, {1, 4000}, {2, 4000}})));
  pass(15);
  EXPECT_TRUE(controller->isPlanInForce());
  pass(1.5);
  expectGivenBack("no heartbeat for >15s — released to Auto");
}

TEST_F(LongClaimTest, ARoundDoesNotClaimWhatTheCommandIsClaiming) {
  beginBoth();
  pass(9.95);
  EXPECT_EQ(smc.count("F1Md=1"), 1 + 100);
}

TEST_F(LongClaimTest, ARoundDoesNotClearTheLatchOfAClaim) {
  sensors.next.fans.clear();
  smc.refuseForEver("F0Md=1", 0x82);
  begin(controller->applyPlan(fixed({{0, 3000}})));
  pass(9);
  EXPECT_EQ(smc.count("Ftst=0"), 0);
}

} // namespace
} // namespace ventolith::helper
