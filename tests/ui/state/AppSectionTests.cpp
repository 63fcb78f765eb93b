#include "ui/state/AppSection.h"

#include "ui/state/Text.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

using support::utf8;

TEST(AppSection, SidebarListsTheScreensInOrder) {
  struct Row {
    AppSection section;
    const char* title;
    const char* symbol;
  };
  const Row expected[] = {
      {AppSection::dashboard, "Dashboard", "gauge.with.dots.needle.67percent"},
      {AppSection::curves, "Fan Curves", "chart.line.uptrend.xyaxis"},
      {AppSection::rules, "Rules", "square.grid.3x3"},
      {AppSection::presets, "Presets", "square.stack.3d.up"},
      {AppSection::about, "About", "info.circle"},
  };
  ASSERT_EQ(allAppSections.size(), std::size(expected));
  for (std::size_t place = 0; place < allAppSections.size(); ++place) {
    const AppSection section = allAppSections[place];
    EXPECT_EQ(section, expected[place].section);
    EXPECT_EQ(utf8(title(section)), expected[place].title);
    EXPECT_EQ(utf8(symbol(section)), expected[place].symbol);
  }
}

} // namespace
} // namespace ventolith::ui
