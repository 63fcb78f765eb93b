#include "ui/MenuBarView.h"

#include "MenuBarFixture.h"

#include <QSignalSpy>

namespace ventolith::ui {
namespace {

using core::FanControlPlan;

core::TempSensor sensor(std::string name, double celsius) {
  return {.key = name, .name = name, .celsius = celsius};
}

core::SensorSnapshot withSensors(int count) {
  core::SensorSnapshot reading;
  for (int place = 0; place < count; ++place)
    reading.temps.push_back(sensor("S" + std::to_string(place), 40 + place));
  return reading;
}

TEST_F(MenuBarViewTest, IsAsWideAsAPanel) {
  showWithHelper();
  EXPECT_EQ(view->width(), 320);
  EXPECT_EQ(view->height(), view->sizeHint().height());
}

TEST_F(MenuBarViewTest, TheHeaderNamesTheHottestSensorWithoutDecimals) {
  readings.next = app::snapshot({}, {sensor("GPU", 50), sensor("CPU (cluster)", 61.7), sensor("SSD", 40)});
  begin();
  show();
  EXPECT_EQ(header(), (QStringList{QStringLiteral("CPU (cluster)"), QStringLiteral("Automatic"),
                                   QString::fromUtf8("62°C")}));
}

TEST_F(MenuBarViewTest, WithoutSensorsTheHeaderSaysSoAndTheChipsAreGone) {
  readings.next = app::snapshot({app::fan(0)});
  begin();
  show();
  EXPECT_EQ(header(), (QStringList{QStringLiteral("No sensor data"), QStringLiteral("Automatic")}));
  EXPECT_TRUE(seenIn<SensorChipsRow>(*view).empty());
  EXPECT_EQ(dividers(), 3U);
}

TEST_F(MenuBarViewTest, SensorsThatComeBringTheChipsAndTheirDivider) {
  readings.next = app::snapshot({app::fan(0)});
  begin();
  show();
  const int before = view->sizeHint().height();
  readings.next.temps = {sensor("CPU", 50)};
  read(readings.next);
  EXPECT_EQ(dividers(), 4U);
  EXPECT_GT(view->sizeHint().height(), before);
}

TEST_F(MenuBarViewTest, TwoSensorsGiveTwoChips) {
  readings.next = withSensors(2);
  begin();
  show();
  EXPECT_EQ(chips(), (QStringList{QStringLiteral("S0"), QString::fromUtf8("40°"), QStringLiteral("S1"),
                                  QString::fromUtf8("41°")}));
}

TEST_F(MenuBarViewTest, TenSensorsGiveChipsForTheFirstThree) {
  readings.next = withSensors(10);
  begin();
  show();
  EXPECT_EQ(chips(), (QStringList{QStringLiteral("S0"), QString::fromUtf8("40°"), QStringLiteral("S1"),
                                  QString::fromUtf8("41°"), QStringLiteral("S2"), QString::fromUtf8("42°")}));
}

TEST_F(MenuBarViewTest, LongNamesOfChipsGiveWayToTheirFigures) {
  for (const char* name :
       {"A sensor beside the connector", "Another one of this kind", "And a third, longer"})
    readings.next.temps.push_back(sensor(name, 100));
  begin();
  show();
  for (const TextLabel* label : seenIn<TextLabel>(*view->findChild<SensorChipsRow*>())) {
    if (label->text() == QString::fromUtf8("100°")) EXPECT_GE(label->width(), label->sizeHint().width());
  }
  EXPECT_LE(view->findChild<SensorChipsRow*>()->width(), 290);
}

TEST_F(MenuBarViewTest, LongNamesOfChipsShareTheRoomThatAShortOneLeaves) {
  readings.next.temps = {sensor("Thermal diode beside the connector", 100), sensor("CPU", 100),
                         sensor("Thermal diode behind the second power supply", 100)};
  begin();
  show();
  const auto labels = seenIn<TextLabel>(*view->findChild<SensorChipsRow*>());
  ASSERT_EQ(labels.size(), 6U);
  EXPECT_EQ(labels[2]->width(), labels[2]->sizeHint().width());
  EXPECT_NEAR(labels[0]->width(), labels[4]->width(), 1);
  EXPECT_GT(labels[0]->width(), labels[2]->width());
}

TEST_F(MenuBarViewTest, TheStatusWordIsTheActivePresetsName) {
  const core::FanPreset quiet{.name = "Night", .plan = fixed({{0, 2500}})};
  beginWithHelper();
  model->addOrUpdatePreset(quiet);
  model->activatePreset(quiet);
  show();
  EXPECT_EQ(header().at(1).toStdString(), "Night");
}

TEST_F(MenuBarViewTest, AFanThatIsHeldWithoutAPresetIsCustom) {
  showWithHelper();
  model->applyPlan(fixed({{1, 2500}}));
  turn();
  EXPECT_EQ(header().at(1).toStdString(), "Custom");
}

TEST_F(MenuBarViewTest, AMachineWithoutFansSaysSo) {
  readings.next = withSensors(1);
  begin();
  show();
  EXPECT_TRUE(shows(*view, "No fans detected"));
  EXPECT_TRUE(blocks().empty());
  EXPECT_TRUE(shows(*view, "Preset"));
}

TEST_F(MenuBarViewTest, BlocksStandInTheOrderOfTheReading) {
  readings.next = app::snapshot({{.id = 3, .name = "Left"}, {.id = 1, .name = "Right"}});
  begin();
  show();
  ASSERT_EQ(blocks().size(), 2U);
  EXPECT_TRUE(shows(*blocks()[0], "Left"));
  EXPECT_TRUE(shows(*blocks()[1], "Right"));
  EXPECT_LT(blocks()[0]->mapTo(view.get(), QPoint()).y(), blocks()[1]->mapTo(view.get(), QPoint()).y());
  EXPECT_FALSE(shows(*view, "No fans detected"));
}

TEST_F(MenuBarViewTest, AFreshReadingKeepsTheBlocks) {
  showWithHelper();
  const auto before = blocks();
  readings.next.fans[1].currentRPM = 4321;
  read(readings.next);
  EXPECT_EQ(blocks(), before);
  EXPECT_TRUE(shows(*before[1], "4321 rpm"));
}

TEST_F(MenuBarViewTest, OtherFansGetBlocksOfTheirOwn) {
  showWithHelper();
  read(app::snapshot({app::fan(7)}, {support::sensor("A", 50)}));
  ASSERT_EQ(blocks().size(), 1U);
  EXPECT_EQ(blocks()[0]->fanID(), 7);
}

TEST_F(MenuBarViewTest, AFanThatComesOrGoesLeavesTheBlocksOfTheOthers) {
  showWithHelper();
  FanControlBlock* const second = blocks().at(1);
  const core::Fan first = readings.next.fans.at(0);
  const core::Fan stays = readings.next.fans.at(1);
  read(app::snapshot({stays}));
  EXPECT_EQ(blocks(), std::vector{second});
  read(app::snapshot({first, stays}));
  ASSERT_EQ(blocks().size(), 2U);
  EXPECT_EQ(blockOf(first.id).mapTo(view.get(), QPoint()).y() + 48 + 14,
            second->mapTo(view.get(), QPoint()).y());
  EXPECT_EQ(&blockOf(stays.id), second);
}

TEST_F(MenuBarViewTest, ADragGoesOnWhenAnotherFanGoes) {
  showWithHelper();
  const core::Fan stays = readings.next.fans.at(1);
  Slider& slider = *blockOf(stays.id).findChild<Slider*>();
  QTest::mousePress(&slider, Qt::LeftButton, {}, slider.geometryOf().knobCentre(slider.value()).toPoint());
  read(app::snapshot({stays}));
  EXPECT_EQ(model->draggingFans(), std::set<core::FanID>{stays.id});
  QTest::mouseRelease(&slider, Qt::LeftButton, {}, slider.geometryOf().knobCentre(5000).toPoint());
  turn();
  EXPECT_TRUE(model->draggingFans().empty());
}

TEST_F(MenuBarViewTest, RestoreAutoGivesEveryFanBack) {
  store.savePlan(fixed({{0, 5000}, {1, 4000}}));
  showWithHelper();
  Button& restore = buttonIn(*view, "Restore Auto");
  EXPECT_EQ(restore.toolTip().toStdString(), "Restores every fan to automatic control");
  click(restore);
  turn();
  EXPECT_EQ(model->activePlan(), FanControlPlan::allAutomatic);
}

TEST_F(MenuBarViewTest, OpenBringsTheDashboardAndLeavesThePanel) {
  begin();
  show();
  const QSignalSpy left(view.get(), &MenuBarView::left);
  Button& open = buttonIn(*view, "Open Ventolith");
  EXPECT_EQ(open.toolTip().toStdString(), "Opens the Ventolith dashboard window");
  click(open);
  EXPECT_EQ(dashboardsOpened, 1);
  EXPECT_EQ(left.count(), 1);
}

TEST_F(MenuBarViewTest, QuitEndsTheApplication) {
  begin();
  show();
  click(buttonIn(*view, "Quit"));
  EXPECT_EQ(quits, 1);
}

TEST_F(MenuBarViewTest, SupportOpensItsPage) {
  supportURL = "https://example.com/support";
  begin();
  show();
  click(buttonIn(*view, "Support"));
  EXPECT_EQ(opened, std::vector<std::string>{"https://example.com/support"});
}

TEST_F(MenuBarViewTest, WithoutAPageSupportIsDisabled) {
  begin();
  show();
  EXPECT_FALSE(buttonIn(*view, "Support").isEnabled());
}

TEST_F(MenuBarViewTest, ChecksForUpdates) {
  begin();
  show();
  click(buttonIn(*view, "Check for Updates"));
  turn();
  EXPECT_EQ(updateService->checks, 1);
  EXPECT_TRUE(hasButton(*view, "Checking…"));
}

TEST_F(MenuBarViewTest, ADragShowsInThePanelAsItDoesInTheModel) {
  showWithHelper();
  const core::Fan fan = model->snapshot().fans.at(0);
  model->beginManualDrag(fan);
  model->previewSliderRPM(fan, 5000);
  turn();
  EXPECT_TRUE(shows(*blocks()[0], "50%"));
  EXPECT_TRUE(shows(*blocks()[1], "0%"));
}

TEST_F(MenuBarViewTest, AHiddenPanelTakesUpEverythingWhenItIsShown) {
  showWithHelper();
  view->hide();
  readings.next.fans[0].currentRPM = 4321;
  readings.next.temps[0].celsius = 91;
  read(readings.next);
  EXPECT_FALSE(shows(*blocks().at(0), "4321 rpm"));
  view->show();
  EXPECT_TRUE(shows(*blocks().at(0), "4321 rpm"));
  EXPECT_TRUE(shows(*view, "91°C"));
}

TEST_F(MenuBarViewTest, AFansSpeedRepaintsItsBlockAlone) {
  showWithHelper();
  const PaintCount first(*blocks()[0]->findChildren<TextLabel*>().at(1));
  const PaintCount second(*blocks()[1]->findChildren<TextLabel*>().at(1));
  const PaintCount slider(*blocks()[0]->findChild<Slider*>());
  const PaintCount header(*view->findChild<MenuBarHeader*>()->findChildren<TextLabel*>().at(0));
  const PaintCount footer(buttonIn(*view, "Restore Auto"));
  readings.next.fans[1].currentRPM = 4321;
  read(readings.next);
  EXPECT_GT(second.count(), 0);
  EXPECT_EQ(first.count(), 0);
  EXPECT_EQ(slider.count(), 0);
  EXPECT_EQ(header.count(), 0);
  EXPECT_EQ(footer.count(), 0);
}

TEST_F(MenuBarViewTest, ChangingFiguresMoveNothing) {
  showWithHelper();
  const auto places = [this] {
    std::vector<QRect> all;
    for (const QWidget* widget : view->findChildren<QWidget*>())
      if (widget->isVisible()) all.push_back({widget->mapTo(view.get(), QPoint()), widget->size()});
    return all;
  };
  const auto before = places();
  readings.next.temps[0].celsius = 77;
  for (core::Fan& fan : readings.next.fans)
    fan.currentRPM = 2111;
  read(readings.next);
  EXPECT_EQ(places(), before);
}

TEST_F(MenuBarViewTest, TheKeyboardGoesFromTopToBottom) {
  supportURL = "https://example.com/support";
  showWithHelper();
  const std::string ofFan = "Fan speed | Set Fan to Full Blast | Restore automatic control for Fan | ";
  EXPECT_EQ(keyboardOrder().join(QStringLiteral(" | ")).toStdString(),
            ofFan + ofFan + "Automatic | Restore Auto | Open Ventolith | Check for Updates | Support | Quit");
}

TEST_F(MenuBarViewTest, TheKeyboardKeepsItsOrderWhenFansCome) {
  readings.next = app::snapshot({});
  beginWithHelper();
  show();
  setStale(true);
  read(app::snapshot({app::fan(3)}));
  EXPECT_EQ(
      keyboardOrder().mid(0, 5).join(QStringLiteral(" | ")).toStdString(),
      "Fan speed | Set Fan to Full Blast | Restore automatic control for Fan | Restart Helper | Automatic");
}

TEST_F(MenuBarViewTest, TheKeyboardFollowsTheOrderOfTheFans) {
  readings.next = app::snapshot({{.id = 0, .name = "Left"}, {.id = 1, .name = "Right"}});
  beginWithHelper();
  show();
  read(app::snapshot({{.id = 1, .name = "Right"}, {.id = 0, .name = "Left"}}));
  const QStringList order = keyboardOrder();
  EXPECT_EQ(order.at(0).toStdString(), "Right speed");
  EXPECT_EQ(order.at(3).toStdString(), "Left speed");
  EXPECT_EQ(order.at(6).toStdString(), "Automatic");
}

TEST_F(MenuBarViewTest, WhereTheScreenIsLowTheFansScroll) {
  readings.next.fans.clear();
  for (int id = 0; id < 8; ++id)
    readings.next.fans.push_back(app::fan(id));
  beginWithHelper();
  show();
  const int whole = view->sizeHint().height();
  view->setMaximumHeight(whole - 200);
  view->resize(320, whole - 200);
  turn();
  const Button& quit = buttonIn(*view, "Quit");
  EXPECT_LE(quit.mapTo(view.get(), QPoint(0, quit.height())).y(), view->height());
  EXPECT_EQ(blocks().at(0)->height(), 48);
  EXPECT_FALSE(blocks().back()->visibleRegion().isEmpty() && blocks().front()->visibleRegion().isEmpty());
  EXPECT_TRUE(blocks().back()->visibleRegion().isEmpty());
}

TEST_F(MenuBarViewTest, AnotherAppearanceRecoloursTheDots) {
  readings.next = withSensors(1);
  begin();
  show();
  const auto colorOfDot = [this] {
    Dot& dot = *view->findChild<MenuBarHeader*>()->findChild<Dot*>();
    return dot.grab().toImage().pixelColor(4, 4);
  };
  const QColor light = colorOfDot();
  theme.force({.appearance = Appearance::dark, .reduceMotion = true});
  turn();
  EXPECT_NE(colorOfDot(), light);
}

} // namespace
} // namespace ventolith::ui
