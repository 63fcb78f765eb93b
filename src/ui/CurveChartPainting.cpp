#include "ui/CurveChartPainting.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Palette.h"
#include "ui/kit/Type.h"
#include "ui/state/CurveEditingTexts.h"

#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace ventolith::ui {

namespace {

constexpr double pointDiameter = 12.4;
constexpr double liveDiameter = 12.9;
constexpr double pointOutline = 1.5;

constexpr double tickGap = 8;           // From the numbers of the speeds to the axis.
constexpr double tickDrop = 13;         // From the plot down to the middle of the temperatures.
constexpr double axisLabelDrop = 35;    // The same, to the middle of the axis label.
constexpr double speedLabelX = 12;      // The baseline of the turned label.
constexpr double safetyLabelRise = 14;  // From the plot up to the baseline.
constexpr double safetyLabelBeyond = 1; // The label's end stands flush with the line's edge.
constexpr double labelRadius = 6;

constexpr Qt::Alignment visuallyLeft = Qt::AlignLeft | Qt::AlignAbsolute;
constexpr Qt::Alignment visuallyRight = Qt::AlignRight | Qt::AlignAbsolute;

/// A line along a row or a column of device pixels.
void paintHairline(QPainter& painter, QPointF from, QPointF to, const QColor& color) {
  const double width = strokeOnPixels(painter, metrics::hairline);
  const QRectF line = from.x() == to.x() ? QRectF(from.x() - width / 2, from.y(), width, to.y() - from.y())
                                         : QRectF(from.x(), from.y() - width / 2, to.x() - from.x(), width);
  painter.fillRect(onPixels(painter, line), color);
}

void paintGrid(QPainter& painter, const ChartGeometry& chart, const Palette& palette) {
  const QRectF& plot = chart.plot;
  for (const double celsius : steps(chart.temperatures, temperatureTickStep)) {
    const double x = chart.x(celsius);
    paintHairline(painter, {x, plot.top()}, {x, plot.bottom()}, palette.chartGrid);
  }
  for (const double percent : steps(chart.speeds, speedTickStep)) {
    const double y = chart.y(percent);
    paintHairline(painter, {plot.left(), y}, {plot.right(), y}, palette.chartGrid);
  }
  paintHairline(painter, plot.topLeft(), plot.bottomLeft(), palette.chartAxis);
  paintHairline(painter, plot.bottomLeft(), plot.bottomRight(), palette.chartAxis);
}

/// A line of text in the middle of `centre`.
void paintCentred(QPainter& painter, QPointF centre, const TextLine& line, const QColor& color) {
  const double width = line.width();
  line.paint(painter, QRectF(centre.x() - width / 2, centre.y() - line.height() / 2.0, width, line.height()),
             color, visuallyLeft);
}

void paintTicks(QPainter& painter, const ChartGeometry& chart, const Palette& palette) {
  for (const double celsius : steps(chart.temperatures, temperatureTickStep)) {
    paintCentred(painter, {chart.x(celsius), chart.plot.bottom() + tickDrop},
                 TextLine(QString::number(celsius), TextRole::tick), palette.secondaryText);
  }
  for (const double percent : steps(chart.speeds, speedTickStep)) {
    const TextLine line(QString::number(percent), TextRole::tick);
    const double y = chart.y(percent) - line.height() / 2.0;
    line.paint(painter, QRectF(0, y, chart.plot.left() - tickGap, line.height()), palette.secondaryText,
               visuallyRight);
  }
}

void paintAxisLabels(QPainter& painter, const ChartGeometry& chart, const Palette& palette) {
  const CurveEditingTexts texts = curveEditingTexts();
  paintCentred(painter, {chart.plot.center().x(), chart.plot.bottom() + axisLabelDrop},
               TextLine(texts.temperatureAxis, TextRole::axisLabel), palette.secondaryText);
  const TextLine speeds(texts.speedAxis, TextRole::axisLabel);
  painter.save();
  painter.translate(speedLabelX, chart.plot.center().y());
  painter.rotate(-90);
  paintCentred(painter, {0, speeds.height() / 2.0 - speeds.baseline()}, speeds, palette.secondaryText);
  painter.restore();
}

void paintCurveLine(QPainter& painter, const ChartGeometry& chart, const Palette& palette,
                    const std::vector<ChartValue>& line) {
  QPolygonF polygon;
  polygon.reserve(static_cast<qsizetype>(line.size()));
  for (const ChartValue& value : line)
    polygon.append(chart.position(value));
  painter.setPen(QPen(palette.chartLine, metrics::chartStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawPolyline(polygon);
}

TextLine safetyLabel() {
  return {curveEditingTexts().safetyOverride, TextRole::axisLabel};
}

/// Above the plot, its end at the line.
QRectF safetyLabelRect(const ChartGeometry& chart) {
  const TextLine label = safetyLabel();
  const double right = chart.x(safetyCelsius) + safetyLabelBeyond;
  return {right - label.width(), chart.plot.top() - safetyLabelRise - label.baseline(), label.width(),
          static_cast<double>(label.height())};
}

void paintSafetyCeiling(QPainter& painter, const ChartGeometry& chart, const Palette& palette) {
  const double width = strokeOnPixels(painter, metrics::safetyStroke);
  const double x = onPixels(painter, {chart.x(safetyCelsius) - width / 2, 0, width, 1}).center().x();
  QPen pen(palette.safetyLine, width, Qt::CustomDashLine, Qt::FlatCap);
  pen.setDashPattern({metrics::safetyDashOn / width, metrics::safetyDashOff / width});
  painter.setPen(pen);
  painter.drawLine(QPointF(x, chart.plot.top()), QPointF(x, chart.plot.bottom()));
  safetyLabel().paint(painter, safetyLabelRect(chart), palette.danger, visuallyLeft);
}

void paintPoint(QPainter& painter, QPointF centre, double diameter, const QColor& fill,
                const QColor& outline) {
  painter.setPen(QPen(outline, pointOutline));
  painter.setBrush(fill);
  painter.drawEllipse(centre, diameter / 2, diameter / 2);
}

void paintSelectedPointHalo(QPainter& painter, QPointF centre, const Palette& palette) {
  paintCircle(painter, centre, haloDiameter, palette.accentSoft);
}

void paintCurvePoints(QPainter& painter, const ChartGeometry& chart, const Palette& palette,
                      const std::vector<ChartValue>& points) {
  for (const ChartValue& point : points)
    paintPoint(painter, chart.position(point), pointDiameter, palette.chartLine, palette.cardBackground);
}

/// Above the point, unless it would lie on the other label there: then below it. Right of the axis, where it
/// hides no number.
QRectF livePill(const ChartGeometry& chart, QPointF point, double textWidth, const QRectF& surface) {
  QRectF room = surface;
  room.setLeft(chart.plot.left() + metrics::space4);
  QRectF pill = chart.liveLabel(point, std::ceil(textWidth), room);
  const double rise = point.y() - pill.bottom();
  if (pill.intersects(safetyLabelRect(chart))) pill.moveTop(point.y() + std::max(rise, liveDiameter));
  return pill;
}

void paintLiveOperatingPoint(QPainter& painter, const ChartGeometry& chart, const QRectF& surface,
                             const Palette& palette, ChartValue live, const QString& label) {
  const QPointF centre = chart.position(live);
  paintPoint(painter, centre, liveDiameter, palette.success, palette.cardBackground);
  const TextLine line(label, TextRole::badge, Digits::equal);
  const QRectF pill = livePill(chart, centre, line.width(), surface);
  paintBox(painter, pill,
           {.fill = palette.cardBackground, .stroke = palette.cardStroke, .radius = labelRadius});
  paintCentred(painter, pill.center(), line, palette.primaryText);
}

/// A reading beyond the axis stands at its end: the label tells the number.
std::optional<ChartValue> withinAxes(std::optional<ChartValue> value, const ChartGeometry& chart) {
  if (!value || !std::isfinite(value->celsius) || !std::isfinite(value->percent)) return std::nullopt;
  return ChartValue{.celsius = std::clamp(value->celsius, chart.temperatures.lower, chart.temperatures.upper),
                    .percent = std::clamp(value->percent, chart.speeds.lower, chart.speeds.upper)};
}

} // namespace

void paintChartGround(QPainter& painter, const ChartGeometry& chart, const QRectF& surface,
                      const Palette& palette) {
  painter.fillRect(surface, palette.cardBackground);
  paintGrid(painter, chart, palette);
  paintTicks(painter, chart, palette);
  paintAxisLabels(painter, chart, palette);
}

void paintChartMarks(QPainter& painter, const ChartGeometry& chart, const QRectF& surface,
                     const Palette& palette, const CurveChartMarks& marks) {
  painter.setRenderHint(QPainter::Antialiasing);
  paintCurveLine(painter, chart, palette, marks.line);
  paintSafetyCeiling(painter, chart, palette);
  if (marks.selected) paintSelectedPointHalo(painter, chart.position(*marks.selected), palette);
  paintCurvePoints(painter, chart, palette, marks.points);
  if (const auto live = withinAxes(marks.live, chart)) {
    paintLiveOperatingPoint(painter, chart, surface, palette, *live, marks.liveLabel);
  }
}

} // namespace ventolith::ui
