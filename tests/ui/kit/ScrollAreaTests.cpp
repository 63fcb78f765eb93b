#include "ui/kit/ScrollArea.h"
#include "ui/kit/Theme.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

struct Scrolled {
  explicit Scrolled(QSize content = QSize(100, 2000)) {
    auto* widget = new QWidget;
    widget->setMinimumSize(content);
    area.setContent(widget);
    area.resize(300, 200);
    area.show();
    QApplication::processEvents();
  }
  Theme theme;
  ScrollArea area{theme};
  OverlayBar& bar() { return *area.findChild<OverlayBar*>(); }
};

TEST(ThumbGeometry, ShowsWhereTheContentStands) {
  const struct {
    int track, value, maximum, page, top, length;
  } table[] = {{100, 0, 100, 100, 0, 50},      {100, 100, 100, 100, 50, 50},
               {100, 50, 100, 100, 25, 50},    {100, 0, 9900, 100, 0, 28},
               {100, 9900, 9900, 100, 72, 28}, {100, 0, 0, 100, 0, 100},
               {20, 5, 9900, 100, 0, 20},      {0, 0, 10, 10, 0, 0}};
  for (const auto& row : table) {
    const ThumbGeometry thumb = ThumbGeometry::of(row.track, row.value, row.maximum, row.page);
    EXPECT_EQ(thumb.top, row.top) << row.value << " of " << row.maximum;
    EXPECT_EQ(thumb.length, row.length) << row.value << " of " << row.maximum;
  }
}

TEST(ScrollArea, ContentIsAsWideAsTheAreaUnderTheBar) {
  Scrolled it;
  EXPECT_EQ(it.area.widget()->width(), 300);
  EXPECT_EQ(it.bar().geometry(), QRect(288, 0, 12, 200));
}

TEST(ScrollArea, NeverScrollsSideways) {
  Scrolled it(QSize(900, 2000));
  it.area.horizontalScrollBar()->setValue(200);
  it.area.ensureVisible(800, 1000);
  EXPECT_EQ(it.area.widget()->x(), 0);
  EXPECT_LT(it.area.widget()->y(), 0);
}

TEST(ScrollArea, TheBarCanBeDragged) {
  Scrolled it;
  const QPoint grip(6, 10);
  QTest::mousePress(&it.bar(), Qt::LeftButton, Qt::NoModifier, grip);
  QTest::mouseMove(&it.bar(), grip + QPoint(0, 60));
  const int halfway = it.area.verticalScrollBar()->value();
  EXPECT_GT(halfway, 300);
  EXPECT_LT(halfway, 1500);
  QTest::mouseMove(&it.bar(), grip + QPoint(0, 400));
  QTest::mouseRelease(&it.bar(), Qt::LeftButton, Qt::NoModifier, grip + QPoint(0, 400));
  EXPECT_EQ(it.area.verticalScrollBar()->value(), it.area.verticalScrollBar()->maximum());
}

TEST(ScrollArea, TheBarShowsOnceSomethingScrolls) {
  Scrolled it;
  const auto blank = [&] {
    const QImage picture = it.bar().grab().toImage();
    QImage plain = picture;
    plain.fill(picture.pixelColor(0, 0));
    return picture == plain;
  };
  EXPECT_TRUE(blank());
  it.area.verticalScrollBar()->setValue(300);
  EXPECT_FALSE(blank());
}

TEST(ScrollArea, ItTakesNoPlaceInTheOrderOfTheKeyboard) {
  Scrolled it;
  EXPECT_EQ(it.area.focusPolicy(), Qt::NoFocus);
}

} // namespace
} // namespace ventolith::ui
