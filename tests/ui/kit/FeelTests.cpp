#include "Controls.h"

#include "ui/kit/Button.h"
#include "ui/kit/FocusRing.h"
#include "ui/kit/KeyboardPlace.h"
#include "ui/kit/Painting.h"
#include "ui/kit/SidebarList.h"
#include "ui/kit/Slider.h"
#include "ui/kit/Transition.h"

#include <QScrollArea>

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

FocusRing* ringIn(QWidget& window) {
  const auto rings = window.findChildren<QFocusFrame*>();
  return rings.isEmpty() ? nullptr : static_cast<FocusRing*>(rings.front());
}

TEST(TimerPulse, ComesOnceUnlessItIsCancelled) {
  TimerPulse pulse;
  int beats = 0;
  pulse.after(std::chrono::milliseconds(0), [&] { ++beats; });
  QCoreApplication::processEvents();
  EXPECT_EQ(beats, 1);
  pulse.after(std::chrono::milliseconds(0), [&] { ++beats; });
  pulse.cancel();
  QCoreApplication::processEvents();
  EXPECT_EQ(beats, 1);
}

TEST(TimerPulse, MayBeatAgainFromWithin) {
  TimerPulse pulse;
  int beats = 0;
  const std::function<void()> beat = [&] {
    if (++beats < 3) pulse.after(std::chrono::milliseconds(0), beat);
  };
  pulse.after(std::chrono::milliseconds(0), beat);
  for (int turn = 0; turn < 10; ++turn)
    QCoreApplication::processEvents();
  EXPECT_EQ(beats, 3);
}

TEST(Transition, GoesFromWhereItStands) {
  Theme theme;
  QWidget widget;
  widget.show();
  Transition it(theme, widget, 100);
  it.moveTo(1);
  it.setCurrentTime(50);
  const double half = it.value();
  EXPECT_GT(half, 0.3);
  it.moveTo(0);
  it.setCurrentTime(1);
  EXPECT_NEAR(it.value(), half, 0.05);
  it.setCurrentTime(100);
  EXPECT_DOUBLE_EQ(it.value(), 0);
  EXPECT_EQ(it.state(), QAbstractAnimation::Stopped);
}

TEST(Transition, IsThereAtOnceWhereNobodySeesIt) {
  Theme theme;
  QWidget widget;
  Transition it(theme, widget, 100);
  it.moveTo(1);
  EXPECT_DOUBLE_EQ(it.value(), 1);
  EXPECT_EQ(it.state(), QAbstractAnimation::Stopped);
}

TEST(FocusRing, IsShownForTheKeyboardAlone) {
  Stage stage;
  auto& one = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  auto& other = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  one.setTitle(QStringLiteral("One"));
  other.setTitle(QStringLiteral("Other"));
  stage.show();
  QTest::mouseClick(&one, Qt::LeftButton);
  EXPECT_TRUE(one.hasFocus());
  EXPECT_EQ(ringIn(stage.window), nullptr);
  QTest::keyClick(&stage.window, Qt::Key_Tab);
  EXPECT_TRUE(other.hasFocus());
  ASSERT_NE(ringIn(stage.window), nullptr);
  QTest::mouseClick(&one, Qt::LeftButton);
  EXPECT_EQ(ringIn(stage.window), nullptr);
  QTest::keyClick(&one, Qt::Key_Shift);
  EXPECT_NE(ringIn(stage.window), nullptr);
}

TEST(FocusRing, LiesAroundItsControlWhereverThatGoes) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("One"));
  stage.show();
  button.setFocus(Qt::TabFocusReason);
  ASSERT_NE(ringIn(stage.window), nullptr);
  const auto around = [&] {
    return QRect(button.mapTo(&stage.window, QPoint()), button.size()).adjusted(-4, -4, 4, 4);
  };
  EXPECT_EQ(ringIn(stage.window)->geometry(), around());
  button.move(70, 60);
  EXPECT_EQ(ringIn(stage.window)->geometry(), around());
  button.resize(200, 28);
  EXPECT_EQ(ringIn(stage.window)->geometry(), around());
}

TEST(FocusRing, IsPaintedOutsideTheControl) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("One"));
  stage.show();
  const QPoint outside(button.pos().x() - 2, button.pos().y() + 14);
  const QColor before = stage.window.grab().toImage().pixelColor(outside);
  button.setFocus(Qt::TabFocusReason);
  const QColor ring = composed(before, stage.theme.palette().focusRing);
  const QColor after = stage.window.grab().toImage().pixelColor(outside);
  EXPECT_NEAR(after.red(), ring.red(), 1);
  EXPECT_NEAR(after.blue(), ring.blue(), 1);
}

