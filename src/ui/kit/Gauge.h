// A ring that fills clockwise from 12 o'clock, around an icon.
#pragma once

#include "ui/kit/Symbol.h"

#include <QVariantAnimation>
#include <QWidget>

namespace ventolith::ui {

class Theme;

/// The ring in a square widget.
struct GaugeGeometry {
  QPointF center;
  double radius; ///< Of the middle of the stroke.
  double stroke;
  double icon; ///< The side of the icon's square.

  /// For a widget of this many pixels a side; the design's measures are those of 44.
  [[nodiscard]] static GaugeGeometry in(double side);
  /// What is filled at `fraction`, in degrees, clockwise.
  [[nodiscard]] static double sweep(double fraction);
  /// Where the middle of the stroke ends at `fraction`.
  [[nodiscard]] QPointF end(double fraction) const;
};

class Gauge : public QWidget {
  Q_OBJECT

public:
  Gauge(const Theme& theme, Symbol symbol, QWidget* parent = nullptr);

  /// 0 to 1; what lies outside, or is no number, is brought inside. The ring moves there in 300 ms unless
  /// nothing is to move, nobody can see it, the widget shows its first value, or the way is under a pixel.
  /// Between two readings nothing runs.
  void setFraction(double fraction);
  /// The same without a motion, whatever the circumstances.
  void jumpTo(double fraction);
  [[nodiscard]] double fraction() const { return fraction_; }
  /// What is on the screen, on its way to `fraction`.
  [[nodiscard]] double shownFraction() const { return shown_; }
  [[nodiscard]] bool isMoving() const { return motion_.state() == QAbstractAnimation::Running; }

  [[nodiscard]] QSize sizeHint() const override { return {side, side}; }

  static constexpr int side = 44;

protected:
  void paintEvent(QPaintEvent*) override;
  void hideEvent(QHideEvent*) override;

private:
  void showNow(double fraction);
  void move(double fraction);

  const Theme& theme_;
  Symbol symbol_;
  double fraction_ = 0;
  double shown_ = 0;   // What the motion has come to.
  double painted_ = 0; // What was asked to be painted last: a step that nobody could see is left out.
  bool hasValue_ = false;
  QVariantAnimation motion_{this};
};

} // namespace ventolith::ui
