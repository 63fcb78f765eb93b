// What the application publishes, as lines.
#include "programs/ventolith/HeadlessReport.h"

#include "../../app/ModelFixture.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace ventolith::programs {
namespace {

using Lines = std::vector<std::string>;

class HeadlessReportTest : public app::AppModelTest {
protected:
  ~HeadlessReportTest() override { report.reset(); }

  void startReport() {
    start();
    report.emplace(time.executor(), *model, [this](const std::string& line) { lines.push_back(line); });
    settle();
  }
  Lines takeLines() { return std::exchange(lines, {}); }

  Lines lines;
  std::optional<HeadlessReport> report;
};

TEST_F(HeadlessReportTest, EveryFieldIsWrittenAtFirst) {
  startReport();
  EXPECT_EQ(takeLines(),
            (Lines{"helper: not registered", "isHelperActive: no", "powerSource: unknown",
                   "activePlan: " + core::encode(core::FanControlPlan::allAutomatic), "activePreset: none",
                   "presets: Quiet, Balanced, Max", R"(autoSwitch: {"enabled":false})",
                   "controlState: " + core::encode(core::ControlState::idle), "connectionError: none",
                   "fanSliderRPM: none", "draggingFans: none", "isDashboardVisible: no",
                   "updateMessage: No update check has run yet.", "updateOutcome: none",
                   "snapshot: 2 fans, 1 sensors; Fan 2000 rpm; Fan 2000 rpm; hottest Sensor 50.0 °C"}));
}

TEST_F(HeadlessReportTest, ChangeIsWrittenOnceWithItsLatestValue) {
  startReport();
  takeLines();
  model->setDashboardVisible(true);
  model->setDashboardVisible(false);
  model->setDashboardVisible(true);
  EXPECT_EQ(takeLines(), Lines());
  settle();
  EXPECT_EQ(takeLines(), Lines{"isDashboardVisible: yes"});
  settle();
  EXPECT_EQ(takeLines(), Lines());
}

TEST_F(HeadlessReportTest, HelpersStatusIsFollowed) {
  startReport();
  takeLines();
  setHelper(app::DaemonStatus::requiresApproval);
  EXPECT_EQ(takeLines().front(), "helper: requires approval");
  helper::HelperManager::reportHelperStale(true);
  settle();
  EXPECT_EQ(takeLines(), Lines{"helper: requires approval, stale"});
  helper::HelperManager::reportHelperStale(false);
}

TEST_F(HeadlessReportTest, SlidersAndDraggedFansAreListed) {
  startReport();
  takeLines();
  model->beginManualDrag(model->snapshot().fans.at(1));
  model->previewSliderRPM(model->snapshot().fans.at(1), 2345.6);
  settle();
  EXPECT_EQ(takeLines(), (Lines{"fanSliderRPM: fan 1 at 2346", "draggingFans: 1"}));
}

TEST_F(HeadlessReportTest, ReportThatIsGoneWritesNothing) {
  startReport();
  takeLines();
  model->setDashboardVisible(true);
  report.reset();
  settle();
  EXPECT_EQ(takeLines(), Lines());
}

} // namespace
} // namespace ventolith::programs
