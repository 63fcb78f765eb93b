#include "ui/MenuBarExtra.h"

#include "Finding.h"
#include "StatusItemDouble.h"
#include "ViewFixture.h"
#include "ui/MenuBarView.h"
#include "ui/kit/Popover.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <memory>
#include <utility>

namespace ventolith::ui {
namespace {

class MenuBarExtraTest : public ViewTest {
protected:
  ~MenuBarExtraTest() override { extra = nullptr; }

  void show() {
    begin();
    auto made = std::make_unique<StatusItemDouble>();
    item = made.get();
    item->at = place;
    extra = std::make_unique<MenuBarExtra>(*context, std::move(made));
    extra->show();
    turn();
  }
  void open() {
    extra->toggle();
    turn();
  }
  void showOpen() {
    show();
    open();
  }
  /// Later than any press that may have closed the panel.
  void wait() { pass(1); }

  static Popover* popover() {
    for (QWidget* window : QApplication::topLevelWidgets())
      if (auto* found = qobject_cast<Popover*>(window)) return found;
    return nullptr;
  }
  static MenuBarView& panel() { return *popover()->findChild<MenuBarView*>(); }

  QRect place; // Where the desktop shows the label, if it tells.
  std::unique_ptr<MenuBarExtra> extra;
  StatusItemDouble* item = nullptr; // The extra's.
};

TEST_F(MenuBarExtraTest, HasNoPanelBeforeItIsPressed) {
  show();
  EXPECT_FALSE(extra->isOpen());
  EXPECT_EQ(popover(), nullptr);
}

TEST_F(MenuBarExtraTest, APressOpensThePanelAndAnotherClosesIt) {
  showOpen();
  EXPECT_TRUE(extra->isOpen());
  EXPECT_TRUE(panel().isVisible());
  extra->toggle();
  EXPECT_FALSE(extra->isOpen());
  wait();
  open();
  EXPECT_TRUE(extra->isOpen());
}

TEST_F(MenuBarExtraTest, ThePressThatClosedThePanelDoesNotOpenItAgain) {
  showOpen();
  popover()->close(); // As the click outside of it does, before the label hears of the press.
  extra->toggle();
  EXPECT_FALSE(extra->isOpen());
}

TEST_F(MenuBarExtraTest, EscapeCloses) {
  showOpen();
  QTest::keyClick(popover(), Qt::Key_Escape);
  EXPECT_FALSE(extra->isOpen());
}

TEST_F(MenuBarExtraTest, AClickOutsideCloses) {
  showOpen();
  QTest::mouseClick(popover(), Qt::LeftButton, {}, QPoint(-40, -40));
  EXPECT_FALSE(extra->isOpen());
}

TEST_F(MenuBarExtraTest, AClickInsideDoesNot) {
  showOpen();
  QTest::mouseClick(popover(), Qt::LeftButton, {}, popover()->panel().center());
  EXPECT_TRUE(extra->isOpen());
}

TEST_F(MenuBarExtraTest, AnotherProgramInFrontCloses) {
  showOpen();
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
  EXPECT_FALSE(extra->isOpen());
}

TEST_F(MenuBarExtraTest, OpeningTheDashboardCloses) {
  showOpen();
  click(buttonIn(panel(), "Open Ventolith"));
  EXPECT_FALSE(extra->isOpen());
  EXPECT_EQ(dashboardsOpened, 1);
}

struct Corner {
  const char* name;
  double right;  // Of the screen's width.
  double bottom; // Of its height.
};

class MenuBarExtraCornerTest : public MenuBarExtraTest, public testing::WithParamInterface<Corner> {
protected:
  MenuBarExtraCornerTest() {
    QCursor::setPos(screen().left() + static_cast<int>(GetParam().right * (screen().width() - 1)),
                    screen().top() + static_cast<int>(GetParam().bottom * (screen().height() - 1)));
  }

