// ventolith-drag-bench: what one step of a drag on the curve editor's chart costs, from the event to the
// painted frame, in a window of 1600 x 1000. QT_SCALE_FACTOR says how many pixels a point has. The counters
// are milliseconds: `p99` and `longest` by the wall, which a busy machine lengthens, `cpu` the longest of the
// program's own.
#include "ui/CurveChart.h"
#include "ui/CurvesFixture.h"
#include "ui/kit/Type.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>

namespace ventolith::ui {
namespace {

class DragScreen final : public CurvesTest {
public:
  DragScreen() {
    readings.next = app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("TCHP", 62)});
    begin();
    view = std::make_unique<CurvesView>(*context);
    view->resize(1400, 1000);
    view->show();
    turn();
    pressChart(60, 40);
  }
  ~DragScreen() override { letGoOfChart(); }

  /// The live reading's line changes along.
  void drag(int step) {
    moveOnChart(55 + step % 7, 30 + 5 * (step % 9));
    QCoreApplication::processEvents(); // Paints.
  }

private:
  void TestBody() override {}
};

double milliseconds(std::chrono::steady_clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

void dragStep(benchmark::State& state) {
  DragScreen screen;
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
