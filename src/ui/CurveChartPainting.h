// How the curve editor's chart looks: a still ground, and the marks that lie on it.
#pragma once

#include "ui/state/ChartGeometry.h"

#include <QString>

#include <optional>
#include <vector>

QT_BEGIN_NAMESPACE
class QPainter;
QT_END_NAMESPACE

namespace ventolith::ui {

struct Palette;

inline constexpr double haloDiameter = 20.2;

/// The card's colour, the grid, the axes and their words: all that changes only with the size and the look.
void paintChartGround(QPainter& painter, const ChartGeometry& chart, const QRectF& surface,
                      const Palette& palette);

struct CurveChartMarks {
  std::vector<ChartValue> line;
  std::vector<ChartValue> points;
  std::optional<ChartValue> selected;
  std::optional<ChartValue> live; ///< Where it is drawn, which may be on the way to a new reading.
  QString liveLabel;
};

/// From the bottom: the curve, the line of the safety override, the halo, the points, the live point.
void paintChartMarks(QPainter& painter, const ChartGeometry& chart, const QRectF& surface,
                     const Palette& palette, const CurveChartMarks& marks);

} // namespace ventolith::ui