TEST(FocusRing, ScrollsWithItsControl) {
  Theme theme;
  QScrollArea area;
  auto* content = new QWidget;
  content->setFixedSize(200, 2000);
  auto* button = new Button(theme, ButtonKind::bordered, ButtonSize::normal, content);
  button->setTitle(QStringLiteral("One"));
  button->setGeometry(20, 500, 80, 28);
  area.setWidget(content);
  area.show();
  activate(area);
  button->setFocus(Qt::TabFocusReason);
  ASSERT_NE(ringIn(area), nullptr);
  EXPECT_EQ(ringIn(area)->parentWidget(), content);
  EXPECT_EQ(ringIn(area)->geometry(), QRect(16, 496, 88, 36));
}

TEST(FocusRing, FollowsTheKnobOfASlider) {
  Stage stage;
  auto& slider = stage.put<Slider>();
  slider.setFixedWidth(216);
  slider.setRange({0, 100, 0});
  stage.show();
  slider.setFocus(Qt::TabFocusReason);
  const int before = ringIn(stage.window)->x();
  slider.setValue(50);
  EXPECT_EQ(ringIn(stage.window)->x(), before + 100);
}

TEST(FocusRing, GoesWithWhatEndsFirst) {
  Stage stage;
  auto* inner = new QWidget(&stage.window);
  stage.window.layout()->addWidget(inner);
  auto* button = new Button(stage.theme, ButtonKind::bordered, ButtonSize::normal, inner);
  button->setTitle(QStringLiteral("One"));
  stage.show();
  button->setFocus(Qt::TabFocusReason);
  ASSERT_NE(ringIn(stage.window), nullptr);
  delete inner;
  EXPECT_EQ(ringIn(stage.window), nullptr);
}

TEST(FocusRing, EndsWhenItsControlIsDisabledOrHidden) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("One"));
  stage.show();
  button.setFocus(Qt::TabFocusReason);
  button.hide();
  EXPECT_EQ(ringIn(stage.window), nullptr);
  button.show();
  button.setFocus(Qt::TabFocusReason);
  ASSERT_NE(ringIn(stage.window), nullptr);
  button.setEnabled(false);
  EXPECT_EQ(ringIn(stage.window), nullptr);
}

TEST(FocusRing, EndsWhenAllAroundItIsHidden) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  stage.show();
  button.setFocus(Qt::TabFocusReason);
  const QPointer<FocusRing> ring = ringIn(stage.window);
  ASSERT_NE(ring, nullptr);
  stage.window.hide();
  EXPECT_EQ(ringIn(stage.window), nullptr);
  EXPECT_NE(ring, nullptr); // Qt goes through the window's children while it ends.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(ring, nullptr);
}

TEST(FocusRing, IsUnknownToAssistiveTechnology) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("One"));
  stage.show();
  button.setFocus(Qt::TabFocusReason);
  EXPECT_EQ(spoken(stage.window).childCount(), 1);
}

TEST(KeyboardPlace, ADisabledControlPassesTheKeyboardToNobodyAndTakesItBack) {
  Stage stage;
  auto& slider = stage.put<Slider>();
  stage.put<Button>(ButtonKind::bordered, ButtonSize::normal).setTitle(QStringLiteral("Next"));
  stage.show();
  KeyboardPlace place(slider);
  slider.setFocus(Qt::TabFocusReason);
  place.setEnabled(false);
  EXPECT_EQ(stage.window.focusWidget(), nullptr);
  EXPECT_EQ(ringIn(stage.window), nullptr);
  place.setEnabled(true);
  EXPECT_TRUE(slider.hasFocus());
}

TEST(KeyboardPlace, AnotherControlThatWasChosenMeanwhileKeepsTheKeyboard) {
  Stage stage;
  auto& slider = stage.put<Slider>();
  auto& next = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  stage.show();
  KeyboardPlace place(slider);
  slider.setFocus();
  place.setEnabled(false);
  next.setFocus();
  place.setEnabled(true);
  EXPECT_TRUE(next.hasFocus());
}

