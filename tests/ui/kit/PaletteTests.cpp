#include "ui/kit/Palette.h"

#include <gtest/gtest.h>

#include <vector>

namespace ventolith::ui {
namespace {

constexpr double readable = 4.5; // WCAG AA for text.

struct TextOnGrounds {
  const char* name;
  ColorRole text;
  std::vector<ColorRole> grounds;
  std::vector<std::pair<ColorRole, ColorRole>> tinted; // A surface, and what lies over it.
};

const std::vector<TextOnGrounds>& textsAndTheirGrounds() {
  using P = Palette;
  static const std::vector<TextOnGrounds> table{
      {"primaryText",
       &P::primaryText,
       {&P::windowBackground, &P::toolbarBackground, &P::sidebarBackground, &P::cardBackground,
        &P::tileBackground, &P::controlBackground, &P::buttonBackground, &P::panelBackground,
        &P::menuBackground, &P::thumbBackground, &P::warningFill, &P::neutralFill},
       {{&P::cardBackground, &P::sensorRowFill}, {&P::sidebarBackground, &P::sidebarSelection}}},
      {"secondaryText",
       &P::secondaryText,
       {&P::windowBackground, &P::sidebarBackground, &P::cardBackground, &P::tileBackground,
        &P::buttonBackground, &P::panelBackground, &P::menuBackground, &P::thumbBackground, &P::warningFill,
        &P::neutralFill},
       {{&P::tileBackground, &P::accentFaint}, {&P::panelBackground, &P::accentFaint}}},
      {"tertiaryText",
       &P::tertiaryText,
       {&P::windowBackground, &P::cardBackground, &P::tileBackground},
       {{&P::cardBackground, &P::sensorRowFill}}},
      {"accent",
       &P::accent,
       {&P::windowBackground, &P::cardBackground, &P::tileBackground, &P::panelBackground,
        &P::menuBackground},
       {{&P::sidebarBackground, &P::sidebarSelection},
        {&P::cardBackground, &P::accentFaint},
        {&P::cardBackground, &P::accentActive},
        {&P::tileBackground, &P::accentSoft},
        {&P::panelBackground, &P::accentSoft}}},
      {"onAccent", &P::onAccent, {&P::accentFill}, {}},
      {"successText", &P::successText, {&P::cardBackground, &P::windowBackground}, {}},
      {"warning", &P::warning, {&P::warningFill, &P::cardBackground}, {}},
      {"danger", &P::danger, {&P::dangerFill, &P::cardBackground, &P::buttonBackground}, {}},
  };
  return table;
}

void expectReadable(const Palette& palette) {
  for (const auto& entry : textsAndTheirGrounds()) {
    const QColor text = palette.*entry.text;
    for (std::size_t index = 0; index < entry.grounds.size(); ++index)
      EXPECT_GE(contrast(text, palette.*entry.grounds[index]), readable)
          << entry.name << " on ground " << index;
    for (std::size_t index = 0; index < entry.tinted.size(); ++index) {
      const auto& [surface, over] = entry.tinted[index];
      EXPECT_GE(contrast(text, composed(palette.*surface, palette.*over)), readable)
          << entry.name << " on tint " << index;
    }
  }
}

TEST(Palette, EveryTextCanBeReadInLight) {
  expectReadable(Palette::of(Appearance::light));
}

TEST(Palette, EveryTextCanBeReadInDark) {
  expectReadable(Palette::of(Appearance::dark));
}

TEST(Palette, EveryTextCanBeReadWithAnyAccentOfTheSystem) {
  for (const QRgb accent :
       {0xFFCC00U, 0xFF3B30U, 0xBF5AF2U, 0x8C8C8CU, 0xFFFFFFU, 0x000000U, 0x34C759U, 0x0000FFU})
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
      SCOPED_TRACE(QColor::fromRgb(accent).name().toStdString());
      expectReadable(Palette::of(appearance, QColor::fromRgb(accent)));
    }
}

TEST(Palette, GraphicsInAnyAccentStandOutFromWhereTheyLie) {
  for (const QRgb accent : {0xFFCC00U, 0xFF3B30U, 0x8C8C8CU, 0xFFFFFFU, 0x000000U})
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
      const Palette palette = Palette::of(appearance, QColor::fromRgb(accent));
      for (const ColorRole ground :
           {&Palette::tileBackground, &Palette::cardBackground, &Palette::panelBackground})
        EXPECT_GE(contrast(palette.accentGraphic, palette.*ground), 3.0)
            << QColor::fromRgb(accent).name().toStdString();
    }
}

TEST(Palette, AnAccentKeepsItsHueWhereItIsShaded) {
  const QColor given = QColor::fromRgb(0xFFCC00);
  for (const Appearance appearance : {Appearance::light, Appearance::dark})
    EXPECT_NEAR(Palette::of(appearance, given).accent.hslHueF(), given.hslHueF(), 0.02);
}

TEST(Palette, NoAccentGivenIsTheHousesOwn) {
  EXPECT_EQ(Palette::of(Appearance::light, std::nullopt).accent, QColor::fromRgb(0x0953BE));
  EXPECT_EQ(Palette::of(Appearance::dark, QColor()).accent, QColor::fromRgb(0x86C0FF));
}

TEST(Palette, WhatIsMadeOfTheAccentHasItsShareOfIt) {
  const Palette palette = Palette::of(Appearance::light);
  const struct {
    ColorRole role;
    double share;
  } table[] = {{&Palette::accentFaint, 0.12},
               {&Palette::sidebarSelection, 0.14},
               {&Palette::accentActive, 0.18},
               {&Palette::accentSoft, 0.22},
               {&Palette::focusRing, 0.50}};
  for (const auto& [role, share] : table) {
    EXPECT_NEAR((palette.*role).alphaF(), share, 0.001);
    EXPECT_EQ((palette.*role).rgb(), palette.accent.rgb());
  }
}

TEST(Palette, ContrastOfBlackAndWhiteIsTwentyOne) {
  EXPECT_NEAR(contrast(Qt::black, Qt::white), 21.0, 1e-4);
  EXPECT_NEAR(contrast(Qt::white, Qt::black), 21.0, 1e-4);
  EXPECT_NEAR(contrast(QColor::fromRgb(0x777777), QColor::fromRgb(0x777777)), 1.0, 1e-9);
  EXPECT_NEAR(contrast(QColor::fromRgb(0x767676), Qt::white), 4.54, 0.01);
}

TEST(Palette, MixingGoesFromOneColourToTheOther) {
  EXPECT_EQ(mixed(Qt::white, Qt::black, 0).rgb(), QColor(Qt::white).rgb());
  EXPECT_EQ(mixed(Qt::white, Qt::black, 1).rgb(), QColor(Qt::black).rgb());
  EXPECT_EQ(mixed(Qt::white, Qt::black, 0.2).red(), 204);
  EXPECT_EQ(composed(Qt::white, faded(Qt::black, 0.2)).red(), 204);
}

} // namespace
} // namespace ventolith::ui
