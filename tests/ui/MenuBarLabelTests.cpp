#include "ui/MenuBarLabel.h"

#include "ViewFixture.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QSignalSpy>

#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

namespace ventolith::ui {
namespace {

class MenuBarLabelTest : public ViewTest {
protected:
  ~MenuBarLabelTest() override { label = nullptr; }

  void show() {
    begin();
    label = std::make_unique<MenuBarLabel>(*context);
  }
  [[nodiscard]] QImage picture(int side, double scale = 1) const {
    return label->picture().pixmap(QSize(side, side), scale).toImage();
  }
  /// The same on a tray of the colour of its plate.
  [[nodiscard]] QImage onGround(int side) const {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(theme.palette().panelBackground);
    QPainter painter(&image);
    painter.drawImage(0, 0, picture(side));
    return image;
  }
  [[nodiscard]] bool isInk(const QImage& image, int x, int y) const {
    return std::abs(image.pixelColor(x, y).lightness() - theme.palette().primaryText.lightness()) < 60;
  }
  /// Where there are letters in the picture, from top to bottom: the first and the last row of each line.
  [[nodiscard]] std::vector<std::pair<int, int>> linesOf(const QImage& image) const {
    std::vector<std::pair<int, int>> lines;
    bool isInLine = false;
    for (int y = 0; y < image.height(); ++y) {
      bool hasInk = false;
      for (int x = 0; x < image.width(); ++x)
        hasInk = hasInk || isInk(image, x, y);
      if (hasInk && !isInLine) lines.emplace_back(y, y);
      if (hasInk) lines.back().second = y;
      isInLine = hasInk;
    }
    return lines;
  }
  [[nodiscard]] static core::SensorSnapshot machine(double celsius, std::int64_t rpm) {
    return app::snapshot({{.id = 0, .name = "Fan", .currentRPM = rpm, .minRPM = 1000, .maxRPM = 8000}},
                         {support::sensor("A", celsius)});
  }

  std::unique_ptr<MenuBarLabel> label;
};

TEST_F(MenuBarLabelTest, ReadsTheHottestTemperatureAndTheFastestFan) {
  readings.next = machine(61.7, 5921);
  show();
  EXPECT_EQ(label->text().toStdString(), "62° 5921rpm");
}

TEST_F(MenuBarLabelTest, WithoutFansThereIsNoSpeed) {
  readings.next = app::snapshot({}, {support::sensor("A", 50)});
  show();
  EXPECT_EQ(label->text().toStdString(), "50°");
}

TEST_F(MenuBarLabelTest, OnABareMachineItIsTheIconAlone) {
  readings.next = {};
  show();
  EXPECT_TRUE(label->text().isEmpty());
  EXPECT_FALSE(picture(22).isNull());
}

TEST_F(MenuBarLabelTest, IsAnotherOnlyWhenItReadsDifferently) {
  readings.next = machine(61.7, 5921);
  show();
  const QSignalSpy changed(label.get(), &MenuBarLabel::changed);
  read(machine(62.3, 5921));
  EXPECT_EQ(changed.count(), 0);
  read(machine(62.6, 5921));
  EXPECT_EQ(changed.count(), 1);
  EXPECT_EQ(label->text().toStdString(), "63° 5921rpm");
}

TEST_F(MenuBarLabelTest, FollowsTheThemeWithoutAReading) {
  show();
  const QSignalSpy changed(label.get(), &MenuBarLabel::changed);
  const QImage light = picture(22);
  theme.force({.appearance = Appearance::dark, .reduceMotion = true});
  EXPECT_EQ(changed.count(), 1);
  EXPECT_NE(picture(22), light);
}

TEST_F(MenuBarLabelTest, IsDrawnForEverySizeAndScaleThatATrayAsksFor) {
  show();
  for (const int side : {16, 22, 24, 32, 48, 64}) {
    EXPECT_EQ(picture(side).size(), QSize(side, side)) << side;
    EXPECT_EQ(picture(side, 2).size(), QSize(2 * side, 2 * side)) << side;
  }
}

TEST_F(MenuBarLabelTest, OffersATrayItsOwnSizes) {
  show();
  const QList<QSize> sizes = label->picture().availableSizes();
  EXPECT_TRUE(sizes.contains(QSize(22, 22)));
  EXPECT_TRUE(sizes.contains(QSize(24, 24)));
  EXPECT_TRUE(sizes.contains(QSize(48, 48)));
}

TEST_F(MenuBarLabelTest, ATraysPictureHasTwoLinesThatCanBeRead) {
  readings.next = machine(82, 5921);
  show();
  const auto lines = linesOf(onGround(22));
  ASSERT_EQ(lines.size(), 2U);
  for (const auto& [first, last] : lines)
    EXPECT_GE(last - first + 1, 7); // Digits of seven pixels.
}

TEST_F(MenuBarLabelTest, EverySpeedStaysWithinThePicture) {
  readings.next = machine(104, 0);
  show();
  for (const std::int64_t rpm : {1, 999, 12345, 123456}) {
    read(machine(104, rpm));
    const QImage image = onGround(44);
    EXPECT_EQ(linesOf(image).size(), 2U) << rpm;
    for (int edge = 0; edge < image.height(); ++edge)
      for (const auto& [x, y] : {std::pair(0, edge), {43, edge}, {edge, 0}, {edge, 43}})
        EXPECT_FALSE(isInk(image, x, y)) << rpm << " at " << x << ", " << y;
  }
}

} // namespace
} // namespace ventolith::ui
