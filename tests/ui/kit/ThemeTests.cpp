#include "ui/kit/FollowsQt.h"
#include "ui/kit/Surface.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Type.h"

#include <QApplication>
#include <QPalette>
#include <QToolTip>
#include <QWidget>

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

// Counts what a theme tells.
class Told {
public:
  explicit Told(Theme& theme) {
    QObject::connect(&theme, &Theme::changed, &theme, [this] { ++times; });
  }
  int times = 0;
};

struct RepaintedWidget final : QWidget {
  explicit RepaintedWidget(const Theme& theme) { theme.repaints(this); }
  void paintEvent(QPaintEvent*) override { ++paints; }
  int paints = 0;
};

QPalette paletteOf(QColor window, QColor text) {
  QPalette palette;
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::WindowText, text);
  return palette;
}

TEST(Theme, IsLightWithTheHousesAccentUntilItIsTold) {
  const Theme theme;
  EXPECT_EQ(theme.appearance(), Appearance::light);
  EXPECT_EQ(theme.color(&Palette::accent), Palette::of(Appearance::light).accent);
  EXPECT_FALSE(theme.reduceMotion());
}

TEST(Theme, WhatTheDesktopSaysHoldsOverTheToolkit) {
  Theme theme;
  theme.setToolkitLook({.appearance = Appearance::light, .accent = QColor(Qt::red)});
  theme.setDesktopLook({.appearance = Appearance::dark});
  EXPECT_EQ(theme.appearance(), Appearance::dark);
  EXPECT_EQ(theme.color(&Palette::accent), Palette::of(Appearance::dark, QColor(Qt::red)).accent);
}

TEST(Theme, WhatIsForcedHoldsOverAllUntilItIsTakenBack) {
  Theme theme;
  theme.setDesktopLook({.appearance = Appearance::dark, .reduceMotion = false});
  theme.force({.appearance = Appearance::light, .reduceMotion = true});
  EXPECT_EQ(theme.appearance(), Appearance::light);
  EXPECT_TRUE(theme.reduceMotion());
  theme.force({});
  EXPECT_EQ(theme.appearance(), Appearance::dark);
  EXPECT_FALSE(theme.reduceMotion());
}

TEST(Theme, TellsEachChangeOnceAndNothingThatIsNone) {
  Theme theme;
  const Told told(theme);
  theme.setToolkitLook({.appearance = Appearance::light});
  EXPECT_EQ(told.times, 0);
  theme.setToolkitLook({.appearance = Appearance::dark});
  EXPECT_EQ(told.times, 1);
  theme.setDesktopLook({.appearance = Appearance::dark});
  EXPECT_EQ(told.times, 1);
  theme.setDesktopLook({.appearance = Appearance::dark, .accent = QColor(Qt::green)});
  EXPECT_EQ(told.times, 2);
  theme.setDesktopLook({.appearance = Appearance::dark, .accent = QColor(Qt::green), .reduceMotion = true});
  EXPECT_EQ(told.times, 3);
}

TEST(Theme, NothingMovesWhenMotionIsReduced) {
  Theme theme;
  EXPECT_EQ(theme.motion(300), 300);
  theme.force({.reduceMotion = true});
  EXPECT_EQ(theme.motion(300), 0);
}

TEST(Theme, WidgetsRepaintWhenItChanges) {
  Theme theme;
  RepaintedWidget widget(theme);
  widget.resize(20, 20);
  widget.show();
  QApplication::processEvents();
  const int before = widget.paints;
  theme.force({.appearance = Appearance::dark});
  QApplication::processEvents();
  EXPECT_EQ(widget.paints, before + 1);
}

TEST(Theme, ACardTakesTheNewColoursAtOnce) {
  Theme theme;
  Surface card(theme, surfaces::card);
  card.resize(60, 60);
  EXPECT_EQ(card.grab().toImage().pixelColor(30, 30), Palette::of(Appearance::light).cardBackground);
  theme.force({.appearance = Appearance::dark});
  EXPECT_EQ(card.grab().toImage().pixelColor(30, 30), Palette::of(Appearance::dark).cardBackground);
}

TEST(Theme, ToolTipsHaveItsColours) {
  Theme theme;
  for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
    theme.force({.appearance = appearance});
    EXPECT_EQ(QToolTip::palette().color(QPalette::ToolTipBase), theme.palette().menuBackground);
    EXPECT_EQ(QToolTip::palette().color(QPalette::ToolTipText), theme.palette().secondaryText);
  }
  EXPECT_EQ(QToolTip::font().pixelSize(), styleOf(TextRole::secondary).pixels);
}

TEST(Theme, AScreenWithoutAnXServerShowsThroughUnlessItIsToldOtherwise) {
  Theme theme;
  EXPECT_TRUE(theme.seeThrough());
  theme.force({.seeThrough = false});
  EXPECT_FALSE(theme.seeThrough());
}

TEST(FollowsQt, APaletteOfDarkWindowsIsDark) {
  EXPECT_EQ(FollowsQt::lookOf(paletteOf(Qt::white, Qt::black)).appearance, Appearance::light);
  EXPECT_EQ(FollowsQt::lookOf(paletteOf(QColor(30, 30, 30), Qt::white)).appearance, Appearance::dark);
}

TEST(FollowsQt, TheThemeFollowsTheApplicationsPaletteLive) {
  const QPalette before = QApplication::palette();
  Theme theme;
  const FollowsQt follows(theme);
  QApplication::setPalette(paletteOf(QColor(30, 30, 30), Qt::white));
  QApplication::processEvents();
  EXPECT_EQ(theme.appearance(), Appearance::dark);
  QApplication::setPalette(paletteOf(Qt::white, Qt::black));
  QApplication::processEvents();
  EXPECT_EQ(theme.appearance(), Appearance::light);
  QApplication::setPalette(before);
}

} // namespace
} // namespace ventolith::ui
