// A value in words, and two arrows that move it by a step.
#pragma once

#include "ui/kit/ControlFeel.h"
#include "ui/kit/Palette.h"
#include "ui/kit/Pulse.h"

#include <QWidget>

#include <memory>
#include <optional>

namespace ventolith::ui {

struct StepperRange {
  double minimum = 0;
  double maximum = 100;
  double step = 1;

  bool operator==(const StepperRange&) const = default;
  /// One step up (`direction` 1) or down (-1) from any value, at most to the bound; none when the value
  /// stands at that bound or beyond it.
  [[nodiscard]] std::optional<double> stepped(double value, int direction) const;
};

enum class StepperSize { normal, small };

/// Asks for another value (`valueWanted`) and shows the one that it is given: what the user sees is what its
/// owner made of the wish. An arrow that is held repeats, each time from the value that stands then.
class Stepper final : public QWidget {
  Q_OBJECT

public:
  static constexpr int arrowsWidth = 15;
  static constexpr int arrowsHeight = 22;
  static constexpr int gap = 6;
  static constexpr std::chrono::milliseconds firstRepeat{400};
  static constexpr std::chrono::milliseconds nextRepeat{80};

  Stepper(const Theme& theme, StepperSize size, QWidget* parent = nullptr,
          std::unique_ptr<Pulse> pulse = std::make_unique<TimerPulse>());

  void setRange(const StepperRange& range);
  [[nodiscard]] const StepperRange& range() const { return range_; }
  /// The value, which may lie outside the range, and the words that show it. No signal.
  void setValue(double value, const QString& label);
  [[nodiscard]] double value() const { return value_; }
  [[nodiscard]] const QString& label() const { return label_; }
  /// As much room as that label takes is kept free after a shorter one, so that the words before it and the
  /// arrows stand still. A longer one takes what it needs.
  void setRoomFor(const QString& label);
  /// The label's colour; `primaryText` unless told otherwise.
  void setLabelColor(ColorRole role);

  /// Asks for the value as an arrow does: for assistive technology.
  void want(double value);

  /// The upper or lower half of the arrows, in the stepper's own coordinates.
  [[nodiscard]] QRect arrow(int direction) const;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
  void valueWanted(double value);

protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

private:
  [[nodiscard]] QRect arrows() const;
  [[nodiscard]] int directionAt(const QPoint& position) const;
  void step(int direction, int times = 1);
  void hold(int direction);
  void repeat();
  void letGo();
  void paintAll(QPainter& painter) const;
  void paintArrow(QPainter& painter, int direction) const;

  const Theme& theme_;
  StepperSize size_;
  std::unique_ptr<Pulse> pulse_;
  StepperRange range_;
  double value_ = 0;
  QString label_;
  QString labelWithRoom_;
  ColorRole labelColor_ = &Palette::primaryText;
  int heldDirection_ = 0; // 1 up, -1 down, 0 none.
  bool isPointerOnHeld_ = false;
  int wheelDegrees_ = 0;
  ControlFeel feel_;
};

} // namespace ventolith::ui
