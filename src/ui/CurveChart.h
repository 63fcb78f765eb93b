// The chart of the curve editor: shows the curve, and shapes it by pointer, keyboard and assistive
// technology.
#pragma once

#include "ui/CurveChartPainting.h"
#include "ui/kit/ControlFeel.h"
#include "ui/kit/Transition.h"
#include "ui/state/CurveEditing.h"

#include <QPixmap>
#include <QWidget>

namespace ventolith::ui {

/// By pointer: a press takes the point in reach, a drag moves it, the release ends it. By keyboard: Tab goes
/// from point to point and then on, the arrows move the chosen point by the same steps within the same
/// limits, Delete or Backspace takes it away, plus adds one. Arrows that are held are one gesture.
///
/// It repaints nothing but itself: its ground is opaque, and the grid a picture that is kept.
class CurveChart final : public QWidget {
  Q_OBJECT

public:
  /// The theme outlives it. It shows nothing before an editing is set.
  explicit CurveChart(const Theme& theme, QWidget* parent = nullptr);

  /// The editing that it shows and works on from now on; it outlives the chart or its next one.
  void setEditing(CurveEditing& editing);
  [[nodiscard]] const CurveEditing* editing() const { return editing_; }

  /// Shows the editing as it is now, after a change that did not come from here.
  void refresh();

  /// Where values lie in it.
  [[nodiscard]] ChartGeometry chart() const { return ChartGeometry::inSurface(size()); }
  /// Around the point at that place, in its own coordinates.
  [[nodiscard]] QRectF haloAt(std::size_t place) const;
  /// The live point as it stands now, which may be on its way; none without one.
  [[nodiscard]] std::optional<ChartValue> shownLivePoint() const;
  [[nodiscard]] Transition& liveMotion() { return live_; }

  // For assistive technology: each a whole gesture.
  void choosePoint(std::size_t place);
  void movePoint(std::size_t place, Nudge nudge, int steps);

Q_SIGNALS:
  /// The user changed the curve, or chose another point.
  void edited();

protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool focusNextPrevChild(bool isNext) override;

private:
  [[nodiscard]] bool isHeld() const { return editing_ != nullptr && isPressed_; }
  [[nodiscard]] RingShape ring() const;
  [[nodiscard]] const QPixmap& groundAt(double scale);
  void dragTo(QPointF location);
  void endDrag();
  void nudge(Nudge nudge);
  void endNudging();
  bool walk(CurveEditing::Direction direction);
  void addPoint();
  void deletePoint();
  void take();
  void takeMarks();
  void takeLivePoint();
  void settleCursor(QPointF location);

  const Theme& theme_;
  CurveEditing* editing_ = nullptr;
  CurveChartMarks marks_; // Its `live` is the reading, not where it is shown.
  Transition live_;       // The live point's temperature: it goes along the curve.
  QPixmap ground_;        // Null when it has to be painted anew.
  bool isPressed_ = false;
  bool isNudging_ = false; // An arrow moved a point and is still held.
  ControlFeel feel_;
};

} // namespace ventolith::ui
