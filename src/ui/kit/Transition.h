// A number on its way from where it stands to where it shall be.
#pragma once

#include <QVariantAnimation>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace ventolith::ui {

class Theme;

/// Moves a fraction and has its widget repaint on the way. Where things are not to move, or while the widget
/// is not to be seen, it is there at once. Nothing wakes up while it stands still.
class Transition final : public QVariantAnimation {
public:
  /// Both outlive it.
  Transition(const Theme& theme, QWidget& shown, int milliseconds);

  [[nodiscard]] double value() const { return value_; }
  void moveTo(double target);
  void jumpTo(double value);

protected:
  void updateCurrentValue(const QVariant& value) override;

private:
  const Theme& theme_;
  QWidget& shown_;
  int milliseconds_;
  double value_ = 0;
  double target_ = 0;
};

} // namespace ventolith::ui
