#include "e2e/Hold.h"
#include "e2e/Machines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace ventolith::e2e {
namespace {

const std::string macBook = "macbookpro11-5";
const std::map<int, int> bothFans = {{0, 3000}, {1, 2500}};

/// The control files of the fans, by their paths, and what stands in them.
using Files = std::map<std::string, std::string>;

Files filesOf(const HwmonTree& tree, const Files& alike) {
  Files files;
  for (const auto& [path, text] : alike)
    files[path] = tree.text(path);
  return files;
}

const Files macBookHeld = {{"hwmon0/device/fan1_manual", "1"},
                           {"hwmon0/device/fan1_output", "3000"},
                           {"hwmon0/device/fan2_manual", "1"},
                           {"hwmon0/device/fan2_output", "2500"}};
const Files macBookBack = {{"hwmon0/device/fan1_manual", "0"}, {"hwmon0/device/fan2_manual", "0"}};

/// A main board with one fan that its firmware drives in a mode of its own.
void addMainBoard(const HwmonTree& tree) {
  tree.set("hwmon0/name", "nct6775");
  tree.set("hwmon0/fan1_input", "900");
  tree.set("hwmon0/fan1_max", "2000");
  tree.set("hwmon0/pwm1", "128");
  tree.set("hwmon0/pwm1_enable", "5");
  tree.set("hwmon1/name", "coretemp");
  tree.set("hwmon1/temp1_input", "50000");
}
const std::map<int, int> threeQuarters = {{0, 1500}};

// One kind of driver each.

struct Kind {
  std::string tree;
  std::map<int, int> rpm;
  Files held;
  Files back;
};

void PrintTo(const Kind& kind, std::ostream* stream) {
  *stream << kind.tree;
}

class HoldOnHwmon : public testing::TestWithParam<Kind> {};

TEST_P(HoldOnHwmon, WritesTheTargetsAndGivesTheFansBackWhenTheTimeIsOver) {
  const Kind& kind = GetParam();
  const HwmonTree tree(kind.tree);
  Hold hold(tree.environment(), kind.rpm, {"--seconds", "1.5"});
  waitUntil("held fans", [&] { return filesOf(tree, kind.held) == kind.held; });

  const Ended ended = hold.wait();

  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_TRUE(ended.out.ends_with(everyFanIsBack)) << ended.out;
  EXPECT_EQ(filesOf(tree, kind.back), kind.back);
  EXPECT_FALSE(tree.hasClaims());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, HoldOnHwmon,
    testing::Values(Kind{macBook, bothFans, macBookHeld, macBookBack},
                    Kind{"macmini8-1",
                         {{0, 3000}},
                         {{"hwmon0/device/fan1_manual", "1"}, {"hwmon0/device/fan1_output", "3000"}},
                         {{"hwmon0/device/fan1_manual", "0"}}},
                    Kind{"asahi-j314s-mbp14-m1pro-fancontrol",
                         bothFans,
                         {{"hwmon0/fan1_target", "3000"}, {"hwmon0/fan2_target", "2500"}},
                         {{"hwmon0/fan1_target", "0"}, {"hwmon0/fan2_target", "0"}}},
                    Kind{"amd-x570-aorus-rx6000",
                         {{0, 2000}},
                         {{"hwmon3/fan1_enable", "1"}, {"hwmon3/fan1_target", "2000"}},
                         {{"hwmon3/fan1_enable", "0"}}}),
    [](const testing::TestParamInfo<Kind>& info) {
      std::string name = info.param.tree;
      std::ranges::replace(name, '-', '_');
      return name;
    });

TEST(HoldOnAMainBoard, GivesAFanBackToTheModeThatItWasIn) {
  const HwmonTree tree;
  addMainBoard(tree);
  Hold hold(tree.environment(), threeQuarters);
  hold.waitUntilHolding();
  const Files held = {{"hwmon0/pwm1_enable", "1"}, {"hwmon0/pwm1", "192"}};
  EXPECT_EQ(filesOf(tree, held), held);

  hold.signal(SIGTERM);
  EXPECT_EQ(hold.wait().status, 0);
  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "5");
}

// Ends from outside

class HoldEndedBySignal : public testing::TestWithParam<int> {};

TEST_P(HoldEndedBySignal, GivesEveryFanBackAndIsDone) {
  const HwmonTree tree(macBook);
  Hold hold(tree.environment(), bothFans);
  hold.waitUntilHolding();
  EXPECT_EQ(filesOf(tree, macBookHeld), macBookHeld);

  hold.signal(GetParam());
  const Ended ended = hold.wait();

  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_TRUE(ended.out.ends_with(everyFanIsBack)) << ended.out;
  EXPECT_EQ(filesOf(tree, macBookBack), macBookBack);
}

INSTANTIATE_TEST_SUITE_P(Signals, HoldEndedBySignal, testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const testing::TestParamInfo<int>& info) {
                           switch (info.param) {
                           case SIGINT: return "SIGINT";
                           case SIGTERM: return "SIGTERM";
                           default: return "SIGHUP";
                           }
                         });

