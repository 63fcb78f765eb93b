#include "Controls.h"

#include "ui/kit/Anchoring.h"
#include "ui/kit/Button.h"
#include "ui/kit/Popover.h"
#include "ui/kit/TextField.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

TEST(Anchoring, OpensBelowUnlessThereIsRoomAboveAlone) {
  const QRect screen(0, 0, 1000, 800);
  const struct {
    const char* what;
    QRect anchor;
    Alongside alongside;
    Qt::LayoutDirection direction;
    QPoint place;
  } table[] = {
      {"below", {100, 50, 120, 28}, Alongside::leading, Qt::LeftToRight, {90, 73}},
      {"right to left", {300, 50, 120, 28}, Alongside::leading, Qt::RightToLeft, {210, 73}},
      {"centred", {300, 50, 120, 28}, Alongside::centre, Qt::LeftToRight, {250, 73}},
      {"above", {100, 700, 120, 28}, Alongside::leading, Qt::LeftToRight, {90, 485}},
      {"at the right edge", {950, 50, 40, 28}, Alongside::leading, Qt::LeftToRight, {790, 73}},
      {"at the left edge", {0, 50, 40, 28}, Alongside::centre, Qt::LeftToRight, {-10, 73}},
  };
  for (const auto& [what, anchor, alongside, direction, place] : table)
    EXPECT_EQ(placeBeside(anchor, screen, QSize(220, 220), 10, alongside, direction), place) << what;
}

TEST(Anchoring, WithRoomNeitherAboveNorBelowItOpensBelow) {
  EXPECT_EQ(
      placeBeside({0, 100, 50, 28}, {0, 0, 400, 300}, {100, 280}, 10, Alongside::leading, Qt::LeftToRight),
      QPoint(-10, 123));
}

class PopoverTest : public ::testing::Test {
protected:
  PopoverTest() {
    anchor = &stage.put<Button>(ButtonKind::prominent, ButtonSize::normal);
    anchor->setTitle(QStringLiteral("Save as Preset…"));
    popover = std::make_unique<Popover>(stage.theme, &stage.window);
    field = new TextField(stage.theme);
    field->setFixedWidth(220);
    popover->setContent(field);
    popover->setInitialFocus(field);
    QObject::connect(popover.get(), &Popover::closed, [this] { ++closed; });
    stage.show();
    anchor->setFocus();
  }

  int closed = 0;
  Stage stage;
  Button* anchor;
  std::unique_ptr<Popover> popover;
  TextField* field;
};

TEST_F(PopoverTest, OpensBelowItsAnchorAroundItsContent) {
  popover->openFrom(*anchor);
  ASSERT_TRUE(popover->isVisible());
  EXPECT_EQ(popover->panel().size(), QSize(220 + 32, 28 + 32));
  const QPoint panel = popover->mapToGlobal(popover->panel().topLeft());
  EXPECT_EQ(panel.y(), anchor->mapToGlobal(QPoint(0, anchor->height())).y() + 5);
}

TEST_F(PopoverTest, ItsFieldHasTheFocus) {
  popover->openFrom(*anchor);
  EXPECT_TRUE(field->hasFocus());
  QTest::keyClicks(field, QStringLiteral("Night"));
  EXPECT_EQ(field->text(), QStringLiteral("Night"));
}

TEST_F(PopoverTest, EscapeInItsFieldClosesIt) {
  popover->openFrom(*anchor);
  QTest::keyClick(field, Qt::Key_Escape);
  EXPECT_FALSE(popover->isVisible());
  EXPECT_EQ(closed, 1);
  EXPECT_TRUE(anchor->hasFocus());
}

TEST_F(PopoverTest, APressInsideKeepsItOpen) {
  popover->openFrom(*anchor);
  QTest::mousePress(popover.get(), Qt::LeftButton, {}, popover->panel().topLeft() + QPoint(3, 3));
  EXPECT_TRUE(popover->isVisible());
}

TEST_F(PopoverTest, APressOutsideItsPanelClosesIt) {
  popover->openFrom(*anchor);
  QTest::mousePress(popover.get(), Qt::LeftButton, {}, QPoint(2, 2));
  EXPECT_FALSE(popover->isVisible());
  EXPECT_FALSE(popover->testAttribute(Qt::WA_NoMouseReplay));
}

TEST_F(PopoverTest, APressOnItsAnchorIsNotToOpenItAgain) {
  popover->openFrom(*anchor);
  const QPoint onAnchor = popover->mapFromGlobal(anchor->mapToGlobal(QPoint(4, 4)));
  QTest::mousePress(popover.get(), Qt::LeftButton, {}, onAnchor);
  EXPECT_FALSE(popover->isVisible());
  EXPECT_TRUE(popover->testAttribute(Qt::WA_NoMouseReplay));
}