  static QRect screen() { return QGuiApplication::primaryScreen()->availableGeometry(); }
  static QRect onScreen() { return popover()->panel().translated(popover()->pos()); }
};

TEST_P(MenuBarExtraCornerTest, ThePanelLiesOnTheScreenBesideThePointer) {
  showOpen();
  EXPECT_TRUE(screen().contains(onScreen()));
  EXPECT_FALSE(onScreen().contains(QCursor::pos()));
  EXPECT_EQ(onScreen().size(), QSize(320, panel().sizeHint().height()));
}

TEST_P(MenuBarExtraCornerTest, ManyFansMakeItNoHigherThanTheScreen) {
  readings.next.fans.clear();
  for (int id = 0; id < 30; ++id)
    readings.next.fans.push_back(app::fan(id));
  showOpen();
  EXPECT_TRUE(screen().contains(onScreen()));
}

TEST_P(MenuBarExtraCornerTest, APanelThatGrowsStaysBesideThePointer) {
  readings.next.temps.clear();
  showOpen();
  const int before = onScreen().height();
  read(app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("A", 50)}));
  EXPECT_GT(onScreen().height(), before);
  EXPECT_TRUE(screen().contains(onScreen()));
  EXPECT_FALSE(onScreen().contains(QCursor::pos()));
}

INSTANTIATE_TEST_SUITE_P(Corners, MenuBarExtraCornerTest,
                         testing::Values(Corner{"AtTheTop", 0.95, 0}, Corner{"AtTheBottom", 0.95, 1},
                                         Corner{"AtTheFarTop", 0, 0}),
                         [](const auto& info) { return info.param.name; });

TEST_F(MenuBarExtraTest, TheKeyboardBeginsAtTheTopAtEachOpening) {
  showOpen();
  popover()->activateWindow();
  for (int step = 0; step < 2; ++step)
    QTest::keyClick(popover(), Qt::Key_Tab);
  const QWidget* const second = popover()->focusWidget();
  ASSERT_NE(second, nullptr);
  extra->toggle();
  wait();
  open();
  EXPECT_EQ(popover()->focusWidget(), nullptr);
  for (int step = 0; step < 2; ++step)
    QTest::keyClick(popover(), Qt::Key_Tab);
  EXPECT_EQ(popover()->focusWidget(), second);
}

TEST_F(MenuBarExtraTest, AClosedPanelTakesNothingUp) {
  showOpen();
  extra->toggle();
  readings.next.fans[0].currentRPM = 4321;
  read(readings.next);
  EXPECT_FALSE(shows(panel(), "4321 rpm"));
  open();
  EXPECT_TRUE(shows(panel(), "4321 rpm"));
}

TEST_F(MenuBarExtraTest, TheLabelIsShownAsTextAsPictureAndWithItsMeaning) {
  readings.next = app::snapshot({{.id = 0, .name = "Fan", .currentRPM = 5921}}, {support::sensor("A", 82)});
  show();
  EXPECT_EQ(item->label.text.toStdString(), "82° 5921rpm");
  EXPECT_EQ(item->label.meaning.toStdString(), "Ventolith: 82° 5921rpm");
  EXPECT_FALSE(item->label.picture.isNull());
}

TEST_F(MenuBarExtraTest, AnIconAloneMeansTheApplication) {
  readings.next = app::snapshot({});
  show();
  EXPECT_EQ(item->label.text.toStdString(), "");
  EXPECT_EQ(item->label.meaning.toStdString(), "Ventolith");
}

TEST_F(MenuBarExtraTest, TheLabelIsGivenAnewOnlyWhenItReadsDifferently) {
  readings.next = app::snapshot({}, {support::sensor("A", 82.1)});
  show();
  const int before = item->labelsGiven;
  read(app::snapshot({}, {support::sensor("A", 82.2)}));
  EXPECT_EQ(item->labelsGiven, before);
  read(app::snapshot({}, {support::sensor("A", 83.2)}));
  EXPECT_EQ(item->labelsGiven, before + 1);
}

TEST_F(MenuBarExtraTest, APressOnTheLabelOpensThePanel) {
  show();
  Q_EMIT item->pressed();
  EXPECT_TRUE(extra->isOpen());
  Q_EMIT item->pressed();
  EXPECT_FALSE(extra->isOpen());
}

TEST_F(MenuBarExtraTest, ThePanelDropsFromTheLabelWhereTheDesktopTellsItsPlace) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  place = QRect(screen.center().x(), screen.top(), 100, 22);
  showOpen();
  const QRect shown = popover()->panel().translated(popover()->pos());
  EXPECT_GT(shown.top(), place.bottom());
  EXPECT_LT(shown.top(), place.bottom() + 10);
  EXPECT_NEAR(shown.center().x(), place.center().x(), 1);
}

TEST_F(MenuBarExtraTest, WithoutAStatusAreaItSaysSo) {
  show();
  EXPECT_TRUE(extra->isInTray());
  item->isShowing = false;
  EXPECT_FALSE(extra->isInTray());
}

} // namespace
} // namespace ventolith::ui
