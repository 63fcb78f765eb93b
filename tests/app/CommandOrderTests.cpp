// Controllers that take each other's place, where the older one has still commands to send.
#include "app/AppModelDependencies.h"
#include "helper/link/LinkFixture.h"

namespace ventolith::helper {
namespace {

/// Two controllers as an application makes them, one after the other. The older one waits for the check of
/// the helper's build, the newer one does not.
class CommandOrderTest : public LinkTest {
protected:
  CommandOrderTest() {
    helper.build = HelperBuildVersion::identifier;
    bringUp();
    helper.hold("HelperVersion");
    older = make();
    time.clock.settle();
    helper.holdNoMore();
  }

  static FanControlPlan at(double rpm) {
    FanControlPlan plan;
    plan.fans.push_back({0, FanControlModePlan::fixedRPM(rpm)});
    return plan;
  }
  [[nodiscard]] std::vector<double> sentSpeeds() const {
    std::vector<double> speeds;
    for (const auto& message : helper.messages) {
      const auto* const config = std::get_if<messages::ApplyConfig>(&message);
      if (config == nullptr) continue;
      const auto plan = core::decodeFanControlPlan(config->plan);
      speeds.push_back(std::get<FanControlModePlan::FixedRPM>(plan.fans.at(0).mode.value).rpm);
    }
    return speeds;
  }

  app::FanControllerFactory make =
      app::helperControllers(time.executor(), time.executor(), time.clock, link.channels());
  std::shared_ptr<core::FanControlling> older;
};

TEST_F(CommandOrderTest, APlanOfTheOlderOneDoesNotReplaceThatOfTheNewer) {
  const auto first = begin(older->applyPlan(at(3000)));
  const auto newer = make();
  const auto second = begin(newer->applyPlan(at(5000)));
  helper.letGo();
  time.clock.settle();
  EXPECT_EQ(sentSpeeds(), (std::vector<double>{3000, 5000}));
  EXPECT_EQ(*first, ControlResult::applied);
  EXPECT_EQ(*second, ControlResult::applied);
}

TEST_F(CommandOrderTest, APlanOfTheOlderOneIsNotSentAfterTheNewerHasGivenTheFansBack) {
  const auto first = begin(older->applyPlan(at(3000)));
  const auto newer = make();
  run(newer->restoreAuto());
  helper.letGo();
  time.clock.settle();
  EXPECT_EQ(sentSpeeds(), std::vector<double>());
  EXPECT_EQ(*first, ControlResult::acquiring);
}

TEST_F(CommandOrderTest, AnOlderOneThatIsLetGoOfHoldsNothingUp) {
  const auto first = begin(older->applyPlan(at(3000)));
  const auto newer = make();
  const auto second = begin(newer->applyPlan(at(5000)));
  older = nullptr;
  time.clock.settle();
  EXPECT_EQ(*first, ControlResult::noHelper);
  EXPECT_EQ(sentSpeeds(), std::vector<double>{5000});
}

} // namespace
} // namespace ventolith::helper
