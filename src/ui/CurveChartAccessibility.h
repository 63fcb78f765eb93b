// What assistive technology is told about the chart: its points are its children, each with a name, a value,
// and actions that choose and move it.
#pragma once

#include "ui/CurveChartPainting.h"

namespace ventolith::ui {

class CurveChart;

/// Makes charts known to Qt, once a process: their constructor calls it.
void installCurveChartAccessibility();

/// What somebody who hears the chart would want to know.
enum class ChartChange {
  nothing,
  choice, ///< Another point is chosen, or none.
  value,  ///< The chosen point moved.
  number, ///< There are more points, or fewer.
};
[[nodiscard]] ChartChange changeBetween(const CurveChartMarks& before, const CurveChartMarks& now);

/// Tells whoever listens what is different now.
void announceMarks(CurveChart& chart, const CurveChartMarks& before, const CurveChartMarks& now);
/// Tells that the keyboard speaks to the chosen point now.
void announceChosen(CurveChart& chart);

} // namespace ventolith::ui