TEST(Hold, TwoInterruptsInARowDoNotSkipTheHandingBack) {
  const HwmonTree tree(macBook);
  Hold hold(tree.environment(), bothFans);
  hold.waitUntilHolding();

  hold.signal(SIGINT);
  hold.signal(SIGINT);
  const Ended ended = hold.wait();

  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(filesOf(tree, macBookBack), macBookBack);
}

TEST(Hold, ASignalWhileTheFansAreBeingTakenGivesThemBack) {
  const HwmonTree tree(macBook);
  Hold hold(tree.environment(), bothFans);
  waitUntil("a taken fan", [&] { return tree.text("hwmon0/device/fan1_manual") == "1"; });

  hold.signal(SIGTERM);
  const Ended ended = hold.wait();

  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(filesOf(tree, macBookBack), macBookBack);
}

/// Holds, and is killed.
void holdAndDie(const HwmonTree& tree, const std::map<int, int>& rpm) {
  Hold hold(tree.environment(), rpm);
  hold.waitUntilHolding();
  hold.signal(SIGKILL);
  ASSERT_EQ(hold.wait().status, 128 + SIGKILL);
}

// Output that nobody takes

void expectBackAfterAFailure(const HwmonTree& tree, const Ended& ended) {
  EXPECT_EQ(ended.status, 3);
  EXPECT_EQ(filesOf(tree, macBookBack), macBookBack);
  EXPECT_FALSE(tree.hasClaims());
}

TEST(Hold, GivesTheFansBackWhenNobodyReadsWhatItSays) {
  const HwmonTree tree(macBook);
  holdAndDie(tree, bothFans); // So that there are fans to give back from the first.
  Hold hold(tree.environment(), bothFans, {}, {.isOutBroken = true});
  const Ended ended = hold.wait();
  expectBackAfterAFailure(tree, ended);
  EXPECT_NE(ended.err.find("standard output"), std::string::npos) << ended.err;
}

TEST(Hold, GivesTheFansBackWhenNobodyReadsItsErrorsEither) {
  const HwmonTree tree(macBook);
  holdAndDie(tree, bothFans);
  Hold hold(tree.environment(), bothFans, {}, {.isOutBroken = true, .isErrBroken = true});
  expectBackAfterAFailure(tree, hold.wait());
}

// After a run that was killed

TEST(HoldThatWasKilled, LeavesTheFansHeldAndTheClaimsOnRecord) {
  const HwmonTree tree(macBook);
  holdAndDie(tree, bothFans);
  EXPECT_EQ(filesOf(tree, macBookHeld), macBookHeld);
  EXPECT_TRUE(tree.hasClaims());
}

TEST(HoldAfterOneThatWasKilled, GivesTheFansBackBeforeItTakesAny) {
  const HwmonTree tree(macBook);
  holdAndDie(tree, bothFans);

  Hold next(tree.environment(), {{0, 4000}}, {"--json"});
  next.waitUntilHolding();

  EXPECT_EQ(next.lines().front(), R"({"perFanMode":{},"targets":{},"isHolding":false})");
  const Files onlyOne = {{"hwmon0/device/fan1_manual", "1"},
                         {"hwmon0/device/fan1_output", "4000"},
                         {"hwmon0/device/fan2_manual", "0"}};
  EXPECT_EQ(filesOf(tree, onlyOne), onlyOne);
  next.signal(SIGTERM);
  EXPECT_EQ(next.wait().status, 0);
  EXPECT_EQ(filesOf(tree, macBookBack), macBookBack);
}

TEST(HoldAfterOneThatWasKilled, GivesAGraphicsCardBackToWhatStoodBeforeBoth) {
  const HwmonTree tree("amd-x570-aorus-rx6000");
  holdAndDie(tree, {{0, 2000}});
  ASSERT_EQ(tree.text("hwmon3/fan1_enable"), "1");

  Hold next(tree.environment(), {{0, 2500}}, {"--seconds", "1"});
  EXPECT_EQ(next.wait().status, 0);
  EXPECT_EQ(tree.text("hwmon3/fan1_target"), "2500");
  EXPECT_EQ(tree.text("hwmon3/fan1_enable"), "0");
}

TEST(HoldAfterOneThatWasKilled, GivesAMainBoardsFanBackToTheModeBeforeBoth) {
  const HwmonTree tree;
  addMainBoard(tree);
  holdAndDie(tree, threeQuarters);
  ASSERT_EQ(tree.text("hwmon0/pwm1_enable"), "1");

  Hold next(tree.environment(), {{0, 2000}}, {"--seconds", "1"});
  EXPECT_EQ(next.wait().status, 0);
  EXPECT_EQ(tree.text("hwmon0/pwm1"), "255");
  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "5");
  EXPECT_FALSE(tree.hasClaims());
}

// Fans that cannot be taken

TEST(Hold, WritesNothingToADriverThatDoesNotAllowIt) {
  const HwmonTree tree("asahi-j274-mac-mini-m1-readonly");
  const auto before = tree.contents();
  Hold hold(tree.environment(), {{0, 3000}});

  const Ended ended = hold.wait();

  EXPECT_EQ(ended.status, 3);
  EXPECT_NE(ended.err, "");
  EXPECT_EQ(tree.contents(), before);
  EXPECT_FALSE(tree.hasClaims());
}

} // namespace
} // namespace ventolith::e2e
