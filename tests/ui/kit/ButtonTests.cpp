#include "Controls.h"

#include "ui/kit/Button.h"
#include "ui/kit/CheckBox.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Switch.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

QColor fillOf(QWidget& control) {
  return control.grab().toImage().pixelColor(4, control.height() / 2);
}

TEST(Button, IsAsHighAsItsKindAndSizeSay) {
  Theme theme;
  const struct {
    ButtonKind kind;
    ButtonSize size;
    int height;
  } table[] = {{ButtonKind::bordered, ButtonSize::normal, 28},
               {ButtonKind::prominent, ButtonSize::normal, 28},
               {ButtonKind::bordered, ButtonSize::small, 24},
               {ButtonKind::borderless, ButtonSize::normal, 22}};
  for (const auto& [kind, size, height] : table) {
    Button button(theme, kind, size);
    button.setTitle(QStringLiteral("Reset"));
    EXPECT_EQ(button.sizeHint().height(), height);
  }
}

TEST(Button, TitleAndSymbolStandBetweenItsPaddings) {
  Theme theme;
  Button button(theme, ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("Reset"));
  const int title = static_cast<int>(std::ceil(TextLine(QStringLiteral("Reset"), TextRole::button).width()));
  EXPECT_EQ(button.sizeHint().width(), 12 + title + 12);
  button.setSymbol(Symbol::reset);
  EXPECT_EQ(button.sizeHint().width(), 12 + 15 + 6 + title + 12);
}

TEST(Button, ASymbolAloneHasTwentyFourASide) {
  Theme theme;
  Button button(theme, ButtonKind::borderless, ButtonSize::normal);
  button.setSymbol(Symbol::trash);
  EXPECT_EQ(button.sizeHint(), QSize(24, 24));
}

TEST(Button, ATitleTooLongForItsMaximumIsShortened) {
  Theme theme;
  Button button(theme, ButtonKind::bordered, ButtonSize::normal);
  button.setMaximumWidth(90);
  button.setTitle(QStringLiteral("A preset with a very long name"));
  EXPECT_EQ(button.sizeHint().width(), 90);
  button.resize(button.sizeHint());
  const QColor edge = button.grab().toImage().pixelColor(84, 14);
  EXPECT_EQ(edge, theme.palette().buttonBackground);
}

TEST(Button, AnAmpersandIsPartOfTheTitle) {
  Theme theme;
  Button button(theme, ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("R&D"));
  EXPECT_EQ(spoken(button).text(QAccessible::Name), QStringLiteral("R&D"));
  EXPECT_TRUE(button.shortcut().isEmpty());
}

TEST(Button, IsClickedByPointerAndKeyboard) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("Reset"));
  stage.show();
  QSignalSpy clicks(&button, &QAbstractButton::clicked);
  QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(1, 1));
  EXPECT_EQ(clicks.size(), 1);
  QTest::keyClick(&button, Qt::Key_Space);
  EXPECT_EQ(clicks.size(), 2);
  button.setEnabled(false);
  QTest::mouseClick(&button, Qt::LeftButton);
  QTest::keyClick(&button, Qt::Key_Space);
  EXPECT_EQ(clicks.size(), 2);
}

TEST(Button, HoveredAndPressedItsFillTakesSomeOfTheText) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("Reset"));
  stage.show();
  const Palette& palette = stage.theme.palette();
  EXPECT_EQ(fillOf(button), palette.buttonBackground);
  enter(button);
  EXPECT_EQ(fillOf(button), inPicture(mixed(palette.buttonBackground, palette.primaryText, 0.04)));
  QTest::mousePress(&button, Qt::LeftButton);
  EXPECT_EQ(fillOf(button), inPicture(mixed(palette.buttonBackground, palette.primaryText, 0.10)));
  QTest::mouseRelease(&button, Qt::LeftButton);
  leave(button);
  EXPECT_EQ(fillOf(button), palette.buttonBackground);
}

TEST(Button, DisabledItIsFadedAsAWhole) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::prominent, ButtonSize::normal);
  button.setTitle(QStringLiteral("Save"));
  stage.show();
  button.setEnabled(false);
  const QColor ground = stage.window.palette().color(QPalette::Window);
  const QColor expected = mixed(ground, stage.theme.palette().accentFill, 0.42);
  const QColor fill = stage.window.grab().toImage().pixelColor(button.pos() + QPoint(4, 14));
  EXPECT_NEAR(fill.red(), expected.red(), 2);
  EXPECT_NEAR(fill.green(), expected.green(), 2);
  EXPECT_NEAR(fill.blue(), expected.blue(), 2);
}

