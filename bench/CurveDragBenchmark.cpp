// ventolith-drag-bench: what one step of a drag on the curve editor's chart costs, from the event to the
// painted frame, in the application's window of 1600 x 1000. QT_SCALE_FACTOR says how many pixels a point
// has. The counters are milliseconds: `p99` and `longest` by the wall, which a busy machine lengthens, `cpu`
// the longest of the program's own.
#include "ui/CurveChart.h"
#include "ui/Finding.h"
#include "ui/RootView.h"
#include "ui/ViewFixture.h"
#include "ui/kit/Type.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <memory>
#include <vector>

namespace ventolith::ui {
namespace {

/// The application's window on the curve editor, with a point of the curve in the hand.
class DragScreen final : public ViewTest {
public:
  DragScreen() {
    readings.next = app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("TCHP", 62)});
    begin();
    root_ = std::make_unique<RootView>(*context);
    root_->setSection(AppSection::curves);
    root_->resize(1600, 1000);
    root_->show();
    turn();
    chart_ = root_->findChild<CurveChart*>();
    paints_ = std::make_unique<PaintCount>(*chart_);
    QTest::mousePress(root_->windowHandle(), Qt::LeftButton, Qt::NoModifier, at(60, 40));
  }
  ~DragScreen() override {
    QTest::mouseRelease(root_->windowHandle(), Qt::LeftButton, Qt::NoModifier, at(60, 40));
    root_ = nullptr;
  }

  /// The pointer moves in the window, as the platform tells it, and the frame that comes of it is painted.
  /// Each step takes the point elsewhere, and the live reading's line changes along.
  void drag(int step) {
    QTest::mouseMove(root_->windowHandle(), at(55 + step % 7, 30 + 5 * (step % 9)));
    QCoreApplication::processEvents();
  }
  [[nodiscard]] int frames() const { return paints_->count(); }

private:
  void TestBody() override {}
  [[nodiscard]] QPoint at(double celsius, double percent) const {
    const QPointF place = chart_->chart().position({.celsius = celsius, .percent = percent});
    return chart_->mapTo(root_.get(), place.toPoint());
  }

  std::unique_ptr<RootView> root_;
  CurveChart* chart_ = nullptr;
  std::unique_ptr<PaintCount> paints_;
};

double milliseconds(std::chrono::steady_clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

void dragStep(benchmark::State& state) {
  DragScreen screen;
  const int before = screen.frames();
  std::vector<double> walls;
  double longestOfProcessor = 0;
  int step = 0;
  for ([[maybe_unused]] auto _ : state) {
    const auto began = std::chrono::steady_clock::now();
    const std::clock_t processor = std::clock();
    screen.drag(++step);
    longestOfProcessor =
        std::max(longestOfProcessor, 1e3 * static_cast<double>(std::clock() - processor) / CLOCKS_PER_SEC);
    walls.push_back(milliseconds(std::chrono::steady_clock::now() - began));
  }
  if (screen.frames() - before < step) return state.SkipWithError("a step was not painted");
  std::sort(walls.begin(), walls.end());
  state.counters["p99"] = walls[walls.size() * 99 / 100];
  state.counters["longest"] = walls.back();
  state.counters["cpu"] = longestOfProcessor;
}
BENCHMARK(dragStep)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace ventolith::ui

int main(int count, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  const QApplication application(count, arguments);
  ventolith::ui::applyRequestedFont();
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
