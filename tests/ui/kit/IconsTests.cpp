#include "Pictures.h"

#include "ui/kit/Icons.h"
#include "ui/kit/Theme.h"

#include <QDir>

#include <gtest/gtest.h>

#include <set>

namespace ventolith::ui {
namespace {

QImage tintedMask(Symbol symbol, int pixels, const QColor& color) {
  QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(color);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  painter.drawImage(0, 0, SVGSymbols().mask(symbol, pixels));
  return image;
}

struct CountingSource final : SymbolSource {
  explicit CountingSource(int& asked) : asked(asked) {}
  QImage mask(Symbol, int pixels) const override {
    ++asked;
    QImage full(pixels, pixels, QImage::Format_Alpha8);
    full.fill(255);
    return full;
  }
  int& asked;
};

struct EmptySource final : SymbolSource {
  QImage mask(Symbol, int) const override { return {}; }
};

TEST(Symbols, EachHasANameOfItsOwnThatLeadsBackToIt) {
  std::set<QString> names;
  for (const Symbol symbol : allSymbols()) {
    names.insert(nameOf(symbol));
    EXPECT_EQ(symbolNamed(nameOf(symbol)), symbol) << nameOf(symbol).toStdString();
  }
  EXPECT_EQ(names.size(), allSymbols().size());
  EXPECT_EQ(symbolNamed(QStringLiteral("thermometer")), Symbol::thermometer);
  EXPECT_EQ(symbolNamed(QStringLiteral("teapot")), std::nullopt);
}

TEST(Symbols, EachHasItsDrawingAndNoDrawingIsLeftOver) {
  const Theme loadsTheDrawings;
  ASSERT_FALSE(SVGSymbols().mask(Symbol::fan, 16).isNull());
  EXPECT_EQ(QDir(QStringLiteral(":/ventolith/icons")).entryList(QDir::Files).size(),
            static_cast<qsizetype>(allSymbols().size()));
}

TEST(Symbols, EachDrawingShowsAtEverySizeWithinItsSquare) {
  for (const Symbol symbol : allSymbols())
    for (const int pixels : {11, 16, 24, 32, 66}) {
      const QImage mask = SVGSymbols().mask(symbol, pixels);
      ASSERT_EQ(mask.size(), QSize(pixels, pixels)) << nameOf(symbol).toStdString();
      qint64 ink = 0;
      for (int y = 0; y < pixels; ++y)
        for (int x = 0; x < pixels; ++x)
          ink += qAlpha(mask.pixel(x, y));
      const double share = static_cast<double>(ink) / 255 / (pixels * pixels);
      EXPECT_GT(share, 0.02) << nameOf(symbol).toStdString() << " at " << pixels;
      EXPECT_LT(share, 0.75) << nameOf(symbol).toStdString() << " at " << pixels;
    }
}

TEST(Symbols, NoTwoDrawingsAreTheSame) {
  std::vector<QImage> seen;
  for (const Symbol symbol : allSymbols()) {
    const QImage mask = SVGSymbols().mask(symbol, 32);
    for (const QImage& other : seen)
      EXPECT_NE(mask, other) << nameOf(symbol).toStdString();
    seen.push_back(mask);
  }
}

TEST(Symbols, TheTickIsCutOutOfItsDisc) {
  const QImage mask = SVGSymbols().mask(Symbol::checkmarkCircle, 96);
  EXPECT_EQ(qAlpha(mask.pixel(48, 24)), 255); // In the disc.
  EXPECT_EQ(qAlpha(mask.pixel(43, 60)), 0);   // Where the tick bends.
}

class IconScales : public ::testing::TestWithParam<double> {};

TEST_P(IconScales, AnIconIsDrawnPixelForPixelEvenBetweenTwoPixels) {
  const double scale = GetParam();
  const Theme theme;
  const int pixels = static_cast<int>(16 * scale);
  const QImage picture = painted(32, 32, scale, [&](QPainter& painter) {
    theme.icons().paint(painter, QRectF(8.3, 7.8, 16, 16), Symbol::gauge, Qt::red);
  });
  const QPoint corner(static_cast<int>(std::lround(8.3 * scale)), static_cast<int>(std::lround(7.8 * scale)));
  EXPECT_EQ(picture.copy(QRect(corner, QSize(pixels, pixels))), [&] {
    QImage expected = tintedMask(Symbol::gauge, pixels, Qt::red);
    expected.setDevicePixelRatio(scale);
    return expected;
  }());
  EXPECT_TRUE(QRect(corner, QSize(pixels, pixels)).contains(inked(picture)));
}

INSTANTIATE_TEST_SUITE_P(Every, IconScales, ::testing::Values(1.0, 1.5, 2.0, 3.0));

TEST(Icons, AnIconHasTheColourThatIsAskedFor) {
  const Theme theme;
  const QImage picture = painted(24, 24, 1, [&](QPainter& painter) {
    theme.icons().paint(painter, QRectF(0, 0, 24, 24), Symbol::bolt, QColor::fromRgb(0x123456));
  });
  EXPECT_EQ(picture.pixelColor(12, 11), QColor::fromRgb(0x123456));
  EXPECT_EQ(picture.pixelColor(1, 1).alpha(), 0);
}

TEST(Icons, AnIconStaysSquareInTheMiddleOfAWideRectangle) {
  const Theme theme;
  const QImage picture = painted(60, 20, 1, [&](QPainter& painter) {
    theme.icons().paint(painter, QRectF(0, 0, 60, 20), Symbol::info, Qt::black);
  });
  EXPECT_TRUE(QRect(20, 0, 20, 20).contains(inked(picture)));
}

TEST(Icons, TheSameIconInTheSameSizeIsMadeOnce) {
  int asked = 0;
  const Icons icons(std::make_unique<CountingSource>(asked));
  painted(24, 24, 1, [&](QPainter& painter) {
    for (int time = 0; time < 5; ++time)
      for (const QColor& color : {QColor(Qt::red), QColor(Qt::blue)})
        icons.paint(painter, QRectF(0, 0, 24, 24), Symbol::fan, color);
  });
  EXPECT_EQ(asked, 1);
}

TEST(Icons, WhatTheSystemLacksIsTheHousesDrawing) {
  const Icons icons(std::make_unique<EmptySource>());
  const QImage picture = painted(24, 24, 1, [&](QPainter& painter) {
    icons.paint(painter, QRectF(0, 0, 24, 24), Symbol::fan, Qt::black);
  });
  EXPECT_EQ(picture, tintedMask(Symbol::fan, 24, Qt::black));
}

TEST(Icons, AQIconTakesTheColourThatHoldsWhenItIsPainted) {
  Theme theme;
  const QIcon icon = Icons::icon(theme, Symbol::bolt, &Palette::primaryText);
  EXPECT_EQ(icon.pixmap(QSize(24, 24)).toImage().pixelColor(12, 11),
            Palette::of(Appearance::light).primaryText);
  theme.force({.appearance = Appearance::dark});
  EXPECT_EQ(icon.pixmap(QSize(24, 24)).toImage().pixelColor(12, 11),
            Palette::of(Appearance::dark).primaryText);
}

} // namespace
} // namespace ventolith::ui