TEST(Button, IsHeldNoMoreOnceItIsDisabled) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("Reset"));
  stage.show();
  QTest::mousePress(&button, Qt::LeftButton);
  button.setEnabled(false);
  button.setEnabled(true);
  leave(button);
  EXPECT_EQ(fillOf(button), stage.theme.palette().buttonBackground);
}

TEST(Button, SpeaksItsTitleUnlessItHasAnotherName) {
  Theme theme;
  Button button(theme, ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("Auto"));
  QAccessibleInterface& its = spoken(button);
  EXPECT_EQ(its.role(), QAccessible::Button);
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Auto"));
  button.setAccessibleName(QStringLiteral("Restore automatic control for Fan 0"));
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Restore automatic control for Fan 0"));
  EXPECT_TRUE(its.actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
}

TEST(Button, RepaintsWithTheTheme) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("Reset"));
  stage.show();
  stage.theme.force({.appearance = Appearance::dark, .reduceMotion = true});
  EXPECT_EQ(fillOf(button), Palette::of(Appearance::dark).buttonBackground);
}

TEST(CheckBox, IsToggledByItsTitleToo) {
  Stage stage;
  auto& box = stage.put<CheckBox>();
  box.setTitle(QStringLiteral("Link fans"));
  stage.show();
  QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(box.width() - 3, 9));
  EXPECT_TRUE(box.isChecked());
  QTest::keyClick(&box, Qt::Key_Space);
  EXPECT_FALSE(box.isChecked());
}

TEST(CheckBox, SpeaksItsTitleAndItsState) {
  Theme theme;
  CheckBox box(theme);
  box.setTitle(QStringLiteral("Link fans"));
  QAccessibleInterface& its = spoken(box);
  EXPECT_EQ(its.role(), QAccessible::CheckBox);
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Link fans"));
  EXPECT_FALSE(its.state().checked);
  box.setChecked(true);
  EXPECT_TRUE(its.state().checked);
}

TEST(CheckBox, CheckedItIsFilledWithTheAccent) {
  Theme theme;
  CheckBox box(theme);
  box.resize(box.sizeHint());
  EXPECT_EQ(box.sizeHint(), QSize(16, 18));
  EXPECT_EQ(box.grab().toImage().pixelColor(3, 9), theme.palette().buttonBackground);
  box.setChecked(true);
  EXPECT_EQ(box.grab().toImage().pixelColor(3, 4), theme.palette().accentFill);
}

TEST(Switch, SlidesWithinAHundredAndFiftyMilliseconds) {
  Stage stage;
  stage.theme.force({.reduceMotion = false});
  auto& toggle = stage.put<Switch>();
  stage.show();
  QTest::mouseClick(&toggle, Qt::LeftButton);
  EXPECT_TRUE(toggle.isChecked());
  EXPECT_DOUBLE_EQ(toggle.progress(), 0);
  toggle.transition().setCurrentTime(75);
  EXPECT_GT(toggle.progress(), 0.5);
  EXPECT_LT(toggle.progress(), 1);
  toggle.transition().setCurrentTime(150);
  EXPECT_DOUBLE_EQ(toggle.progress(), 1);
  EXPECT_EQ(toggle.transition().state(), QAbstractAnimation::Stopped);
}

TEST(Switch, WithoutMotionItIsThereAtOnce) {
  Stage stage;
  auto& toggle = stage.put<Switch>();
  stage.show();
  EXPECT_EQ(toggle.sizeHint(), QSize(32, 18));
  EXPECT_EQ(toggle.grab().toImage().pixelColor(26, 9), stage.theme.palette().switchOff);
  toggle.setChecked(true);
  EXPECT_DOUBLE_EQ(toggle.progress(), 1);
  EXPECT_EQ(toggle.grab().toImage().pixelColor(6, 9), stage.theme.palette().accentFill);
}

TEST(Switch, SpeaksItsGivenNameAndState) {
  Theme theme;
  Switch toggle(theme);
  toggle.setAccessibleName(QStringLiteral("Rule enabled"));
  QAccessibleInterface& its = spoken(toggle);
  EXPECT_EQ(its.role(), QAccessible::CheckBox);
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Rule enabled"));
  EXPECT_TRUE(its.state().checkable);
}

} // namespace
} // namespace ventolith::ui
