#include "ui/UpdateCheckButton.h"

#include "Finding.h"
#include "ViewFixture.h"

#include <memory>

namespace ventolith::ui {
namespace {

class UpdateCheckButtonTest : public ViewTest {
protected:
  ~UpdateCheckButtonTest() override { button = nullptr; }

  void show(ButtonKind kind = ButtonKind::bordered) {
    begin();
    button = std::make_unique<UpdateCheckButton>(*context, kind);
    // As the views do that hold such a button.
    QObject::connect(&*watch, &ModelWatch::changed, button.get(), [this](ModelWatch::Fields changed) {
      if (!(changed & UpdateCheckButton::fields).isEmpty()) button->refresh();
    });
    button->resize(button->sizeHint());
    button->show();
    turn();
  }
  void check() {
    click(*button);
    turn();
  }
  void after(double seconds) {
    pass(seconds);
    turn();
  }
  [[nodiscard]] app::UpdateEngineDelegate& engine() { return *updateService->delegate; }
  [[nodiscard]] std::string title() const { return button->title().toStdString(); }

  std::unique_ptr<UpdateCheckButton> button;
};

TEST_F(UpdateCheckButtonTest, OffersACheck) {
  show();
  EXPECT_EQ(title(), "Check for Updates");
  EXPECT_TRUE(button->isEnabled());
  EXPECT_EQ(button->toolTip().toStdString(), "No update check has run yet.");
  EXPECT_EQ(button->accessibleName(), button->toolTip());
}

TEST_F(UpdateCheckButtonTest, APressBeginsACheckWhichCannotBeBegunTwice) {
  show();
  check();
  EXPECT_EQ(updateService->checks, 1);
  EXPECT_EQ(title(), "Checking…");
  EXPECT_FALSE(button->isEnabled());
  EXPECT_EQ(button->toolTip().toStdString(), "Checking for updates…");
}

TEST_F(UpdateCheckButtonTest, ARunningCheckStaysOnShow) {
  show();
  check();
  after(30);
  EXPECT_EQ(title(), "Checking…");
}

TEST_F(UpdateCheckButtonTest, AResultIsShownForItsTimeAndThenTheOffer) {
  show();
  check();
  engine().didNotFindUpdate();
  after(3.9);
  EXPECT_EQ(title(), "Up to date");
  EXPECT_EQ(button->accessibleName().toStdString(), "You're up to date.");
  EXPECT_TRUE(button->isEnabled());
  after(0.2);
  EXPECT_EQ(title(), "Check for Updates");
}

TEST_F(UpdateCheckButtonTest, ANewCheckDuringAResultTakesTheDisplayOver) {
  show();
  check();
  engine().didNotFindUpdate();
  after(3);
  check();
  EXPECT_EQ(title(), "Checking…");
  after(3); // What was left of the first one's time is over.
  EXPECT_EQ(title(), "Checking…");
}

TEST_F(UpdateCheckButtonTest, TheKeyboardDoesNotPassToTheNextControlDuringACheck) {
  QWidget window;
  begin();
  button = std::make_unique<UpdateCheckButton>(*context, ButtonKind::bordered, &window);
  Button next(theme, ButtonKind::bordered, ButtonSize::normal, &window);
  window.show();
  window.activateWindow();
  turn();
  button->setFocus(Qt::TabFocusReason);
  QTest::keyClick(button.get(), Qt::Key_Space);
  turn();
  button->refresh();
  ASSERT_FALSE(button->isEnabled());
  EXPECT_EQ(window.focusWidget(), nullptr);
  engine().didNotFindUpdate();
  turn();
  button->refresh();
  EXPECT_EQ(window.focusWidget(), button.get());
  button = nullptr;
}

TEST_F(UpdateCheckButtonTest, AfterACheckTheKeyboardStaysWhereItWentMeanwhile) {
  QWidget window;
  begin();
  button = std::make_unique<UpdateCheckButton>(*context, ButtonKind::bordered, &window);
  Button next(theme, ButtonKind::bordered, ButtonSize::normal, &window);
  window.show();
  window.activateWindow();
  turn();
  button->setFocus(Qt::TabFocusReason);
  check();
  button->refresh();
  next.setFocus(Qt::TabFocusReason);
  engine().didNotFindUpdate();
  turn();
  button->refresh();
  EXPECT_EQ(window.focusWidget(), &next);
  button = nullptr;
}

TEST_F(UpdateCheckButtonTest, IsAsWideAsItsOfferWhateverItSays) {
  show();
  const QSize before = button->sizeHint();
  check();
  EXPECT_EQ(button->sizeHint(), before);
  engine().didNotFindUpdate();
  turn();
  EXPECT_EQ(button->sizeHint(), before);
}

TEST_F(UpdateCheckButtonTest, WhereNoCheckCanBeMadeItSaysWhy) {
  const app::MapBundleInfo empty{{}};
  app::AppModelDependencies its = dependencies();
  model = app::AppModel::make({.mainExecutor = its.mainExecutor,
                               .engineExecutor = its.engineExecutor,
                               .clock = its.clock,
                               .smc = its.smc,
                               .sensors = its.sensors,
                               .makePreviewController = its.makePreviewController,
                               .makeHelperController = its.makeHelperController,
                               .daemonService = std::move(its.daemonService),
                               .configStore = its.configStore,
                               .powerSource = std::move(its.powerSource),
                               .bundle = empty,
                               .makeUpdateEngine = its.makeUpdateEngine,
                               .supportURL = its.supportURL,
                               .openURL = its.openURL});
  settle();
  makeContext();
  const UpdateCheckButton unavailable(*context, ButtonKind::bordered);
  EXPECT_FALSE(unavailable.isEnabled());
  EXPECT_EQ(unavailable.toolTip().toStdString(), "Updates are not configured in this build.");
  EXPECT_EQ(unavailable.accessibleName(), unavailable.toolTip());
  EXPECT_EQ(unavailable.title().toStdString(), "Check for Updates");
  release();
}

} // namespace
} // namespace ventolith::ui
