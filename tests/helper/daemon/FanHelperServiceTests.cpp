// Each message and its answer.
#include "helper/daemon/ServiceFixture.h"

#include <limits>

namespace ventolith::helper {

using core::ControlResult;
using Lines = std::vector<std::string>;
using Reason = Refusal::Reason;

using FanHelperServiceTest = ServiceTest;

TEST_F(FanHelperServiceTest, TellsAnybodyItsBuildWithoutAskingForPermission) {
  EXPECT_EQ(answer(anna, messages::HelperVersion()), HelperAnswer(replies::Version{"2.0.0+9"}));
  EXPECT_TRUE(authorizer.asked.empty());
}

TEST_F(FanHelperServiceTest, TellsAnybodyTheStateWithoutAskingForPermission) {
  fans.state.isHolding = true;
  fans.state.targets = {{0, 3000}};
  const auto state =
      std::get<replies::State>(std::get<HelperReply>(answer(anna, messages::ReadState()).value()));
  EXPECT_EQ(core::decodeControlState(state.json), fans.state);
  EXPECT_TRUE(authorizer.asked.empty());
}

TEST_F(FanHelperServiceTest, PassesEachCommandOnWithItsArguments) {
  const auto highest = std::numeric_limits<std::int64_t>::max();
  const auto lowest = std::numeric_limits<std::int64_t>::min();
  const std::vector<std::pair<HelperMessage, std::string>> table = {
      {messages::SetManualRPM{1, 3000}, "setManual 1 3000"},
      {messages::SetManualRPM{highest, lowest}, "setManual 9223372036854775807 -9223372036854775808"},
      {messages::SetPercent{0, 62.5}, "setPercent 0 62.5"},
      {messages::FullBlast(), "fullBlast"},
      {messages::Automatic(), "automatic"},
      {plan(2), "applyPlan 2"},
  };
  for (const auto& [message, command] : table) {
    EXPECT_EQ(answer(anna, message), code(ControlResult::applied.xpcCode())) << command;
    EXPECT_EQ(fans.log.back(), command);
  }
  EXPECT_EQ(fans.log.size(), table.size());
}

TEST_F(FanHelperServiceTest, AnswersWithTheCodeOfTheResult) {
  fans.result = ControlResult::rejected(5);
  EXPECT_EQ(answer(anna, messages::FullBlast()), code(ControlResult::rejected(5).xpcCode()));
}

TEST_F(FanHelperServiceTest, RestoreAutoIsDoneWhenTheFansWereGivenBack) {
  fans.holdBack("restoreAuto");
  const Call call = begin(anna, messages::RestoreAuto());
  EXPECT_FALSE(*call);
  fans.letGo("restoreAuto");
  time.clock.settle();
  EXPECT_EQ(**call, HelperAnswer(replies::Done()));
}

TEST_F(FanHelperServiceTest, ABodyThatIsNoPlanIsAFailedAndTheLogSaysWhere) {
  EXPECT_EQ(answer(anna, messages::ApplyConfig{R"({"fans":[{"fanID":"x"}],"rules":[]})"}), code(7));
  EXPECT_TRUE(fans.log.empty());
  ASSERT_EQ(log.warnings.size(), 1U);
  EXPECT_NE(log.warnings[0].find(":1.1 sent what is no plan: fans[0].fanID: "), std::string::npos)
      << log.warnings[0];
}

TEST_F(FanHelperServiceTest, AHostileBodyMakesAShortLine) {
  for (const std::string& body : {std::string(), std::string(1U << 20, '['), std::string("\xff\x1b[2J\n"),
                                  "{\"" + std::string(10000, 'k') + "\":0}"}) {
    EXPECT_EQ(answer(anna, messages::ApplyConfig{body}), code(7));
    EXPECT_LT(log.warnings.back().size(), 400U);
    EXPECT_EQ(log.warnings.back().find_first_of("\n\x1b"), std::string::npos);
  }
}

TEST_F(FanHelperServiceTest, AStrangersBodyIsNotEvenRead) {
  authorizer.verdicts[anna] = false;
  EXPECT_EQ(answer(anna, messages::ApplyConfig{"no plan"}), code(ControlResult::notPrivileged.xpcCode()));
}

TEST_F(FanHelperServiceTest, MakesRoomOnceTheFansAreBack) {
  fans.holdBack("giveEveryFanBack");
  const Call call = begin(anna, messages::ShutdownForUpgrade());
  EXPECT_FALSE(*call);
  EXPECT_EQ(timesRoomWasMade, 0);

  fans.letGo("giveEveryFanBack");
  time.clock.settle();

  EXPECT_EQ(**call, HelperAnswer(replies::Done()));
  EXPECT_EQ(timesRoomWasMade, 1);
}

TEST_F(FanHelperServiceTest, MakesRoomThoughAFanRefusesToGoBackAndSaysSo) {
  fans.giveBackError = "F0Md=0 rejected (SMC 0x5)";
  EXPECT_EQ(answer(anna, messages::ShutdownForUpgrade()), HelperAnswer(replies::Done()));
  EXPECT_EQ(timesRoomWasMade, 1);
  EXPECT_EQ(log.warnings, Lines{"ending though not every fan is back: F0Md=0 rejected (SMC 0x5)"});
}

TEST_F(FanHelperServiceTest, RefusesChangesFromTheMomentAnUpgradeBegins) {
  fans.holdBack("giveEveryFanBack");
  begin(anna, messages::ShutdownForUpgrade());
  EXPECT_EQ(reasonOf(answer(bert, messages::FullBlast())), Reason::shuttingDown);
  EXPECT_EQ(reasonOf(answer(bert, messages::RestoreAuto())), Reason::shuttingDown);
  EXPECT_EQ(answer(bert, messages::HelperVersion()), HelperAnswer(replies::Version{"2.0.0+9"}));
  EXPECT_EQ(fans.log, Lines{"giveEveryFanBack"});
}

TEST_F(FanHelperServiceTest, RefusesAChangeWhosePermissionComesAfterTheEndBegan) {
  authorizer.holdsBack = true;
  const Call call = begin(anna, messages::FullBlast());
  service.refuseChanges();
  allow(0);
  EXPECT_EQ(reasonOf(**call), Reason::shuttingDown);
  EXPECT_TRUE(fans.log.empty());
}

} // namespace ventolith::helper
