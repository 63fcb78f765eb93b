// `hold` on a simulated machine, in virtual time.
#include "platform/simulated/SimulatedMachine.h"
#include "programs/ventolithctl/Fixture.h"

#include <fmt/format.h>

namespace ventolith::ctl {
namespace {

class HoldCommand : public CommandTest {
protected:
  HoldCommand() { useMachine("mac-mini"); }

  void useMachine(const std::string& name) {
    mac = simulated::makeSimulatedMac(name, clock, 1);
    mac->setJournal(
        [this](const simulated::JournalEntry& entry) { journal += simulated::journalLine(entry) + "\n"; });
    context.selectMachine = [this] { return simulated::simulatedMachine(mac); };
  }

  ExitStatus hold(const std::string& fans, const std::string& seconds) {
    return run({"hold", "--plan", file("plan.json", planText(fans)), "--seconds", seconds});
  }

  [[nodiscard]] std::size_t countOf(const std::string& part) const {
    std::size_t count = 0;
    for (const std::string& line : linesOf(journal))
      count += line.find(part) != std::string::npos ? 1U : 0U;
    return count;
  }

  static constexpr const char* fanAt3000 = R"({"fanID":0,"mode":{"fixedRPM":{"_0":3000}}})";
  static constexpr const char* speedWrite = R"("op":"write","key":"F0Tg")";

  std::shared_ptr<simulated::SimulatedMac> mac;
  std::string journal;
};

TEST_F(HoldCommand, HoldsForItsTimeAndGivesTheFanBack) {
  EXPECT_EQ(hold(fanAt3000, "10"), ExitStatus::done);
  EXPECT_GE(countOf(speedWrite), 6U);
  EXPECT_TRUE(out.text.ends_with("every fan is back with the firmware\n")) << out.text;
  EXPECT_EQ(err.text, "");
}

TEST_F(HoldCommand, NeverWaitsForAReaderWhileFansAreHeld) {
  out.ready = false;
  mac->runLine(R"({"at":6,"temps":{"TCHP":99}})");
  std::string textWhenReleased = "none";
  mac->setJournal([&](const simulated::JournalEntry& entry) {
    const std::string line = simulated::journalLine(entry);
    if (line.find(R"("key":"F0md","bytes":"00")") != std::string::npos) textWhenReleased = out.text;
  });
  EXPECT_EQ(hold(fanAt3000, "60"), ExitStatus::failed);
  EXPECT_EQ(textWhenReleased, ""); // Nothing could be said by then,
  EXPECT_NE(out.text.find("thermal ceiling 99°C exceeded — released to Auto"),
            std::string::npos); // and all is, after.
  EXPECT_LT(clock.now() - runtime::Instant(std::chrono::hours(1)), std::chrono::seconds(20));
}

TEST_F(HoldCommand, KeepsTheNewestOfWhatAPausedReaderCannotTake) {
  out.ready = false;
  EXPECT_EQ(run({"hold", "--json", "--plan", file("plan.json", planText(fanAt3000)), "--seconds", "3600"}),
            ExitStatus::done);
  EXPECT_LE(linesOf(out.text).size(), 260U);
  EXPECT_EQ(linesOf(out.text).back(), R"({"perFanMode":{},"targets":{},"isHolding":false})");
}

TEST_F(HoldCommand, OnAMachineWithoutFansSaysSo) {
  useMachine("macbook-air");
  EXPECT_EQ(hold(fanAt3000, "10"), ExitStatus::failed);
  EXPECT_NE(err.text.find("no fans are found"), std::string::npos) << err.text;
}

TEST_F(HoldCommand, OfAPlanThatHoldsNothingSaysSoAndIsDone) {
  EXPECT_EQ(hold(R"({"fanID":0,"mode":{"automatic":{}}})", "10"), ExitStatus::done);
  EXPECT_NE(out.text.find("there is nothing to hold"), std::string::npos) << out.text;
  EXPECT_EQ(countOf(speedWrite), 0U);
}

TEST_F(HoldCommand, ThatNeverHeldAFanIsAFailure) {
  mac->refuseWrites("F0md", 5);
  mac->runLine(R"({"at":4,"refuse":{"F0md":null}})");
  EXPECT_EQ(hold(fanAt3000, "3"), ExitStatus::failed);
  EXPECT_NE(err.text.find("no fan was held: rejected(code: 5)"), std::string::npos) << err.text;
}

TEST_F(HoldCommand, TakesNoTimeThatIsNotANumber) {
  EXPECT_EQ(hold(fanAt3000, "nan"), ExitStatus::invalid);
  EXPECT_EQ(hold(fanAt3000, "-1"), ExitStatus::invalid);
  EXPECT_EQ(journal, "");
}

} // namespace
} // namespace ventolith::ctl
