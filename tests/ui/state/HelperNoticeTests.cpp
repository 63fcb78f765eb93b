#include "ui/state/HelperNotice.h"

#include "ui/state/Text.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

using support::utf8;
using Kind = HelperNotice::Kind;

constexpr HelperCondition inactive{};
constexpr HelperCondition fine{.isHelperActive = true};
constexpr HelperCondition stale{.isHelperActive = true, .isHelperStale = true};
constexpr HelperCondition recovering{
    .isHelperActive = true, .isHelperStale = true, .isAttemptingStaleRecovery = true};

TEST(HelperNotice, ThereIsNoneWhileTheHelperIsFine) {
  EXPECT_FALSE(dashboardBanner(fine));
  EXPECT_FALSE(panelHelperRow(fine));
  EXPECT_FALSE(dashboardBanner({.isHelperActive = true, .isAttemptingStaleRecovery = true}));
}

TEST(HelperNotice, InactiveHelperIsNeverCalledStale) {
  const HelperCondition both{.isHelperStale = true, .isAttemptingStaleRecovery = true};
  EXPECT_EQ(dashboardBanner(both), dashboardBanner(inactive));
  EXPECT_EQ(panelHelperRow(both), panelHelperRow(inactive));
}

TEST(HelperNotice, DashboardLeadsToTheOnboarding) {
  const auto banner = dashboardBanner(inactive);
  ASSERT_TRUE(banner);
  EXPECT_EQ(banner->kind, Kind::inactive);
  EXPECT_EQ(utf8(banner->symbol), "bolt.slash.fill");
  EXPECT_EQ(utf8(banner->title), "Fan control isn't active yet");
  EXPECT_EQ(utf8(banner->text),
            "Sensor readings above are live. Set up the privileged helper to enable manual "
            "and Full Blast control.");
  EXPECT_EQ(utf8(banner->buttonTitle), "Enable…");
  EXPECT_TRUE(banner->isButtonEnabled);
}

TEST(HelperNotice, DashboardOffersToRestartAStaleHelper) {
  const auto banner = dashboardBanner(stale);
  ASSERT_TRUE(banner);
  EXPECT_EQ(banner->kind, Kind::stale);
  EXPECT_EQ(utf8(banner->symbol), "exclamationmark.arrow.triangle.2.circlepath");
  EXPECT_EQ(
      utf8(banner->title),
      "Ventolith's background helper isn't answering a version check — it may still be running older code "
      "from before this update, or it hit a problem starting up. Restart it to make sure fan control is "
      "current.");
  EXPECT_EQ(
      utf8(banner->text),
      "This can happen right after an update. Restarting the helper below usually fixes it in a few "
      "seconds — it should keep its \"Allow in the Background\" approval, but macOS may occasionally ask "
      "you to allow it again in System Settings. If it doesn't help, restart your Mac; that always starts "
      "the helper fresh.");
  EXPECT_EQ(utf8(banner->buttonTitle), "Restart Helper");
  EXPECT_TRUE(banner->isButtonEnabled);
}

TEST(HelperNotice, DashboardWaitsWhileTheHelperIsRestarted) {
  const auto banner = dashboardBanner(recovering);
  ASSERT_TRUE(banner);
  EXPECT_EQ(banner->title, dashboardBanner(stale)->title);
  EXPECT_EQ(utf8(banner->text), "Restarting the helper…");
  EXPECT_EQ(utf8(banner->buttonTitle), "Restarting…");
  EXPECT_FALSE(banner->isButtonEnabled);
}

TEST(HelperNotice, PanelSaysTheSameInFewerWords) {
  const auto row = panelHelperRow(inactive);
  ASSERT_TRUE(row);
  EXPECT_EQ(row->kind, Kind::inactive);
  EXPECT_EQ(utf8(row->symbol), "bolt.slash.fill");
  EXPECT_EQ(utf8(row->title), "Fan control isn't active yet");
  EXPECT_TRUE(row->text.isEmpty());
  EXPECT_EQ(utf8(row->buttonTitle), "Enable…");
  EXPECT_TRUE(row->isButtonEnabled);
}

TEST(HelperNotice, PanelOffersToRestartAStaleHelper) {
  const auto row = panelHelperRow(stale);
  ASSERT_TRUE(row);
  EXPECT_EQ(row->kind, Kind::stale);
  EXPECT_EQ(utf8(row->symbol), "exclamationmark.arrow.triangle.2.circlepath");
  EXPECT_EQ(utf8(row->title), "Helper isn't answering a version check — it may be running older code");
  EXPECT_EQ(utf8(row->text), "Fan control may not reflect this update.");
  EXPECT_EQ(utf8(row->buttonTitle), "Restart Helper");
  EXPECT_TRUE(row->isButtonEnabled);
}

TEST(HelperNotice, PanelWaitsWhileTheHelperIsRestarted) {
  const auto row = panelHelperRow(recovering);
  ASSERT_TRUE(row);
  EXPECT_EQ(row->text, panelHelperRow(stale)->text);
  EXPECT_EQ(utf8(row->buttonTitle), "Restarting…");
  EXPECT_FALSE(row->isButtonEnabled);
}

} // namespace
} // namespace ventolith::ui
