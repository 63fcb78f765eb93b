// On or off, at once.
#pragma once

#include "ui/kit/ControlFeel.h"

#include <QCheckBox>

namespace ventolith::ui {

/// A switch has no title of its own: whoever puts it beside one gives it the spoken name
/// (`setAccessibleName`).
class Switch final : public QCheckBox {
  Q_OBJECT

public:
  static constexpr int trackWidth = 32;
  static constexpr int trackHeight = 18;
  static constexpr int knobDiameter = 14;
  static constexpr int inset = 2;

  explicit Switch(const Theme& theme, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override { return {trackWidth, trackHeight}; }
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
  /// The slide of the knob.
  [[nodiscard]] Transition& transition() { return slide_; }
  /// How far the knob has gone from off to on, 0...1.
  [[nodiscard]] double progress() const { return slide_.value(); }

protected:
  [[nodiscard]] bool hitButton(const QPoint& position) const override;
  void paintEvent(QPaintEvent* event) override;

private:
  [[nodiscard]] QRectF track() const;
  void paintAll(QPainter& painter) const;

  const Theme& theme_;
  Transition slide_;
  ControlFeel feel_;
};

} // namespace ventolith::ui
