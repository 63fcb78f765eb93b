#include "ui/kit/AdaptiveGrid.h"
#include "ui/kit/Metrics.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <cstdlib>

namespace ventolith::ui {
namespace {

struct Tall final : QWidget {
  explicit Tall(int height) { setMinimumHeight(height); }
};

// A widget whose area at any width is the same.
struct Flowing final : QWidget {
  Flowing() {
    QSizePolicy policy = sizePolicy();
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
  }
  QSize sizeHint() const override { return {100, heightForWidth(100)}; }
  int heightForWidth(int width) const override { return 20000 / std::max(width, 1); }
};

struct Grid {
  Grid(int minimum, int gap, int items, int height = 40) : layout(new AdaptiveGrid(minimum, gap, &holder)) {
    for (int item = 0; item < items; ++item) {
      auto* widget = new Tall(height);
      layout->addWidget(widget);
      widgets.push_back(widget);
    }
  }
  void resize(int width) {
    holder.resize(width, 600);
    layout->activate();
    layout->setGeometry(holder.rect());
  }
  QWidget holder;
  AdaptiveGrid* layout;
  std::vector<QWidget*> widgets;
};

TEST(AdaptiveGrid, HasTheColumnsOfTheDesignAtEveryWidthOfTheWindow) {
  const struct {
    int window, fans, sensors, presets;
  } table[] = {{900, 2, 2, 2}, {1000, 2, 3, 3}, {1280, 2, 4, 4}, {1600, 2, 5, 5}};
  for (const auto& [window, fans, sensors, presets] : table) {
    const int screen = window - metrics::sidebarWidth - 2 * metrics::screenSides;
    const int card = screen - 2 * metrics::cardPadding;
    EXPECT_EQ(AdaptiveGrid::columnsFor(card, metrics::sensorMinimum, metrics::sensorGap), sensors) << window;
    EXPECT_EQ(AdaptiveGrid::columnsFor(screen, metrics::presetMinimum, metrics::presetGap), presets)
        << window;
    Grid two(metrics::fanMinimum, metrics::fanGap, 2);
    two.layout->setFillsWidth(true);
    two.resize(card);
    EXPECT_EQ(two.layout->columns(), fans) << window;
  }
}

TEST(AdaptiveGrid, HasOneColumnAtTheLeast) {
  EXPECT_EQ(AdaptiveGrid::columnsFor(0, 230, 10), 1);
  EXPECT_EQ(AdaptiveGrid::columnsFor(229, 230, 10), 1);
  EXPECT_EQ(AdaptiveGrid::columnsFor(469, 230, 10), 1);
  EXPECT_EQ(AdaptiveGrid::columnsFor(470, 230, 10), 2);
}

TEST(AdaptiveGrid, ColumnsAreEquallyWideAndReachTheFarEdge) {
  for (const int width : {470, 731, 733, 1000}) {
    Grid grid(100, 7, 9);
    grid.resize(width);
    const auto columns = static_cast<std::size_t>(grid.layout->columns());
    const int first = grid.widgets[0]->width();
    for (std::size_t column = 0; column < columns; ++column) {
      EXPECT_LE(std::abs(grid.widgets[column]->width() - first), 1) << width;
      if (column > 0)
        EXPECT_EQ(grid.widgets[column]->x(), grid.widgets[column - 1]->geometry().right() + 1 + 7) << width;
    }
    EXPECT_EQ(grid.widgets[columns - 1]->geometry().right() + 1, width);
  }
}

TEST(AdaptiveGrid, FewItemsFillTheWidthOnlyWhenTheyAreTo) {
  Grid grid(100, 10, 2);
  grid.resize(540);
  EXPECT_EQ(grid.widgets[0]->width(), 100);
  grid.layout->setFillsWidth(true);
  grid.resize(540);
  EXPECT_EQ(grid.widgets[0]->width(), 265);
}

TEST(AdaptiveGrid, ARowIsAsHighAsItsTallestItem) {
  Grid grid(100, 10, 3);
  grid.widgets[1]->setMinimumHeight(90);
  grid.resize(210);
  EXPECT_EQ(grid.widgets[0]->height(), 90);
  EXPECT_EQ(grid.widgets[2]->y(), 100);
  EXPECT_EQ(grid.layout->heightForWidth(210), 90 + 10 + 40);
}

TEST(AdaptiveGrid, AnItemThatFlowsHasTheHeightOfItsColumn) {
  Grid grid(100, 0, 0);
  grid.layout->addWidget(new Flowing);
  grid.layout->addWidget(new Flowing);
  EXPECT_EQ(grid.layout->heightForWidth(200), 200);
  EXPECT_EQ(grid.layout->heightForWidth(150), 2 * (20000 / 150));
}

TEST(AdaptiveGrid, AHiddenItemTakesNoPlace) {
  Grid grid(100, 10, 3);
  grid.widgets[0]->hide();
  grid.resize(210);
  EXPECT_EQ(grid.widgets[1]->pos(), QPoint(0, 0));
  EXPECT_EQ(grid.widgets[2]->pos(), QPoint(110, 0));
}

TEST(AdaptiveGrid, NothingTakesNoHeight) {
  Grid grid(100, 10, 0);
  EXPECT_EQ(grid.layout->heightForWidth(300), 0);
}

TEST(AdaptiveGrid, AnItemThatIsTakenOutLeavesItsPlace) {
  Grid grid(100, 10, 3);
  grid.layout->removeWidget(grid.widgets[0]);
  grid.widgets[0]->hide();
  grid.resize(210);
  EXPECT_EQ(grid.layout->count(), 2);
  EXPECT_EQ(grid.widgets[1]->pos(), QPoint(0, 0));
  EXPECT_EQ(grid.layout->itemAt(2), nullptr);
  EXPECT_EQ(grid.layout->takeAt(-1), nullptr);
}

TEST(AdaptiveGrid, AnOutsetReachesIntoTheGapsAndChangesNoColumn) {
  Grid grid(100, 16, 2, 56);
  grid.layout->setOutset(8);
  grid.resize(216);
  EXPECT_EQ(grid.widgets[0]->geometry(), QRect(-8, -8, 116, 56));
  EXPECT_EQ(grid.widgets[1]->geometry(), QRect(108, -8, 116, 56));
  EXPECT_EQ(grid.layout->heightForWidth(216), 40);
}

} // namespace
} // namespace ventolith::ui
