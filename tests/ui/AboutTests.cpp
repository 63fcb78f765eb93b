#include "ui/AboutView.h"

#include "Finding.h"
#include "ViewFixture.h"
#include "support/TemporaryFolder.h"
#include "ui/NoticesCard.h"
#include "ui/UpdateCheckButton.h"
#include "ui/kit/ScrollArea.h"

#include <QFocusFrame>
#include <QScrollBar>

#include <memory>

namespace ventolith::ui {
namespace {

class AboutTest : public ViewTest {
protected:
  AboutTest() { resourceFolder = QString::fromStdString(folder.path().string()); }
  ~AboutTest() override { view = nullptr; }

  void show(const app::BundleInfo& of) {
    begin();
    its.emplace(ViewContext{.model = *model,
                            .watch = *watch,
                            .theme = theme,
                            .bundle = of,
                            .mainExecutor = time.executor(),
                            .clock = time.clock,
                            .hasSupportPage = supportURL.has_value(),
                            .openDashboard = {},
                            .quit = {},
                            .resourceFolder = resourceFolder});
    view = std::make_unique<AboutView>(*its);
    view->resize(700, 500);
    view->show();
    turn();
  }
  void show() { show(released); }
  void writeNotices(const std::string& text) const { folder.write("THIRD_PARTY_NOTICES.md", text); }
  [[nodiscard]] NoticesText& notices() const { return *view->findChild<NoticesText*>(); }
  [[nodiscard]] QScrollBar& bar() const { return *view->findChild<ScrollArea*>()->verticalScrollBar(); }
  static std::string manyLines() {
    std::string text;
    for (int line = 0; line < 200; ++line)
      text += "Line " + std::to_string(line) + "\n";
    return text;
  }