TEST_F(PopoverTest, OpensBesideAPlaceOnTheScreen) {
  popover->openFrom(QRect(300, 10, 20, 20));
  const QRect panel = popover->panel().translated(popover->mapToGlobal(QPoint()));
  EXPECT_EQ(panel.topLeft(), QPoint(300 + 10 - 126, 35));
}

TEST_F(PopoverTest, FadesInWithinAHundredAndTwentyMilliseconds) {
  stage.theme.force({.reduceMotion = false});
  popover->openFrom(*anchor);
  EXPECT_EQ(popover->appearing().state(), QAbstractAnimation::Running);
  EXPECT_EQ(popover->appearing().duration(), 120);
  popover->appearing().setCurrentTime(120);
  EXPECT_DOUBLE_EQ(popover->appearing().value(), 1);
}

TEST_F(PopoverTest, WhereNothingShowsThroughItIsCutToItsPanel) {
  stage.theme.force({.reduceMotion = true, .seeThrough = false});
  popover->openFrom(*anchor);
  EXPECT_EQ(popover->panel(), popover->rect());
  EXPECT_EQ(popover->size(), QSize(220 + 32, 28 + 32));
  EXPECT_EQ(popover->mapToGlobal(QPoint()).y(), anchor->mapToGlobal(QPoint(0, anchor->height())).y() + 5);
  EXPECT_FALSE(popover->mask().contains(QPoint(0, 0)));
  EXPECT_TRUE(popover->mask().contains(QPoint(20, 0)));
  EXPECT_EQ(popover->grab().toImage().pixelColor(3, 3).alpha(), 255);
}

TEST_F(PopoverTest, TheNextTimeThatItOpensItMayCastAShadowAgain) {
  stage.theme.force({.reduceMotion = true, .seeThrough = false});
  popover->openFrom(*anchor);
  popover->close();
  stage.theme.force({.reduceMotion = true, .seeThrough = true});
  popover->openFrom(*anchor);
  EXPECT_NE(popover->panel(), popover->rect());
  EXPECT_TRUE(popover->mask().isEmpty());
}

TEST_F(PopoverTest, SpeaksAsADialogOfItsName) {
  popover->setAccessibleName(QStringLiteral("Save as Preset"));
  EXPECT_EQ(spoken(*popover).role(), QAccessible::Dialog);
  EXPECT_EQ(spoken(*popover).text(QAccessible::Name), QStringLiteral("Save as Preset"));
}

TEST(TextField, IsTwentyEightHighAndSubmitsWithReturn) {
  Stage stage;
  auto& field = stage.put<TextField>();
  stage.show();
  EXPECT_EQ(field.sizeHint().height(), 28);
  QSignalSpy submitted(&field, &QLineEdit::returnPressed);
  QTest::keyClick(&field, Qt::Key_Return);
  EXPECT_EQ(submitted.size(), 1);
}

TEST(TextField, TakesItsColoursFromTheTheme) {
  Stage stage;
  auto& field = stage.put<TextField>();
  stage.show();
  EXPECT_EQ(field.grab().toImage().pixelColor(4, 14), stage.theme.palette().buttonBackground);
  stage.theme.force({.appearance = Appearance::dark, .reduceMotion = true});
  EXPECT_EQ(field.palette().color(QPalette::Text), stage.theme.palette().primaryText);
  EXPECT_EQ(field.grab().toImage().pixelColor(4, 14), stage.theme.palette().buttonBackground);
}

TEST(TextField, SpeaksItsNameAndText) {
  Theme theme;
  TextField field(theme);
  field.setAccessibleName(QStringLiteral("Name"));
  field.setText(QStringLiteral("Custom"));
  EXPECT_EQ(spoken(field).role(), QAccessible::EditableText);
  EXPECT_EQ(spoken(field).text(QAccessible::Name), QStringLiteral("Name"));
  EXPECT_EQ(spoken(field).text(QAccessible::Value), QStringLiteral("Custom"));
}

TEST(TextField, DisabledItTakesNoInput) {
  Stage stage;
  auto& field = stage.put<TextField>();
  stage.show();
  field.setEnabled(false);
  QTest::keyClicks(&field, QStringLiteral("x"));
  EXPECT_TRUE(field.text().isEmpty());
}

} // namespace
} // namespace ventolith::ui