TEST(KeyboardPlace, AControlWithoutTheKeyboardTakesNone) {
  Stage stage;
  auto& slider = stage.put<Slider>();
  auto& other = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  stage.show();
  KeyboardPlace place(slider);
  other.setFocus();
  place.setEnabled(false);
  EXPECT_TRUE(other.hasFocus());
  other.clearFocus();
  place.setEnabled(true);
  EXPECT_EQ(stage.window.focusWidget(), nullptr);
}

TEST(Hover, ComesWithoutAJumpWhereThingsMayMove) {
  Stage stage;
  auto& button = stage.put<Button>(ButtonKind::bordered, ButtonSize::normal);
  button.setTitle(QStringLiteral("One"));
  stage.show();
  const auto fill = [&] { return button.grab().toImage().pixelColor(4, 14); };
  const QColor rest = fill();
  stage.theme.force({.reduceMotion = false});
  enter(button);
  EXPECT_EQ(fill(), rest);
  leave(button);
  stage.theme.force({.reduceMotion = true});
  enter(button);
  EXPECT_NE(fill(), rest);
}

TEST(PaintFaded, LaysLayersDownAsOne) {
  QImage image(10, 10, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  QPainter painter(&image);
  paintFaded(painter, QRect(0, 0, 10, 10), 0.5, [](QPainter& on) {
    on.fillRect(0, 0, 10, 10, Qt::red);
    on.fillRect(0, 0, 5, 10, Qt::black);
  });
  painter.end();
  EXPECT_NEAR(image.pixelColor(2, 5).red(), 127, 2);
  EXPECT_NEAR(image.pixelColor(2, 5).green(), 127, 2);
  EXPECT_NEAR(image.pixelColor(7, 5).red(), 255, 2);
}

class SidebarTest : public ::testing::Test {
protected:
  SidebarTest() {
    list = &stage.put<SidebarList>();
    list->setFixedSize(200, 400);
    QObject::connect(list, &QListWidget::currentRowChanged, [this](int row) { chosen.push_back(row); });
    list->setRows({{Symbol::gauge, QStringLiteral("Dashboard")},
                   {Symbol::chart, QStringLiteral("Fan Curves")},
                   {Symbol::grid, QStringLiteral("Rules")}});
    stage.show();
  }

  std::vector<int> chosen;
  Stage stage;
  SidebarList* list;
};

TEST_F(SidebarTest, ItsRowsStandWhereTheDesignPutsThem) {
  EXPECT_EQ(list->rowRect(0), QRectF(10, 56, 180, 30));
  EXPECT_EQ(list->rowRect(1), QRectF(10, 88, 180, 30));
  EXPECT_EQ(list->sizeHint().width(), 200);
}

TEST_F(SidebarTest, TheFirstRowIsChosenWithoutAWord) {
  EXPECT_EQ(list->currentRow(), 0);
  EXPECT_TRUE(chosen.empty());
}

TEST_F(SidebarTest, PointerAndArrowKeysChoose) {
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(50, 70));
  QTest::keyClick(list, Qt::Key_Up);
  EXPECT_EQ(chosen, (std::vector<int>{2, 1}));
}

TEST_F(SidebarTest, TheChosenRowIsTinted) {
  const QImage picture = list->grab().toImage();
  const QColor surface = stage.theme.palette().sidebarBackground;
  EXPECT_EQ(picture.pixelColor(180, 103), surface);
  const QColor chosenFill = composed(surface, stage.theme.palette().sidebarSelection);
  EXPECT_NEAR(picture.pixelColor(180, 71).blue(), chosenFill.blue(), 1);
  EXPECT_NEAR(picture.pixelColor(180, 71).red(), chosenFill.red(), 1);
}

TEST_F(SidebarTest, TakesItsSurfaceFromTheTheme) {
  stage.theme.force({.appearance = Appearance::dark, .reduceMotion = true});
  EXPECT_EQ(list->grab().toImage().pixelColor(3, 3), stage.theme.palette().sidebarBackground);
}

TEST_F(SidebarTest, SpeaksAsAListOfItsTitles) {
  list->setAccessibleName(QStringLiteral("Screens"));
  QAccessibleInterface& its = spoken(*list);
  EXPECT_EQ(its.role(), QAccessible::List);
  ASSERT_EQ(its.childCount(), 3);
  EXPECT_EQ(its.child(1)->text(QAccessible::Name), QStringLiteral("Fan Curves"));
  EXPECT_EQ(its.child(1)->role(), QAccessible::ListItem);
  EXPECT_TRUE(its.child(0)->state().selected);
}

} // namespace
} // namespace ventolith::ui
