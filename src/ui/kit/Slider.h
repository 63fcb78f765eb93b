// A value between two bounds, by pointer, keyboard, wheel and assistive technology.
#pragma once

#include "ui/kit/ControlFeel.h"
#include "ui/kit/Pulse.h"
#include "ui/kit/SliderGeometry.h"

#include <QWidget>

#include <memory>
#include <optional>

namespace ventolith::ui {

/// Every move by the user is one press: `pressBegan`, then `valueChanged` for each value on the way (at least
/// one, even where it is the value that was), then `pressEnded`. A press lasts as long as the pointer or a
/// key holds it, for the wheel until it has rested for `wheelRest`, and is ended, too, when the slider is
/// hidden or loses the keyboard. A slider that is disabled takes the press from the user, who has not let go
/// of any value: `pressAbandoned` stands in for `pressEnded` then. There is never a second press within one.
///
/// The wheel is taken only while the slider has the keyboard focus, so that scrolling over it moves nothing.
class Slider final : public QWidget {
  Q_OBJECT

public:
  static constexpr std::chrono::milliseconds wheelRest{300};

  /// What assistive technology hears as the value.
  enum class Spoken { value, percentOfTravel };

  explicit Slider(const Theme& theme, QWidget* parent = nullptr,
                  std::unique_ptr<Pulse> pulse = std::make_unique<TimerPulse>());

  /// A range with a step shows its ticks below the slider.
  void setRange(const SliderRange& range);
  [[nodiscard]] const SliderRange& range() const { return range_; }
  /// What an arrow key and one notch of the wheel move a slider without steps: a hundredth of its way unless
  /// told otherwise. Zero is that hundredth. Page Up and Page Down move ten times as far.
  void setKeyStep(double step);

  [[nodiscard]] double value() const { return value_; }
  /// Shows the value, without a signal. While the user presses, theirs stands: nothing happens.
  void setValue(double value);
  [[nodiscard]] bool isPressed() const { return press_ != Press::none; }

  void setSpoken(Spoken spoken);
  [[nodiscard]] Spoken spoken() const { return spoken_; }
  /// The value in words ("21 percent"); the bare number when empty.
  void setSpokenText(const QString& text);
  [[nodiscard]] const QString& spokenText() const { return spokenText_; }
  /// One whole press that ends at the value: for assistive technology.
  void slideTo(double value);
  /// The distance of one arrow key.
  [[nodiscard]] double keyStep() const;

  [[nodiscard]] SliderGeometry geometryOf() const;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
  void pressBegan();
  void valueChanged(double value);
  void pressEnded();
  void pressAbandoned();

protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

private:
  enum class Press { none, pointer, key, wheel };

  void begin(Press press);
  void change(double value);
  void end();
  void loseHold();
  /// Whether there was a press.
  bool letGo();
  void take(double value);
  [[nodiscard]] std::optional<double> valueAfter(int key) const;
  void paintAll(QPainter& painter) const;
  void paintKnob(QPainter& painter) const;

  const Theme& theme_;
  std::unique_ptr<Pulse> pulse_;
  SliderRange range_;
  double value_ = 0;
  double keyStep_ = 0;
  double grip_ = 0; // From the knob's centre to where the pointer holds it.
  int heldKey_ = 0;
  int wheelDegrees_ = 0; // In eighths, not yet a notch.
  Press press_ = Press::none;
  Spoken spoken_ = Spoken::value;
  QString spokenText_;
  ControlFeel feel_;
};

} // namespace ventolith::ui
