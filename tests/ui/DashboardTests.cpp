#include "Finding.h"
#include "ViewFixture.h"
#include "ui/DashboardView.h"
#include "ui/KitValues.h"
#include "ui/kit/ScrollArea.h"

#include <QAccessible>
#include <QScrollBar>

#include <memory>

namespace ventolith::ui {
namespace {

using app::DaemonStatus;
using core::FanControlModePlan;

constexpr auto inactiveTitle = "Fan control isn't active yet";

class DashboardTest : public ViewTest {
protected:
  ~DashboardTest() override { view = nullptr; }

  void show() {
    view = std::make_unique<DashboardView>(*context);
    view->resize(700, 800);
    view->show();
    turn();
  }
  void showWithHelper() {
    beginWithHelper();
    show();
  }
  void setStale(bool isStale) {
    helper::HelperManager::reportHelperStale(isStale);
    turn();
  }
  [[nodiscard]] bool showsStaleBanner() const { return hasButton(*view, "Restart Helper"); }
  [[nodiscard]] std::vector<FanTileView*> tiles() const { return seenIn<FanTileView>(*view); }
  [[nodiscard]] std::vector<SensorRow*> rows() const { return seenIn<SensorRow>(*view); }

  std::unique_ptr<DashboardView> view;
};

TEST_F(DashboardTest, ShowsFansAndSensorsInTheOrderOfTheReading) {
  readings.next = app::snapshot({{.id = 3, .name = "Left"}, {.id = 1, .name = "Right"}},
                                {{.key = "B", .name = "GPU"}, {.key = "A", .name = "CPU"}});
  begin();
  show();
  ASSERT_EQ(tiles().size(), 2U);
  EXPECT_TRUE(shows(*tiles()[0], "Left"));
  EXPECT_TRUE(shows(*tiles()[1], "Right"));
  ASSERT_EQ(rows().size(), 2U);
  EXPECT_TRUE(shows(*rows()[0], "GPU"));
  EXPECT_TRUE(shows(*rows()[1], "CPU"));
  EXPECT_TRUE(shows(*view, "Fans"));
  EXPECT_TRUE(shows(*view, "Sensors"));
}

TEST_F(DashboardTest, IsWholeInItsFirstFrame) {
  begin();
  view = std::make_unique<DashboardView>(*context);
  view->show();
  ASSERT_EQ(tiles().size(), 2U);
  EXPECT_TRUE(tiles()[0]->isVisible());
  EXPECT_TRUE(rows().at(0)->isVisible());
  EXPECT_TRUE(buttonIn(*view, "Enable…").isVisible());
}

TEST_F(DashboardTest, NoSensorsLeaveTheFansAsTheyAre) {
  readings.next = app::snapshot({app::fan(0)});
  begin();
  show();
  EXPECT_TRUE(shows(*view, "No sensors detected"));
  EXPECT_FALSE(shows(*view, "No fans detected"));
  EXPECT_EQ(tiles().size(), 1U);
}

TEST_F(DashboardTest, AMachineWithoutFansSaysSo) {
  readings.next = app::snapshot({}, {support::sensor("A", 50)});
  begin();
  show();
  EXPECT_TRUE(shows(*view, "No fans detected"));
  EXPECT_FALSE(shows(*view, "No sensors detected"));
}

TEST_F(DashboardTest, FansAndSensorsComeAndGo) {
  begin();
  show();
  read(app::snapshot({app::fan(0), app::fan(1), app::fan(2)}, {}));
  EXPECT_EQ(tiles().size(), 3U);
  EXPECT_TRUE(rows().empty());
  read(app::snapshot({}, {support::sensor("A", 50), support::sensor("B", 60)}));
  EXPECT_TRUE(tiles().empty());
  EXPECT_EQ(rows().size(), 2U);
  EXPECT_TRUE(shows(*view, "No fans detected"));
}

TEST_F(DashboardTest, AFreshReadingKeepsTheTilesAndTheKeyboard) {
  showWithHelper();
  view->activateWindow();
  const auto before = tiles();
  Button& automatic = buttonIn(*before[1], "Auto");
  automatic.setFocus();
  core::SensorSnapshot next = readings.next;
  next.fans[1].currentRPM = 4321;
  read(next);
  EXPECT_EQ(tiles(), before);
  EXPECT_TRUE(shows(*before[1], "4321"));
  EXPECT_EQ(view->focusWidget(), &automatic);
}

TEST_F(DashboardTest, AFanThatComesOrGoesEndsNoDragOfTheOnesBeforeIt) {
  readings.next = app::snapshot({app::fan(0), app::fan(1)});
  showWithHelper();
  FanTileView* const first = tiles().at(0);
  Slider& slider = *first->findChild<Slider*>();
  QTest::mousePress(&slider, Qt::LeftButton, Qt::NoModifier, slider.rect().center());
  for (const auto& fans : {std::vector{app::fan(0)}, std::vector{app::fan(0), app::fan(2), app::fan(1)}}) {
    read(app::snapshot(fans, {}));
    ASSERT_EQ(tiles().size(), fans.size());
    for (std::size_t place = 0; place < fans.size(); ++place)
      EXPECT_EQ(tiles()[place]->fanID(), fans[place].id);
    EXPECT_EQ(tiles()[0], first);
    EXPECT_TRUE(slider.isPressed());
  }
  QTest::mouseRelease(&slider, Qt::LeftButton);
}

TEST_F(DashboardTest, ASensorRowSaysWhatItReadsInTheColourOfTheScale) {
  readings.next = app::snapshot(
      {}, {{.key = "A", .name = "CPU (cluster)", .celsius = 61.74, .category = core::SensorCategory::cpu}});
  begin();
  show();
  const SensorRow& row = *rows().at(0);
  EXPECT_EQ(textsIn(row), (QStringList{QStringLiteral("CPU (cluster)"), QStringLiteral("CPU · Working"),
                                       QStringLiteral("61.7°C")}));
  const QPoint dot = row.findChild<Dot*>()->geometry().center();
  for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
    theme.force({.appearance = appearance, .reduceMotion = true});
    turn();
    QImage picture(row.size(), QImage::Format_ARGB32_Premultiplied);
    rows().at(0)->render(&picture);
    EXPECT_EQ(picture.pixel(dot), qColor(core::TemperatureScale::color(61.74, schemeOf(theme))).rgb());
  }
}

TEST_F(DashboardTest, WithoutAHelperTheBannerOffersToSetItUp) {
  begin();
  show();
  EXPECT_TRUE(shows(*view, inactiveTitle));
  EXPECT_TRUE(shows(*view, "Sensor readings above are live. Set up the privileged helper to enable manual "
                           "and Full Blast control."));
  registration->statusAfterRegistering = DaemonStatus::enabled;
  click(buttonIn(*view, "Enable…"));
  turn();
  EXPECT_EQ(registration->log, std::vector<std::string>{"register"});
  pass(3);
  turn();
  EXPECT_FALSE(shows(*view, inactiveTitle));
}

TEST_F(DashboardTest, AHelperThatGoesBringsTheBannerBack) {
  showWithHelper();
  EXPECT_FALSE(hasButton(*view, "Enable…"));
  setHelper(DaemonStatus::notRegistered);
  turn();
  EXPECT_TRUE(hasButton(*view, "Enable…"));
}

TEST_F(DashboardTest, AStaleHelperIsSaidWhenItIsActive) {
  showWithHelper();
  setStale(true);
  EXPECT_TRUE(showsStaleBanner());
  setStale(false);
  EXPECT_FALSE(showsStaleBanner());
}

TEST_F(DashboardTest, AnInactiveHelperIsNotCalledStale) {
  begin();
  show();
  setStale(true);
  EXPECT_FALSE(showsStaleBanner());
  EXPECT_TRUE(hasButton(*view, "Enable…"));
}

TEST_F(DashboardTest, RestartHelperRecoversAndSaysSoMeanwhile) {
  showWithHelper();
  setStale(true);
  registration->answers.isClosed = true;
  click(buttonIn(*view, "Restart Helper"));
  turn();
  EXPECT_FALSE(buttonIn(*view, "Restarting…").isEnabled());
  EXPECT_TRUE(shows(*view, "Restarting the helper…"));
  registration->answers.open();
  turn();
  EXPECT_TRUE(buttonIn(*view, "Restart Helper").isEnabled());
  EXPECT_EQ(registration->log, (std::vector<std::string>{"unregister", "register"}));
}

TEST_F(DashboardTest, AMachineThatDoesNotOpenIsSaidInTheStrip) {
  driver.openError = hardware::SMCError::driverNotFound();
  begin();
  show();
  EXPECT_TRUE(shows(*view, ("Could not open AppleSMC: " + driver.openError->description()).c_str()));
  EXPECT_TRUE(view->findChild<ErrorStrip*>()->isVisible());
}

TEST_F(DashboardTest, WithoutAnErrorThereIsNoStrip) {
  begin();
  show();
  EXPECT_FALSE(view->findChild<ErrorStrip*>()->isVisible());
}

TEST_F(DashboardTest, TheModelKnowsWhetherTheDashboardIsOnScreen) {
  begin();
  EXPECT_FALSE(model->isDashboardVisible());
  show();
  EXPECT_TRUE(model->isDashboardVisible());
  view->hide();
  EXPECT_FALSE(model->isDashboardVisible());
  view->show();
  EXPECT_TRUE(model->isDashboardVisible());
  view = nullptr;
  EXPECT_FALSE(model->isDashboardVisible());
}

TEST_F(DashboardTest, AMinimisedWindowIsNotOnScreen) {
  begin();
  show();
  view->showMinimized();
  turn();
  EXPECT_FALSE(model->isDashboardVisible());
  core::SensorSnapshot next = readings.next;
  next.fans[0].currentRPM = 4321;
  read(next);
  EXPECT_FALSE(shows(*tiles().at(0), "4321"));
  view->showNormal();
  turn();
  EXPECT_TRUE(model->isDashboardVisible());
  EXPECT_TRUE(shows(*tiles().at(0), "4321"));
}

TEST_F(DashboardTest, AHiddenDashboardTakesUpEverythingWhenItIsShown) {
  showWithHelper();
  view->hide();
  core::SensorSnapshot next = readings.next;
  next.fans[0].currentRPM = 4321;
  next.temps[0].celsius = 91;
  read(next);
  EXPECT_FALSE(shows(*tiles().at(0), "4321"));
  view->show();
  EXPECT_TRUE(shows(*tiles().at(0), "4321"));
  EXPECT_TRUE(shows(*rows().at(0), "91.0°C"));
}

TEST_F(DashboardTest, DraggingMovesTheTilesOfItsFanAlone) {
  showWithHelper();
  const core::Fan fan = model->snapshot().fans.at(0);
  model->beginManualDrag(fan);
  model->previewSliderRPM(fan, 5000);
  turn();
  EXPECT_TRUE(shows(*tiles()[0], "50%"));
  EXPECT_TRUE(shows(*tiles()[1], "0%"));
}

TEST_F(DashboardTest, OneReadingChangedRepaintsItsRowAlone) {
  readings.next.temps.push_back(support::sensor("B", 60));
  showWithHelper();
  const PaintCount first(*rows().at(0));
  const PaintCount second(*rows().at(1));
  const PaintCount tile(*tiles().at(0));
  core::SensorSnapshot next = readings.next;
  next.temps[1].celsius = 61;
  read(next);
  EXPECT_EQ(first.count(), 0);
  EXPECT_GT(second.count(), 0);
  EXPECT_EQ(tile.count(), 0);
}

TEST_F(DashboardTest, ChangingFiguresMoveNothing) {
  readings.next.temps = {{.key = "A", .name = "CPU", .celsius = 71.1}};
  showWithHelper();
  const auto places = [this] {
    std::vector<QRect> all;
    for (const QWidget* widget : view->findChildren<QWidget*>())
      all.push_back({widget->mapTo(view.get(), QPoint()), widget->size()});
    return all;
  };
  const auto before = places();
  core::SensorSnapshot next = readings.next;
  next.temps[0].celsius = 88.8;
  for (core::Fan& fan : next.fans)
    fan.currentRPM = 1111;
  read(next);
  EXPECT_EQ(places(), before);
}

struct Columns {
  int width;
  int fans;
  int sensors;
};

class DashboardColumnsTest : public DashboardTest, public testing::WithParamInterface<Columns> {};

TEST_P(DashboardColumnsTest, TilesAndRowsFillTheWidth) {
  readings.next = app::snapshot({app::fan(0), app::fan(1)});
  for (int index = 0; index < 12; ++index)
    readings.next.temps.push_back(support::sensor(std::to_string(index), 50));
  begin();
  show();
  view->resize(GetParam().width, 800);
  turn();
  std::vector<int> columns;
  for (const AdaptiveGrid* grid : view->findChildren<AdaptiveGrid*>())
    columns.push_back(grid->columns());
  EXPECT_EQ(columns, (std::vector{GetParam().fans, GetParam().sensors}));
}

// With a sidebar of 200: windows of 900, 1000, 1280 and 1600.
INSTANTIATE_TEST_SUITE_P(Widths, DashboardColumnsTest,
                         testing::Values(Columns{560, 1, 2}, Columns{700, 2, 2}, Columns{800, 2, 3},
                                         Columns{1080, 2, 4}, Columns{1400, 2, 5}),
                         [](const auto& info) { return "Of" + std::to_string(info.param.width); });

TEST_F(DashboardTest, TheKeyboardGoesFromTheBannerThroughTheTiles) {
  begin();
  show();
  view->activateWindow();
  Button& enable = buttonIn(*view, "Enable…");
  enable.setFocus();
  QTest::keyClick(&enable, Qt::Key_Tab);
  EXPECT_EQ(view->focusWidget(), &buttonIn(*tiles()[0], "Auto"));
  QTest::keyClick(view->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(view->focusWidget(), &buttonIn(*tiles()[1], "Auto"));
}

TEST_F(DashboardTest, ThePageKeysScrollFromAButton) {
  for (int index = 0; index < 64; ++index)
    readings.next.temps.push_back(support::sensor(std::to_string(index), 50));
  showWithHelper();
  view->activateWindow();
  Button& automatic = buttonIn(*tiles()[1], "Auto");
  automatic.setFocus();
  const QScrollBar& bar = *view->findChild<ScrollArea*>()->verticalScrollBar();
  QTest::keyClick(&automatic, Qt::Key_PageDown);
  EXPECT_EQ(bar.value(), bar.pageStep());
  QTest::keyClick(&automatic, Qt::Key_PageUp);
  EXPECT_EQ(bar.value(), 0);
}

TEST_F(DashboardTest, CardsAndTheBannerHaveNames) {
  begin();
  show();
  QStringList names;
  for (const Card* card : view->findChildren<Card*>())
    names << card->accessibleName();
  EXPECT_EQ(names, (QStringList{QStringLiteral("Fans"), QStringLiteral("Sensors")}));
  EXPECT_EQ(seenIn<HelperBanner>(*view).at(0)->accessibleName(), QString::fromUtf8(inactiveTitle));
}

} // namespace
} // namespace ventolith::ui
