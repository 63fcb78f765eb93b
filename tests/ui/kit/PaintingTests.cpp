#include "Pictures.h"

#include "ui/kit/Painting.h"

#include <gtest/gtest.h>

#include <cmath>

namespace ventolith::ui {
namespace {

class Scales : public ::testing::TestWithParam<double> {};
INSTANTIATE_TEST_SUITE_P(Every, Scales, ::testing::Values(1.0, 1.25, 1.5, 1.75, 2.0, 3.0));

TEST_P(Scales, AStrokeIsSharpAtEveryEdge) {
  const double scale = GetParam();
  const QColor fill(Qt::white), stroke(Qt::black);
  const QImage picture = painted(40, 40, scale, [&](QPainter& painter) {
    paintBox(painter, QRectF(4.3, 4.3, 30, 30), {.fill = fill, .stroke = stroke, .radius = 6});
  });
  const int width = static_cast<int>(std::lround(std::max(1.0, std::round(scale))));
  const QRect ink = inked(picture);
  const int middle = picture.height() / 2;
  const auto at = [&](int x) { return picture.pixelColor(x, middle); };
  for (int pixel = 0; pixel < width; ++pixel) {
    EXPECT_EQ(at(ink.left() + pixel), stroke) << pixel;
    EXPECT_EQ(at(ink.right() - pixel), stroke) << pixel;
  }
  EXPECT_EQ(at(ink.left() + width), fill);
  EXPECT_EQ(at(ink.right() - width), fill);
  EXPECT_EQ(picture.pixelColor(picture.width() / 2, ink.top()), stroke);
  EXPECT_EQ(picture.pixelColor(picture.width() / 2, ink.bottom()), stroke);
}

TEST_P(Scales, AnEdgeOnPixelsIsAWholeNumberOfThem) {
  const double scale = GetParam();
  painted(40, 40, scale, [&](QPainter& painter) {
    const QRectF rect = onPixels(painter, QRectF(3.37, 5.11, 20.2, 9.9));
    for (const double edge : {rect.left(), rect.top(), rect.right(), rect.bottom()})
      EXPECT_NEAR(edge * scale, std::round(edge * scale), 1e-6);
    EXPECT_NEAR(rect.left(), 3.37, 0.5 / scale + 1e-6);
    EXPECT_NEAR(rect.bottom(), 15.01, 0.5 / scale + 1e-6);
  });
}

TEST(Painting, ABoxWithoutFillOrStrokeLeavesNothing) {
  const QImage picture = painted(20, 20, 1, [](QPainter& painter) {
    paintBox(painter, QRectF(2, 2, 16, 16), {.fill = Qt::transparent, .radius = 4});
  });
  EXPECT_TRUE(inked(picture).isNull());
}

TEST(Painting, ARadiusBeyondHalfTheHeightIsACapsule) {
  const QImage picture = painted(40, 20, 2, [](QPainter& painter) {
    paintBox(painter, QRectF(0, 0, 40, 20), {.fill = Qt::black, .radius = 400});
  });
  EXPECT_EQ(qAlpha(picture.pixel(1, 1)), 0);
  EXPECT_EQ(qAlpha(picture.pixel(40, 1)), 255);
  EXPECT_EQ(qAlpha(picture.pixel(1, 20)), 255);
}

TEST(Painting, ADashedStrokeHasItsGaps) {
  const QImage picture = painted(100, 20, 2, [](QPainter& painter) {
    paintBox(painter, QRectF(0, 0, 100, 20),
             {.fill = Qt::transparent,
              .stroke = Qt::black,
              .radius = 0,
              .strokeWidth = 1.5,
              .dashOn = 6,
              .dashOff = 4});
  });
  int drawn = 0;
  for (int x = 20; x < 180; ++x)
    drawn += qAlpha(picture.pixel(x, 1)) > 127 ? 1 : 0;
  EXPECT_NEAR(drawn / 160.0, 0.6, 0.06);
}

TEST(Painting, TheFocusRingStandsOnePixelOffTheControl) {
  const QRectF control(10, 10, 40, 20);
  const QImage picture =
      painted(60, 40, 2, [&](QPainter& painter) { paintFocusRing(painter, control, 7, Qt::black); });
  const auto opacity = [&](double x) { return qAlpha(picture.pixel(static_cast<int>(x * 2), 40)); };
  EXPECT_EQ(opacity(5.75), 0);
  EXPECT_EQ(opacity(6.25), 255); // 4 outside: 3 of the ring, 1 of the gap.
  EXPECT_EQ(opacity(8.75), 255);
  EXPECT_EQ(opacity(9.25), 0);
}

TEST(Painting, AShadowFallsDownAndEndsWithinItsReach) {
  const Shadow shadow{2, 6, Qt::black};
  const QRectF card(20, 20, 60, 40);
  const QImage picture =
      painted(100, 80, 2, [&](QPainter& painter) { paintShadow(painter, card, 12, shadow); });
  const int above = qAlpha(picture.pixel(100, 2 * 18));
  const int below = qAlpha(picture.pixel(100, 2 * 62));
  EXPECT_GT(below, above);
  EXPECT_GT(above, 0);
  const int reach = reachOf(shadow);
  const QRect allowed(QPoint(2 * (20 - reach), 2 * (20 - reach)), QPoint(2 * (80 + reach), 2 * (60 + reach)));
  EXPECT_TRUE(allowed.contains(inked(picture)));
}

TEST(Painting, AShadowHasNoSeams) {
  const QImage picture = painted(200, 160, 2, [](QPainter& painter) {
    paintShadow(painter, QRectF(50, 40, 100, 80), 9, {8, 24, QColor(0, 0, 0, 128)});
  });
  const int row = 2 * 128;
  for (int x = 2 * 60; x < 2 * 140; ++x)
    EXPECT_LE(std::abs(qAlpha(picture.pixel(x, row)) - qAlpha(picture.pixel(x + 1, row))), 4) << x;
}

TEST(Painting, WhatHasNoColourCastsNoShadow) {
  const QImage picture = painted(60, 60, 1, [](QPainter& painter) {
    paintShadow(painter, QRectF(20, 20, 20, 20), 4, {2, 6, Qt::transparent});
  });
  EXPECT_TRUE(inked(picture).isNull());
}

TEST(RoundedRegion, IsTheRectangleWithoutItsCorners) {
  const QRegion region = roundedRegion(QRect(10, 20, 60, 40), 9);
  EXPECT_EQ(region.boundingRect(), QRect(10, 20, 60, 40));
  for (const QPoint& corner : {QPoint(10, 20), QPoint(69, 20), QPoint(10, 59), QPoint(69, 59)})
    EXPECT_FALSE(region.contains(corner)) << corner.x() << ", " << corner.y();
  for (const QPoint& edge : {QPoint(19, 20), QPoint(60, 20), QPoint(10, 29), QPoint(69, 50), QPoint(40, 59)})
    EXPECT_TRUE(region.contains(edge)) << edge.x() << ", " << edge.y();
}

} // namespace
} // namespace ventolith::ui
