// The application's beginning and end.
#include "ModelFixture.h"

#include "app/FileUserSettings.h"
#include "app/Lifecycle.h"

namespace ventolith::app {
namespace {

class LifecycleTest : public AppModelTest {
protected:
  [[nodiscard]] std::unique_ptr<UserSettings> settings() {
    return std::make_unique<FileUserSettings>(disk, [] { return "/home/user/.config"; });
  }
  [[nodiscard]] std::string storedText() const { return disk.files().at(file); }

  const std::filesystem::path file = "/home/user/.config/Ventolith/settings.json";
};

TEST_F(LifecycleTest, TheFirstLaunchIsOncePerAccount) {
  EXPECT_TRUE(Lifecycle(settings()).takeFirstLaunch());
  EXPECT_TRUE(settings()->hasOpenedOnFirstLaunch());
  EXPECT_FALSE(Lifecycle(settings()).takeFirstLaunch());
}

TEST_F(LifecycleTest, TheFlagIsStoredUnderItsKey) {
  settings()->setHasOpenedOnFirstLaunch(true);
  EXPECT_EQ(storedText(), "{\n  \"com.ventolith.hasOpenedOnFirstLaunch\" : true\n}");
}

TEST_F(LifecycleTest, OtherSettingsStay) {
  disk.put(file, R"({"other": [1], "com.ventolith.hasOpenedOnFirstLaunch": false})");
  settings()->setHasOpenedOnFirstLaunch(true);
  const auto stored = core::parseJSON(storedText());
  EXPECT_EQ(stored, core::JSON::parse(R"({"other": [1], "com.ventolith.hasOpenedOnFirstLaunch": true})"));
}

TEST_F(LifecycleTest, DamagedSettingsCountAsNone) {
  for (const char* text : {"", "{", "[]", "true", R"({"com.ventolith.hasOpenedOnFirstLaunch": "yes"})"}) {
    disk.put(file, text);
    EXPECT_FALSE(settings()->hasOpenedOnFirstLaunch()) << text;
    settings()->setHasOpenedOnFirstLaunch(true);
    EXPECT_TRUE(settings()->hasOpenedOnFirstLaunch()) << text;
  }
}

TEST_F(LifecycleTest, SettingsThatCouldNotBeReadBackLeaveTheOldFile) {
  const std::string text =
      R"({"other": ")" + std::string(3'000'000, '/') + R"("})"; // Twice as long when escaped.
  disk.put(file, text);
  settings()->setHasOpenedOnFirstLaunch(true);
  EXPECT_EQ(storedText(), text);
}

TEST_F(LifecycleTest, TerminatingGivesTheFansBackOnce) {
  startWithHelper();
  Lifecycle lifecycle(settings());
  lifecycle.join(model);
  lifecycle.applicationWillTerminate(); // The quit entry,
  lifecycle.applicationWillTerminate(); // and the end of the session.
  settle();
  EXPECT_EQ(controllers.restores, (std::vector<std::string>{"helper 2"}));
}

TEST_F(LifecycleTest, TerminatingBeforeTheFirstViewSendsNothing) {
  startWithHelper();
  Lifecycle lifecycle(settings());
  lifecycle.applicationWillTerminate();
  settle();
  EXPECT_TRUE(controllers.restores.empty());
}

TEST_F(LifecycleTest, TheLifecycleDoesNotKeepTheModel) {
  startWithHelper();
  Lifecycle lifecycle(settings());
  lifecycle.join(model);
  release();
  lifecycle.applicationWillTerminate();
  settle();
  EXPECT_TRUE(controllers.restores.empty());
}

TEST_F(LifecycleTest, AfterQuitAndRestartAllIsAsItWas) {
  startWithHelper();
  model->activatePreset(model->presets()[0]);
  model->setTuning(support::direct);
  settle();
  const auto planBefore = model->activePlan();
  const auto presetBefore = model->activePresetID();
  model->restoreAutoOnQuit();
  settle();
  controllers.plans.clear();
  restart();
  EXPECT_EQ(model->activePlan(), planBefore);
  EXPECT_EQ(model->activePresetID(), presetBefore);
  EXPECT_EQ(sentPlans(), std::vector{planBefore}); // And is the helper's again.
}

} // namespace
} // namespace ventolith::app
