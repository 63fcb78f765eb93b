#include "helper/link/HelperVersionReconciliation.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::helper {
namespace {

using Probe = HelperVersionProbe;
using Decision = HelperVersionDecision;
using Classification = HelperVersionClassification;

struct Case {
  Probe probe;
  std::int64_t attempts;
  std::int64_t maximum;
  Decision decision;
  Classification classification; // After a first probe.
};

constexpr auto most = std::numeric_limits<std::int64_t>::max();
const Case cases[] = {
    {Probe::matched, 0, 3, Decision::proceed, Classification::matched},
    {Probe::matched, 99, 3, Decision::proceed, Classification::matched}, // The count is for mismatches alone.
    {Probe::matched, 0, 0, Decision::proceed, Classification::matched},
    {Probe::noReply, 0, 3, Decision::stale, Classification::stale},
    {Probe::noReply, 3, 3, Decision::stale, Classification::stale},
    {Probe::mismatched, 0, 3, Decision::triggerUpgradeSwap, Classification::unknown},
    {Probe::mismatched, 2, 3, Decision::triggerUpgradeSwap, Classification::unknown},
    {Probe::mismatched, 3, 3, Decision::stale, Classification::stale},
    {Probe::mismatched, 4, 3, Decision::stale, Classification::stale},
    {Probe::mismatched, 0, 0, Decision::stale, Classification::stale},
    {Probe::mismatched, 0, -1, Decision::stale, Classification::stale},
    {Probe::mismatched, most - 1, most, Decision::triggerUpgradeSwap, Classification::unknown},
};

class HelperVersionTest : public testing::TestWithParam<Case> {};
INSTANTIATE_TEST_SUITE_P(AllProbes, HelperVersionTest, testing::ValuesIn(cases));

TEST_P(HelperVersionTest, IsDecided) {
  const Case& asked = GetParam();
  EXPECT_EQ(HelperVersionReconciliation::decide(asked.probe, asked.attempts, asked.maximum), asked.decision);
}

TEST_P(HelperVersionTest, TheReconcilerDecidesAlike) {
  const Case& asked = GetParam();
  HelperVersionReconciler reconciler(asked.maximum);
  EXPECT_EQ(reconciler.next(asked.probe, asked.attempts), asked.decision);
}

TEST_P(HelperVersionTest, IsClassified) {
  const Case& asked = GetParam();
  HelperVersionReconciler reconciler(asked.maximum);
  (void)reconciler.next(asked.probe, asked.attempts);
  EXPECT_EQ(reconciler.classification(), asked.classification);
}

TEST_P(HelperVersionTest, OnlyTheUnknownNeedsAProbe) {
  const Case& asked = GetParam();
  HelperVersionReconciler reconciler(asked.maximum);
  (void)reconciler.next(asked.probe, asked.attempts);
  EXPECT_EQ(reconciler.needsProbe(), asked.classification == Classification::unknown);
}

TEST_P(HelperVersionTest, IsUnknownAfterAChangeOfTheConnection) {
  const Case& asked = GetParam();
  HelperVersionReconciler reconciler(asked.maximum);
  (void)reconciler.next(asked.probe, asked.attempts);
  reconciler.connectionChanged();
  EXPECT_EQ(reconciler, HelperVersionReconciler(asked.maximum));
}

TEST(HelperVersionReconcilerTest, NeedsAProbeAtFirst) {
  EXPECT_TRUE(HelperVersionReconciler(3).needsProbe());
}

TEST(HelperVersionReconcilerTest, ASwapLeavesAnEarlierVerdict) {
  HelperVersionReconciler reconciler(3);
  (void)reconciler.next(Probe::matched, 0);
  EXPECT_EQ(reconciler.next(Probe::mismatched, 0), Decision::triggerUpgradeSwap);
  EXPECT_EQ(reconciler.classification(), Classification::matched);
}

TEST(HelperVersionReconcilerTest, ThreeSwapsAreTheDefault) {
  EXPECT_EQ(HelperVersionReconciliation::defaultMaxUpgradeAttempts, 3);
}

} // namespace
} // namespace ventolith::helper
