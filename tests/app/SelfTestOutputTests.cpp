#include "app/ReportText.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

TEST(SelfTestOutput, ReportsAndErrorsGoTheirOwnWays) {
  ReportText text;
  text.output.print("a report");
  text.output.printError("an error");
  EXPECT_EQ(text.printed.str(), "a report\n");
  EXPECT_EQ(text.errors.str(), "an error\n");
}

TEST(SelfTestOutput, ACheckThatPassesSaysSoAndLeavesTheVerdict) {
  ReportText text;
  bool allOK = true;
  text.output.check("percent(at: 40) == 15 (got 15.0)", true, allOK);
  EXPECT_EQ(text.lines(), Lines{"  [PASS] percent(at: 40) == 15 (got 15.0)"});
  EXPECT_TRUE(allOK);
}

TEST(SelfTestOutput, AFailedCheckClearsTheVerdictAndNothingSetsItBack) {
  ReportText text;
  bool allOK = true;
  text.output.check("first", false, allOK);
  EXPECT_FALSE(allOK);
  text.output.check("second", true, allOK);
  EXPECT_FALSE(allOK);
  EXPECT_EQ(text.lines(), (Lines{"  [FAIL] first", "  [PASS] second"}));
}

} // namespace
} // namespace ventolith::app