  support::TemporaryFolder folder;
  app::MapBundleInfo released{{{"CFBundleName", std::string("Ventolith")},
                               {"CFBundleShortVersionString", std::string("1.0.3")},
                               {"CFBundleVersion", std::string("6")}}};
  std::optional<ViewContext> its;
  std::unique_ptr<AboutView> view;
};

TEST_F(AboutTest, SaysWhoTheApplicationIs) {
  show();
  EXPECT_TRUE(shows(*view, "Ventolith"));
  EXPECT_TRUE(shows(*view, "Version 1.0.3 (6)"));
}

TEST_F(AboutTest, ABundleWithoutANameIsStillVentolith) {
  const app::MapBundleInfo nameless{{}};
  show(nameless);
  EXPECT_TRUE(shows(*view, "Ventolith"));
  EXPECT_TRUE(shows(*view, "Version unavailable"));
}

TEST_F(AboutTest, SupportOpensItsPage) {
  supportURL = "https://example.com/support";
  show();
  click(buttonIn(*view, "Support"));
  EXPECT_EQ(opened, std::vector<std::string>{"https://example.com/support"});
}

TEST_F(AboutTest, WithoutAPageSupportIsDisabled) {
  show();
  EXPECT_FALSE(buttonIn(*view, "Support").isEnabled());
}

TEST_F(AboutTest, ChecksForUpdatesAndShowsHowThatEnds) {
  show();
  click(buttonIn(*view, "Check for Updates"));
  turn();
  EXPECT_EQ(updateService->checks, 1);
  updateService->delegate->didFindValidUpdate("2.0");
  turn();
  EXPECT_TRUE(hasButton(*view, "Update available"));
  pass(4.1);
  turn();
  EXPECT_TRUE(hasButton(*view, "Check for Updates"));
}

TEST_F(AboutTest, AMissingFileOfNoticesIsSaidInASentence) {
  show();
  EXPECT_TRUE(shows(*view, "Third-Party Notices"));
  EXPECT_TRUE(shows(*view, "Third-party notices are unavailable in this build."));
  EXPECT_EQ(view->findChild<NoticesText*>(), nullptr);
}

TEST_F(AboutTest, NoticesStandThereWithoutTheirMarkupBeingRead) {
  writeNotices("# Notices\n\n*Größe* <b>bold</b>\n");
  show();
  EXPECT_EQ(notices().toPlainText().toStdString(), "# Notices\n\n*Größe* <b>bold</b>\n");
  EXPECT_FALSE(shows(*view, "Third-party notices are unavailable in this build."));
  EXPECT_EQ(notices().accessibleName().toStdString(), "Third-Party Notices");
}

TEST_F(AboutTest, NoticesCanBeSelectedAndNotChanged) {
  writeNotices("One line of notices");
  show();
  notices().setFocus();
  QTest::keySequence(&notices(), QKeySequence::SelectAll);
  QTest::keyClicks(&notices(), QStringLiteral("x"));
  EXPECT_EQ(notices().textCursor().selectedText().toStdString(), "One line of notices");
}

TEST_F(AboutTest, NoticesFillTheWidthOfTheirCardAndAreAsHighAsTheirLines) {
  writeNotices("one\ntwo\nthree");
  show();
  EXPECT_EQ(notices().width(), 700 - 2 * 20 - 2 * 16);
  EXPECT_EQ(notices().height(), 3 * 16);
}

TEST_F(AboutTest, AThousandLinesOfNoticesHaveTheirHeightAtOnce) {
  std::string text = "first";
  for (int line = 1; line < 1000; ++line)
    text += "\nLine " + std::to_string(line);
  writeNotices(text);
  show();
  EXPECT_EQ(notices().height(), 1000 * 16);
  view->resize(900, 500);
  turn();
  EXPECT_EQ(notices().height(), 1000 * 16);
}

TEST_F(AboutTest, LongLinesOfNoticesAreBrokenAnewAtEachWidth) {
  writeNotices(std::string(60, 'a') + " " + std::string(60, 'b') + " " + std::string(60, 'c'));
  show();
  view->resize(560, 500);
  turn();
  const int narrow = notices().height();
  view->resize(1600, 500);
  turn();
  EXPECT_GT(narrow, notices().height());
  EXPECT_EQ(notices().height(), 16);
}

TEST_F(AboutTest, NoticesLeaveTheWheelToTheScreen) {
  writeNotices(manyLines());
  show();
  const QPointF place(20, 20);
  QWheelEvent event(place, notices().mapToGlobal(place), QPoint(), QPoint(0, -120), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(notices().viewport(), &event);
  EXPECT_FALSE(event.isAccepted());
}

TEST_F(AboutTest, TheKeyboardScrollsTheScreenFromWithinTheNotices) {
  writeNotices(manyLines());
  show();
  view->activateWindow();
  notices().setFocus();
  const int before = bar().value();
  QTest::keyClick(&notices(), Qt::Key_PageDown);
  EXPECT_GT(bar().value(), before);
}

TEST_F(AboutTest, TheScreenFollowsTheEndOfASelectionByKeyboard) {
  writeNotices(manyLines());
  show();
  view->activateWindow();
  notices().setFocus();
  for (int line = 0; line < 100; ++line)
    QTest::keyClick(&notices(), Qt::Key_Down, Qt::ShiftModifier);
  const int end = notices().mapTo(view.get(), notices().cursorRect().center()).y();
  EXPECT_GT(bar().value(), 0);
  EXPECT_GT(end, 0);
  EXPECT_LT(end, view->height());
}

TEST_F(AboutTest, TheScreenFollowsTheEndOfASelectionByPointer) {
  writeNotices(manyLines());
  show();
  const QPoint below(40, 900);
  QTest::mousePress(notices().viewport(), Qt::LeftButton, {}, QPoint(40, 8));
  QMouseEvent move(QEvent::MouseMove, below, notices().viewport()->mapToGlobal(below), Qt::NoButton,
                   Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(notices().viewport(), &move);
  EXPECT_GT(bar().value(), 0);
  EXPECT_TRUE(notices().textCursor().hasSelection());
}

TEST_F(AboutTest, SelectingAllOfTheNoticesStaysWhereItIs) {
  writeNotices(manyLines());
  show();
  view->activateWindow();
  notices().setFocus();
  QTest::keySequence(&notices(), QKeySequence::SelectAll);
  EXPECT_EQ(bar().value(), 0);
}

TEST_F(AboutTest, NoticesThatTheKeyboardReachesHaveARing) {
  writeNotices("One line");
  show();
  view->activateWindow();
  notices().setFocus(Qt::TabFocusReason);
  EXPECT_EQ(view->findChildren<QFocusFrame*>().size(), 1);
  buttonIn(*view, "Check for Updates").setFocus(Qt::MouseFocusReason);
  EXPECT_EQ(seenIn<QFocusFrame>(*view).size(), 0U);
}

TEST_F(AboutTest, TabLeavesTheNotices) {
  supportURL = "https://example.com/support";
  writeNotices("One line");
  show();
  view->activateWindow();
  buttonIn(*view, "Check for Updates").setFocus();
  QTest::keyClick(view->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(view->focusWidget(), &buttonIn(*view, "Support"));
  QTest::keyClick(view->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(view->focusWidget(), &notices());
  QTest::keyClick(view->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(view->focusWidget(), &buttonIn(*view, "Check for Updates"));
}

TEST_F(AboutTest, CardsKeepTheirHeightInATallWindow) {
  writeNotices("one\ntwo\nthree");
  show();
  const auto heights = [this] {
    std::vector<int> all;
    for (const Card* card : view->findChildren<Card*>())
      all.push_back(card->height());
    return all;
  };
  const std::vector<int> before = heights();
  ASSERT_EQ(before.size(), 3U);
  EXPECT_EQ(before[0], 64 + 2 * 16);
  EXPECT_EQ(before[1], 28 + 2 * 12);
  view->resize(700, 1400);
  turn();
  EXPECT_EQ(heights(), before);
}

TEST_F(AboutTest, AReadingOfTheMachineRepaintsNothing) {
  show();
  const PaintCount update(*view->findChild<UpdateCheckButton*>());
  readings.next.fans[0].currentRPM = 4321;
  read(readings.next);
  EXPECT_EQ(update.count(), 0);
}

} // namespace
} // namespace ventolith::ui
