#include "Finding.h"
#include "ViewFixture.h"
#include "ui/DashboardView.h"
#include "ui/DashboardWindow.h"
#include "ui/RootView.h"

#include <QAccessible>
#include <QPointer>
#include <QSignalSpy>
#include <QSplitter>

#include <memory>

namespace ventolith::ui {
namespace {

using core::FanControlModePlan;

class RootTest : public ViewTest {
protected:
  ~RootTest() override {
    window = nullptr;
    root = nullptr;
  }

  void show() {
    begin();
    root = std::make_unique<RootView>(*context);
    root->resize(1000, 760);
    root->show();
    turn();
  }
  void openWindow() {
    window->open();
    turn();
  }
  void makeWindow() {
    begin();
    window = std::make_unique<DashboardWindow>(*context);
  }

  [[nodiscard]] SidebarList& sidebar() const { return *root->findChild<SidebarList*>(); }
  void choose(AppSection section) {
    sidebar().setCurrentRow(static_cast<int>(section));
    turn();
  }
  [[nodiscard]] DashboardView* dashboard() const {
    const auto seen = seenIn<DashboardView>(*root);
    return seen.empty() ? nullptr : seen.front();
  }

  std::unique_ptr<RootView> root;
  std::unique_ptr<DashboardWindow> window;
};

TEST_F(RootTest, BeginsOnTheDashboard) {
  show();
  EXPECT_EQ(root->section(), AppSection::dashboard);
  EXPECT_EQ(sidebar().currentRow(), 0);
  EXPECT_NE(dashboard(), nullptr);
  EXPECT_TRUE(model->isDashboardVisible());
}

TEST_F(RootTest, TheSidebarListsEverySection) {
  show();
  QStringList rows;
  for (int row = 0; row < sidebar().count(); ++row)
    rows << sidebar().item(row)->text();
  EXPECT_EQ(rows, (QStringList{QStringLiteral("Dashboard"), QStringLiteral("Fan Curves"),
                               QStringLiteral("Rules"), QStringLiteral("Presets"), QStringLiteral("About")}));
}

TEST_F(RootTest, TheSidebarHasAName) {
  show();
  QAccessibleInterface& its = *QAccessible::queryAccessibleInterface(&sidebar());
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Screens"));
}

class RootSectionTest : public RootTest, public testing::WithParamInterface<AppSection> {};

TEST_P(RootSectionTest, ASectionIsShownUnderItsTitle) {
  show();
  const QSignalSpy changed(root.get(), &RootView::sectionChanged);
  choose(GetParam());
  EXPECT_EQ(root->section(), GetParam());
  EXPECT_TRUE(shows(*root->findChild<TopBar*>(), qUtf8Printable(title(GetParam()))));
  EXPECT_EQ(changed.count(), GetParam() == AppSection::dashboard ? 0 : 1);
  EXPECT_EQ(model->isDashboardVisible(), GetParam() == AppSection::dashboard);
}

INSTANTIATE_TEST_SUITE_P(All, RootSectionTest, testing::ValuesIn(allAppSections), [](const auto& info) {
  return title(info.param).remove(QLatin1Char(' ')).toStdString();
});

TEST_F(RootTest, EveryVisitMakesAScreenAnew) {
  show();
  const QPointer<DashboardView> first = dashboard();
  choose(AppSection::about);
  EXPECT_TRUE(first.isNull());
  EXPECT_EQ(dashboard(), nullptr);
  choose(AppSection::dashboard);
  EXPECT_NE(dashboard(), nullptr);
  EXPECT_TRUE(model->isDashboardVisible());
}

TEST_F(RootTest, RestoreAutoStandsOnEveryScreenAndWorksWithoutAHelper) {
  store.savePlan(support::planOf(FanControlModePlan::fixedRPM(3000)));
  show();
  for (const AppSection section : allAppSections) {
    choose(section);
    Button& restore = buttonIn(*root, "Restore Auto");
    EXPECT_TRUE(restore.isEnabled());
    EXPECT_EQ(restore.toolTip(), QStringLiteral("Return all fans to firmware Auto"));
  }
  click(buttonIn(*root, "Restore Auto"));
  settle();
  EXPECT_EQ(model->activePlan(), core::FanControlPlan::allAutomatic);
  EXPECT_EQ(sentPlans().back(), core::FanControlPlan::allAutomatic);
}

TEST_F(RootTest, TheSidebarIsOfItsWidthAndGrowsWithinItsBounds) {
  show();
  auto& columns = *root->findChild<QSplitter*>();
  EXPECT_EQ(sidebar().width() + columns.handleWidth(), 200);
  const auto widthFor = [&](int wanted) {
    columns.setSizes({wanted, 1000 - wanted});
    return sidebar().width();
  };
  EXPECT_EQ(widthFor(400), 240);
  EXPECT_EQ(widthFor(20), 180);
  EXPECT_EQ(widthFor(220), 220);
  root->resize(1600, 1000);
  turn();
  EXPECT_EQ(sidebar().width(), 220);
}

TEST_F(RootTest, TheKeyboardGoesFromTheSidebarToTheBarToTheScreen) {
  show();
  root->activateWindow();
  sidebar().setFocus();
  std::vector<QString> titles;
  for (int step = 0; step < 3; ++step) {
    QTest::keyClick(root->focusWidget(), Qt::Key_Tab);
    const auto* button = qobject_cast<Button*>(root->focusWidget());
    titles.push_back(button ? button->title() : QString());
  }
  EXPECT_EQ(titles[1], QStringLiteral("Restore Auto"));
  EXPECT_EQ(titles[2], QStringLiteral("Enable…"));
}

TEST_F(RootTest, LeavingTheDashboardEndsADrag) {
  registration->status = app::DaemonStatus::enabled;
  show();
  Slider& slider = *dashboard()->findChild<Slider*>();
  QTest::mousePress(&slider, Qt::LeftButton, Qt::NoModifier, slider.rect().center());
  EXPECT_FALSE(model->draggingFans().empty());
  choose(AppSection::rules);
  EXPECT_TRUE(model->draggingFans().empty());
}

TEST_F(RootTest, TheWindowBearsTheTitleOfItsSection) {
  makeWindow();
  openWindow();
  EXPECT_EQ(window->windowTitle(), QStringLiteral("Dashboard"));
  window->findChild<RootView*>()->setSection(AppSection::curves);
  EXPECT_EQ(window->windowTitle(), QStringLiteral("Fan Curves"));
}

TEST_F(RootTest, TheWindowIsNeverSmallerThanItsContent) {
  makeWindow();
  openWindow();
  window->resize(100, 100);
  turn();
  EXPECT_EQ(window->size(), QSize(900, 640));
}

TEST_F(RootTest, AClosedWindowHoldsNothingAndOpensOnTheDashboard) {
  makeWindow();
  const QSignalSpy closed(window.get(), &DashboardWindow::closed);
  openWindow();
  window->findChild<RootView*>()->setSection(AppSection::presets);
  window->resize(1100, 800);
  window->close();
  turn();
  EXPECT_EQ(closed.count(), 1);
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(window->findChild<RootView*>(), nullptr);
  openWindow();
  EXPECT_EQ(window->findChild<RootView*>()->section(), AppSection::dashboard);
  EXPECT_EQ(window->size(), QSize(1100, 800));
}

TEST_F(RootTest, OpeningAWindowThatIsOpenKeepsItsScreen) {
  makeWindow();
  openWindow();
  const QPointer<RootView> root = window->findChild<RootView*>();
  root->setSection(AppSection::rules);
  openWindow();
  ASSERT_FALSE(root.isNull());
  EXPECT_EQ(root->section(), AppSection::rules);
}

TEST_F(RootTest, OpeningBringsAMinimisedWindowBack) {
  makeWindow();
  openWindow();
  window->showMinimized();
  turn();
  openWindow();
  EXPECT_FALSE(window->isMinimized());
  EXPECT_TRUE(model->isDashboardVisible());
}

TEST_F(RootTest, AClosedWindowReopenedAtOnceShowsOneScreen) {
  makeWindow();
  openWindow();
  window->close();
  window->open(); // Before the former screen is gone.
  EXPECT_EQ(seenIn<RootView>(*window).size(), 1U);
  turn();
  EXPECT_TRUE(model->isDashboardVisible());
}

TEST_F(RootTest, TheShortcutsCloseAndQuit) {
  makeWindow();
  openWindow();
  window->activateWindow();
  turn();
  QTest::keyClick(window.get(), Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(quits, 1);
  QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(window->isVisible());
}

} // namespace
} // namespace ventolith::ui
