// What the interface keeps in memory: no more after the thousandth opening and the ten-thousandth reading
// than after the first hundred.
#include "Finding.h"
#include "LiveMemory.h"
#include "StatusItemDouble.h"
#include "ViewFixture.h"
#include "ui/DashboardWindow.h"
#include "ui/MenuBarExtra.h"
#include "ui/PresetMenu.h"
#include "ui/kit/MenuButton.h"

#include <QPixmapCache>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <utility>

namespace ventolith::ui {
namespace {

using Round = std::function<void(int)>;

long liveBytes() {
  QPixmapCache::clear(); // Which forgets pictures by the time of day.
  return support::liveBytes();
}

class GrowthTest : public ViewTest {
protected:
  GrowthTest() { readings.next = reading(0); }
  ~GrowthTest() override {
    window = nullptr;
    extra = nullptr;
  }

  /// How many bytes more are live at the end of the last hundred rounds than at that of the first hundred,
  /// which pay for whatever is made once. The least of fifty rounds each, since caches come and go.
  long growthOver(int rounds, const Round& round) {
    auto liveAfter = [&, done = 0](int end) mutable {
      constexpr int measured = 50;
      long least = std::numeric_limits<long>::max();
      for (; done < end; ++done) {
        round(done);
        if (end - done > measured) continue;
        forgetNotes();
        least = std::min(least, liveBytes());
      }
      return least;
    };
    const long before = liveAfter(100);
    const long growth = liveAfter(rounds) - before;
    RecordProperty("growth", std::to_string(growth));
    return growth;
  }
  /// Less than the smallest block in each round, which has 24 bytes.
  static long allowance(int rounds) { return 8L * rounds; }

  /// What a window costs in which there is nothing: Qt itself keeps something of each time it is active.
  long growthOfBareWindow(Qt::WindowType type, int rounds) {
    QWidget bare(nullptr, type);
    return growthOver(rounds, [&](int) {
      bare.show();
      bare.activateWindow();
      turn();
      bare.close();
      turn();
    });
  }

  /// Of two fans and 64 sensors, each of them another one in each reading.
  static core::SensorSnapshot reading(int number) {
    core::SensorSnapshot next = app::snapshot({app::fan(0), app::fan(1)});
    for (core::Fan& fan : next.fans)
      fan.currentRPM = 2000 + (number * 7 + fan.id * 31) % 6000;
    for (int sensor = 0; sensor < 64; ++sensor)
      next.temps.push_back(support::sensor("T" + std::to_string(sensor), 30 + (number + sensor) % 70));
    return next;
  }
  void readNumber(int number) { read(reading(number)); }

  void openWindow() {
    beginWithHelper();
    window = std::make_unique<DashboardWindow>(*context);
    window->open();
    turn();
  }
  void showExtra() {
    beginWithHelper();
    auto made = std::make_unique<StatusItemDouble>();
    item = made.get();
    extra = std::make_unique<MenuBarExtra>(*context, std::move(made));
    extra->show();
  }
  void press() {
    extra->toggle();
    turn();
  }

  std::unique_ptr<DashboardWindow> window;
  std::unique_ptr<MenuBarExtra> extra;
  StatusItemDouble* item = nullptr; // The extra's.

private:
  /// What the doubles have noted down, and the room that they have for it.
  void forgetNotes() {
    forget(readings.times);
    forget(controllers.heartbeats);
    forget(controllers.heartbeatTimes);
  }
  template <class Notes>
  static void forget(Notes& notes) {
    Notes().swap(notes);
  }
};

constexpr int openings = 1000, polls = 10'000;

class ScreenGrowthTest : public GrowthTest, public testing::WithParamInterface<AppSection> {};

TEST_P(ScreenGrowthTest, AThousandOpeningsLeaveNothing) {
  openWindow();
  const AppSection other = GetParam() == AppSection::about ? AppSection::curves : AppSection::about;
  const long growth = growthOver(openings, [&](int number) {
    window->findChild<RootView*>()->setSection(GetParam());
    turn();
    // Numbers from everywhere, and more of them at first: their pictures are made before the counting begins.
    if (number < 100 || number % 10 == 0) readNumber(number * 61);
    window->findChild<RootView*>()->setSection(other);
    turn();
  });
  EXPECT_LT(growth, allowance(openings));
}

INSTANTIATE_TEST_SUITE_P(Screens, ScreenGrowthTest, testing::ValuesIn(allAppSections), [](const auto& info) {
  return title(info.param).remove(QLatin1Char(' ')).toStdString();
});

TEST_F(GrowthTest, AThousandOpeningsOfTheWindowLeaveNothing) {
  openWindow();
  const long bare = growthOfBareWindow(Qt::Window, openings);
  const long growth = growthOver(openings, [&](int) {
    window->close();
    turn();
    window->open();
    turn();
  });
  EXPECT_LT(growth, bare + allowance(openings));
}

TEST_F(GrowthTest, AThousandOpeningsOfThePanelLeaveNothing) {
  showExtra();
  const long bare = growthOfBareWindow(Qt::Popup, openings);
  const long growth = growthOver(openings, [&](int number) {
    press();
    ASSERT_TRUE(extra->isOpen());
    press();
    readNumber(number);
  });
  EXPECT_LT(growth, bare + allowance(openings));
}

TEST_F(GrowthTest, AThousandOpeningsOfTheTrayOfPresetsLeaveNothing) {
  openWindow();
  const long bare = growthOfBareWindow(Qt::Popup, openings);
  MenuButton& tray = window->findChild<PresetMenu*>()->button();
  const long growth = growthOver(openings, [&](int) {
    click(tray);
    turn();
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    QApplication::activePopupWidget()->close();
    turn();
  });
  EXPECT_LT(growth, bare + allowance(openings));
}

TEST_F(GrowthTest, TenThousandReadingsInTheWindowLeaveNothing) {
  openWindow();
  EXPECT_LT(growthOver(polls, [&](int number) { readNumber(number); }), allowance(polls));
}

TEST_F(GrowthTest, TenThousandReadingsInThePanelLeaveNothing) {
  showExtra();
  press();
  EXPECT_LT(growthOver(polls, [&](int number) { readNumber(number); }), allowance(polls));
}

TEST_F(GrowthTest, TenThousandReadingsInTheStatusAreaLeaveNothing) {
  showExtra();
  const auto takePicture = [&](int number) {
    readNumber(number);
    EXPECT_FALSE(item->label.picture.pixmap(22).isNull()); // As a tray asks for it.
  };
  EXPECT_LT(growthOver(polls, takePicture), allowance(polls));
}

} // namespace
} // namespace ventolith::ui
